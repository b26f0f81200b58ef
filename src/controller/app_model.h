// The application controller: owns the batch, the choices and every working
// object, and carries out every user action.
//
// Threading: main thread only. Slow work (probing, conversion) runs as
// coroutines on the main thread that give it up only while they await the
// engine; they find the controller gone through a QPointer guard and then do
// nothing. Destroying the controller stops its tasks and their children.
//
// Observation: every published field is a Qt property with a change signal.
// Optional values use Qt's empty forms: a null QUuid, an empty QUrl, a null
// QImage or a null QString means "none".
//
// Ownership: one instance for the application's life, created before the
// first window and shared by every view. It does not own the DesktopServices
// it is given.
#pragma once

#include "controller/batch_plan.h"
#include "controller/batch_selection.h"
#include "controller/desktop_services.h"
#include "controller/run_folder.h"
#include "controller/free_space.h"
#include "controller/size_forecast.h"
#include "engine/ffmpeg_service.h"
#include "grading/live_grade.h"
#include "grading/preview_grader.h"
#include "model/clip_item.h"
#include "model/encode_settings.h"
#include "preview/clip_preview_player.h"
#include "preview/preview_clock.h"
#include "watermark/watermark_image.h"
#include "watermark/watermark_settings.h"

#include <QDateTime>
#include <QImage>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QSet>
#include <QUrl>
#include <QUuid>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>

Q_DECLARE_METATYPE(tavrelune::ClipItem)
Q_DECLARE_METATYPE(tavrelune::WatermarkSettings)
Q_DECLARE_METATYPE(tavrelune::EncodeSettings)

namespace tavrelune {

// One ffmpeg run that a batch would make, for showing without running.
struct PlannedCommand {
    QStringList arguments;  // without the program name
    QString output;
};

class AppModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(QList<tavrelune::ClipItem> clips READ clips NOTIFY clipsChanged)
    Q_PROPERTY(QUuid selectedClipID READ selectedClipID NOTIFY selectedClipIDChanged)
    Q_PROPERTY(QUrl lutURL READ lutURL NOTIFY lutURLChanged)
    Q_PROPERTY(tavrelune::WatermarkSettings watermark READ watermark NOTIFY watermarkChanged)
    Q_PROPERTY(QImage watermarkPreview READ watermarkPreview NOTIFY watermarkPreviewChanged)
    Q_PROPERTY(QUrl outputFolder READ outputFolder WRITE setOutputFolder NOTIFY outputFolderChanged)
    Q_PROPERTY(tavrelune::EncodeSettings settings READ settings WRITE setSettings NOTIFY settingsChanged)
    Q_PROPERTY(QImage sourcePreview READ sourcePreview NOTIFY sourcePreviewChanged)
    Q_PROPERTY(QImage gradedPreview READ gradedPreview NOTIFY gradedPreviewChanged)
    Q_PROPERTY(bool isPreviewing READ isPreviewing NOTIFY isPreviewingChanged)
    Q_PROPERTY(bool isConverting READ isConverting NOTIFY isConvertingChanged)
    Q_PROPERTY(double conversionFraction READ conversionFraction NOTIFY conversionFractionChanged)
    Q_PROPERTY(QString statusMessage READ statusMessage NOTIFY statusMessageChanged)
    Q_PROPERTY(QString errorMessage READ errorMessage WRITE setErrorMessage NOTIFY errorMessageChanged)
    Q_PROPERTY(int trimWindowToken READ trimWindowToken NOTIFY trimWindowTokenChanged)
    Q_PROPERTY(bool isPlayingAll READ isPlayingAll NOTIFY isPlayingAllChanged)
    Q_PROPERTY(bool canConvert READ canConvert NOTIFY canConvertChanged)
    Q_PROPERTY(bool watermarkEditable READ watermarkEditable NOTIFY watermarkEditableChanged)

public:
    struct Options {
        // Default output folder; none when the desktop reports no videos
        // folder. Unset: the XDG Videos folder plus "Tavrelune".
        std::optional<std::optional<QString>> outputFolder;
        // Private working folder, shared with other instances; this one
        // works in a run folder of its own inside. Unset: chosen by
        // WorkingFolder.
        std::optional<QString> workspace;
        ToolLocator toolLocator = ToolLocator::fromEnvironment();
        // Clock for the combined file's name.
        std::function<QDateTime()> now = [] { return QDateTime::currentDateTimeUtc(); };
        // The preview players' audio output (mpv's "ao", e.g. "null");
        // unset: the desktop's default output, or none without a device.
        std::optional<QString> audioOutput;
        // Off for the headless commands: no clip is loaded into a player and
        // no still is extracted; the playhead and grade bookkeeping remain.
        bool previews = true;
        // Free space of the file system holding a folder; checked before a
        // batch starts.
        FreeSpaceQuery freeSpace = freeSpaceOnDisk;
    };

    AppModel();
    explicit AppModel(Options options);
    ~AppModel() override;

    // --- published state ---
    const QList<ClipItem>& clips() const { return clips_; }
    QUuid selectedClipID() const { return selectedClipID_; }
    QUrl lutURL() const { return lutURL_; }
    const WatermarkSettings& watermark() const { return watermark_; }
    QImage watermarkPreview() const;
    QUrl outputFolder() const { return outputFolder_; }
    void setOutputFolder(const QUrl& folder);
    const EncodeSettings& settings() const { return settings_; }
    void setSettings(const EncodeSettings& settings);
    QImage sourcePreview() const { return sourcePreview_; }
    QImage gradedPreview() const { return gradedPreview_; }
    bool isPreviewing() const { return isPreviewing_; }
    bool isConverting() const { return isConverting_; }
    double conversionFraction() const { return conversionFraction_; }
    QString statusMessage() const { return statusMessage_; }
    QString errorMessage() const { return errorMessage_; }
    void setErrorMessage(const QString& message);  // the alert clears it with a null string
    int trimWindowToken() const { return trimWindowToken_; }
    bool isPlayingAll() const { return isPlayingAll_; }

    // --- derived ---
    std::optional<ClipItem> selectedClip() const;
    std::optional<int> selectedIndex() const;
    // From Convert until the batch's last step has ended.
    bool isBatchRunning() const { return batchRunning_; }
    // False while a batch runs, and while a stopped one still winds down,
    // and when every clip is converted and unchanged since.
    bool canConvert() const;
    // Whether "Convert All Again" has anything to make.
    bool canConvertAgain() const;
    // What every clip would be exported with now.
    BatchInputs batchInputs() const;
    // The clips "Convert" would make now (see batch_selection.h).
    QList<ClipItem> clipsToConvert() const { return tavrelune::clipsToConvert(clips_, batchInputs(), false); }
    // How many clips are converted and unchanged since.
    int upToDateCount() const;
    bool watermarkEditable() const;
    // What the batch would write if it started now.
    SizeForecast sizeForecast() const;
    // Width / height of the selected clip's video; 16/9 when unknown.
    double previewVideoAspect() const;

    // --- owned objects ---
    FFmpegService& ffmpeg() { return ffmpeg_; }
    PreviewClock& clock() { return clock_; }
    LiveGrade& liveGrade() { return liveGrade_; }
    PreviewClock& trimClock() { return trimClock_; }
    ClipPreviewPlayer& previewPlayer() { return *previewPlayer_; }
    ClipPreviewPlayer& trimPlayer() { return *trimPlayer_; }
    PreviewGrader& grader() { return grader_; }
    // This instance's run folder (staged LUT and watermark, stills),
    // removed with the controller.
    QString workspace() const { return workspace_; }

    void setDesktopServices(DesktopServices* services) { desktop_ = services; }

    // --- clip list ---
    void addURLs(const QList<QUrl>& urls);
    void selectClip(const QUuid& id);
    void removeClip(const QUuid& id);
    void removeSelected();
    // Puts the edited part of the batch back as it was (undo, redo): the
    // clips in this order with these grades and trims, the LUT and the
    // watermark. Nothing happens while a batch runs.
    void restoreEdits(const QList<ClipItem>& clips, const QUrl& lut, const WatermarkSettings& watermark);
    // Writes to one clip's record, by identifier; false when it is gone.
    bool updateClip(const QUuid& id, const std::function<void(ClipItem&)>& change);
    // Resolves when no probe pass is running (for the command line and tests).
    QCoro::Task<void> probesFinished();

    // --- batch ---
    void startConversion();
    // Converts every readable clip, also those converted and unchanged.
    void convertAllAgain();
    void cancelConversion();
    void revealOutput();
    // Resolves when the running batch, if any, has ended.
    QCoro::Task<void> conversionFinished();
    // The ffmpeg runs a batch started now would make, without running or
    // staging anything (staged paths are shown where they would be).
    std::vector<PlannedCommand> plannedCommands() const;

    // --- adjustments, LUT, choices ---
    void setLUT(const QUrl& url);
    void clearLUT();
    void chooseLUT();
    void commitLiveGrade();
    void applyAdjustmentsToAll();
    void resetAdjustments();
    void chooseVideos();
    void chooseOutputFolder();

    // --- watermark ---
    void setWatermark(const QUrl& url);
    void chooseWatermark();
    void clearWatermark();
    void resetWatermarkPlacement();
    void updateWatermarkOpacity(double opacity);
    void updateWatermarkSize(double widthFraction);
    void updateWatermarkLayout(double x, double y, std::optional<double> widthFraction = std::nullopt);

    // Moves the clips at `rows` (positions in the list) so that they land,
    // in their relative order, before the clip that was at `destination`
    // (the list's size: at the end). Ignored while converting.
    void moveClips(const QList<int>& rows, int destination);
    // Shows one clip's converted file in the file manager, selected.
    void revealClipOutput(const QUuid& id);

    // --- encoders ---
    // Starts finding which video encoders work here (once per launch);
    // encodersChanged() follows when it ends.
    void startEncoderDetection();
    // Display label of the encoder an export with the current codec would
    // use, e.g. "x265 (software)".
    QString encoderLabel() const;

    // --- main preview ---
    void loadSelectedPreview();
    void clearPreview();
    void persistPlayhead();
    void scheduleFrameExtract(bool force);
    void pushLiveGradeToPreview();
    void refreshFallbackStill();
    // `seconds` counts from the start of the selected clip's trim window.
    void updatePreviewTime(double seconds);
    void beginScrubbing();
    void endScrubbing();
    void startPlayback();
    void handlePlayerTime(double seconds);

    // --- play-all ---
    void startPlayAll();
    void finishClipForPlayAll();
    void playNextInSequence();
    void pausePlayback(bool stopPlayAll);

    // --- trim editor ---
    void showTrimEditor();
    void trimEditorAppeared();
    void trimEditorDisappeared();
    void loadTrimPreview();
    void toggleTrimPlayback();
    void startTrimPlayback();
    void beginTrimScrubbing();
    void updateTrimPlayhead(double seconds);
    void endTrimScrubbing();
    void updateInPoint(double seconds, bool allowPush);
    void updateOutPoint(double seconds, bool allowPush);
    // The selected clip back to its full length.
    void resetTrim();
    void handleTrimPlayerTime(double seconds);
    void handleTrimPlaybackEnded();

Q_SIGNALS:
    void clipsChanged();
    void selectedClipIDChanged();
    void lutURLChanged();
    void watermarkChanged();
    void watermarkPreviewChanged();
    void outputFolderChanged();
    void settingsChanged();
    void sourcePreviewChanged();
    void gradedPreviewChanged();
    void isPreviewingChanged();
    void isConvertingChanged();
    void conversionFractionChanged();
    void statusMessageChanged();
    void errorMessageChanged();
    void trimWindowTokenChanged();
    void isPlayingAllChanged();
    void canConvertChanged();
    void watermarkEditableChanged();
    // The batch task ended (after its final status was written).
    void batchEnded();
    // A probe pass ended.
    void probePassEnded();
    // Encoder detection ended; encoderLabel() may read differently.
    void encodersChanged();
    // A still-frame extraction task ended.
    void previewTaskEnded();

private:
    // Setters that notify only on change.
    void setClips(QList<ClipItem> clips);
    void setSelectedClipID(const QUuid& id);
    void setLutURL(const QUrl& url);
    void setWatermarkSettings(const WatermarkSettings& settings);
    void setIsConverting(bool converting);
    void setConversionFraction(double fraction);
    void setStatusMessage(const QString& message, const QUuid& about = {});
    void setIsPlayingAll(bool playing);
    void setIsPreviewing(bool previewing);
    void setSourcePreview(const QImage& image);
    void setGradedPreview(const QImage& image);
    void notifyDerived();
    bool tasksRunning() const;
    void applyTrimToMainPreview();
    // The sliders' grade to the player's frame grader, without a redraw.
    void assignLiveGrade();
    // Copies the sliders' four values into a clip record.
    void applyLiveGrade(ClipItem& clip) const;
    // The selected clip, at `removedAt`, has left the list: the one after it
    // (else the new last) is selected, and Play All goes on with it.
    void selectAfterRemoval(qsizetype removedAt);
    // Asks for one existing file; none when cancelled or no chooser is set.
    std::optional<QUrl> chooseOneFile(const QString& message, const QSet<QString>& extensions);

    QCoro::Task<void> probePendingClips();
    QCoro::Task<void> detectEncodersInBackground();
    QCoro::Task<void> runPreviewLoad(QUuid clipID, QUrl url, ColorTags colour, bool autoplay);
    QCoro::Task<void> runFrameExtract(QUuid clipID, QUrl url, double duration, double fraction, bool force,
                                      std::stop_token stop);
    QCoro::Task<void> extractSourceFrame(QUuid clipID, QUrl url, double duration, double fraction, bool force,
                                         std::stop_token stop);
    QCoro::Task<void> runTrimLoad(ClipItem clip);
    void beginBatch(bool again);
    QCoro::Task<void> runBatch(QString outputFolder, bool again, std::stop_token stop);
    // The staged table for ffmpeg: a `.cube` as the preview reads it (see
    // cubeText), another format copied. Throws LUTParseError for a `.cube`
    // the loader rejects, PlatformError when it cannot be written.
    std::optional<QString> preparedLUTPath(const std::optional<QString>& source = std::nullopt);
    std::optional<QString> stagedLUTTarget(const QString& source) const;
    // The table the preview grades with, as a batch fixes it at its start.
    struct BatchLook {
        std::optional<CubeLUT> lut;
        // A LUT is chosen that the preview could not read: matched exports
        // fall back to the filter chain.
        bool previewLacksLUT = false;
    };
    BatchLook currentLook() const;
    // The baked preview grade of a clip in the working folder (written when
    // `write`, else only named); none when the clip needs no table.
    std::optional<QString> matchedPreviewCube(const ClipItem& clip, const BatchLook& look, bool write) const;
    // The job's export mode, baked grade and delivery table; files are
    // written (and listed in `written`) only when `written` is given.
    void prepareColour(ClipConversion& job, const ClipItem& clip, const BatchLook& look,
                       QStringList* written) const;
    // A copy of a staged file that is the running batch's own ("batch-"
    // before its name), so a LUT or watermark chosen meanwhile cannot reach
    // it. Throws PlatformError.
    QString batchCopy(const QString& staged) const;
    WatermarkOverlay preparedWatermarkOverlay();
    std::optional<WatermarkOverlay> preparedExportWatermark();
    WatermarkOverlay overlayFor(const QString& imagePath) const;
    // The default size and place, bottom right, for the selected clip's shape.
    void placeWatermarkByDefault(const QUrl& url, double opacity);
    // The selected clip's shape became known: a watermark still where it was
    // first put goes to the default place for that shape.
    void followShapeWithDefaultWatermark();
    double watermarkImageAspect() const;
    // One clip's progress: `fraction` of its `share` of the batch, which
    // starts at `start`.
    void applyProgress(const QUuid& clip, double start, double share, double fraction);
    QString finalStatus(bool cancelled, bool stopped, bool combine, const QList<ClipItem>& planned) const;
    // Between a conversion's end and its rename into place: probes the
    // written file and throws when it is not what the export was to make;
    // returns what the probe found.
    QCoro::Task<MediaInfo> checkFinishedOutput(QString path, ExpectedOutput expected, std::stop_token stop);
    std::optional<QString> spaceShortageFor(const QString& outputFolder, const QList<ClipItem>& planned) const;

    // Published fields, in declaration order.
    QList<ClipItem> clips_;
    QUuid selectedClipID_;
    QUrl lutURL_;
    WatermarkSettings watermark_;
    std::optional<WatermarkImage> watermarkImage_;
    QUrl outputFolder_;
    EncodeSettings settings_;
    QImage sourcePreview_;
    QImage gradedPreview_;
    bool isPreviewing_ = false;
    bool isConverting_ = false;
    double conversionFraction_ = 0;
    QString statusMessage_;
    QString errorMessage_;
    int trimWindowToken_ = 0;
    bool isPlayingAll_ = false;

    // Owned objects, in creation order.
    FFmpegService ffmpeg_;
    PreviewClock clock_;
    LiveGrade liveGrade_;
    PreviewClock trimClock_;
    PreviewGrader grader_;
    std::unique_ptr<ClipPreviewPlayer> previewPlayer_;
    std::unique_ptr<ClipPreviewPlayer> trimPlayer_;

    // Private state.
    std::stop_source convertTask_;  // stop handle of the latest batch task
    bool batchRunning_ = false;
    int runningProbePasses_ = 0;
    QSet<QUuid> probing_;  // clips a probe pass is reading now
    bool detectingEncoders_ = false;
    std::stop_source previewTask_;  // the one pending preview load or still
    int runningExtractions_ = 0;
    bool previews_ = true;
    QUuid statusClip_;  // the clip the status line talks about, if one
    int lookChoices_ = 0;  // see BatchInputs::lookChoices
    std::optional<QString> stagedLUT_;
    std::optional<QString> stagedWatermark_;
    bool watermarkAtDefault_ = false;  // placed by default, not yet moved or sized
    std::optional<QString> sourceFrameURL_;
    bool isScrubbing_ = false;
    bool isTrimScrubbing_ = false;
    bool trimEditorVisible_ = false;
    bool showingOriginal_ = false;
    bool playAllAfterLoad_ = false;
    bool consumedPlayAllAdvance_ = false;
    QString workingFolder_;
    std::optional<RunFolder> runFolder_;
    QString workspace_;  // the run folder's path
    ColorTags previewColour_;  // the tags the selected clip's preview was loaded with
    std::function<QDateTime()> now_;
    FreeSpaceQuery freeSpace_;
    DesktopServices* desktop_ = nullptr;
    std::stop_source lifetime_;  // stops every task when the controller goes
    bool lastCanConvert_ = false;
    bool lastWatermarkEditable_ = false;
};

}  // namespace tavrelune
