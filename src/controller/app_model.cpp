// Construction, published state and derived values of the controller.
#include "controller/app_model.h"

#include "controller/output_claim.h"
#include "controller/working_folder.h"
#include "preview/audio_output.h"

#include <QDir>
#include <QEventLoop>
#include <QTimer>
#include <QStandardPaths>

namespace tavrelune {

namespace {

const QString runFolderPrefix = QStringLiteral("run-");

std::optional<QString> defaultOutputFolder()
{
    const QStringList movies = QStandardPaths::standardLocations(QStandardPaths::MoviesLocation);
    if (movies.isEmpty() || movies.first().isEmpty())
        return std::nullopt;
    return QDir(movies.first()).filePath("Tavrelune");
}

}  // namespace

AppModel::AppModel() : AppModel(Options{}) {}

AppModel::AppModel(Options options)
    : ffmpeg_(std::move(options.toolLocator)), now_(std::move(options.now)),
      freeSpace_(std::move(options.freeSpace))
{
    previews_ = options.previews;
    workingFolder_ = options.workspace ? *options.workspace
                                       : WorkingFolder::choose(WorkingFolder::currentEnvironment());
    QDir().mkpath(workingFolder_);
    // A killed instance's claims on output names go with its folder.
    RunFolder::sweepStale(workingFolder_, runFolderPrefix, &OutputClaim::releaseRecorded);
    runFolder_ = RunFolder::create(workingFolder_, runFolderPrefix);
    // Without a run folder, staging fails later and is reported there.
    workspace_ = runFolder_ ? runFolder_->path() : QDir(workingFolder_).filePath(runFolderPrefix + "unavailable");
    const std::optional<QString> output =
        options.outputFolder ? *options.outputFolder : defaultOutputFolder();
    if (output)
        outputFolder_ = QUrl::fromLocalFile(*output);
    lastCanConvert_ = canConvert();

    ClipPreviewPlayer::Options player;
    player.audioOutput = options.audioOutput ? *options.audioOutput
                                             : previewAudioOutput(AudioEnvironment::current());
    previewPlayer_ = std::make_unique<ClipPreviewPlayer>(player);
    trimPlayer_ = std::make_unique<ClipPreviewPlayer>(player);
    QPointer<AppModel> self(this);
    previewPlayer_->onTime = [self](double seconds) {
        if (self)
            self->handlePlayerTime(seconds);
    };
    previewPlayer_->onEnded = [self] {
        if (self)
            self->finishClipForPlayAll();
    };
    trimPlayer_->onTime = [self](double seconds) {
        if (self)
            self->handleTrimPlayerTime(seconds);
    };
    trimPlayer_->onEnded = [self] {
        if (self)
            self->handleTrimPlaybackEnded();
    };
}

bool AppModel::tasksRunning() const
{
    return batchRunning_ || runningProbePasses_ > 0 || runningExtractions_ > 0 || detectingEncoders_;
}

AppModel::~AppModel()
{
    // Stop every task and wait (briefly) for them to wind down: their
    // coroutines resume into this object and its engine, which must still
    // be alive then.
    lifetime_.request_stop();
    convertTask_.request_stop();
    previewTask_.request_stop();
    ffmpeg_.cancel();
    if (!tasksRunning())
        return;
    QEventLoop loop;
    const auto quitWhenIdle = [this, &loop] {
        if (!tasksRunning())
            loop.quit();
    };
    connect(this, &AppModel::batchEnded, &loop, quitWhenIdle);
    connect(this, &AppModel::probePassEnded, &loop, quitWhenIdle);
    connect(this, &AppModel::encodersChanged, &loop, quitWhenIdle);
    connect(this, &AppModel::previewTaskEnded, &loop, quitWhenIdle);
    QTimer::singleShot(15000, &loop, &QEventLoop::quit);
    loop.exec();
}

QImage AppModel::watermarkPreview() const
{
    return watermarkImage_ ? watermarkImage_->displayImage() : QImage();
}

std::optional<ClipItem> AppModel::selectedClip() const
{
    if (const auto index = selectedIndex())
        return clips_[*index];
    return std::nullopt;
}

std::optional<int> AppModel::selectedIndex() const
{
    if (selectedClipID_.isNull())
        return std::nullopt;
    for (int i = 0; i < clips_.size(); ++i)
        if (clips_[i].id == selectedClipID_)
            return i;
    return std::nullopt;
}

bool AppModel::canConvert() const
{
    // A stopped batch may still be winding down its ffmpeg after
    // isConverting went false; the next one waits until it has ended.
    return !clips_.isEmpty() && !outputFolder_.isEmpty() && !isConverting_ && !batchRunning_
           && !clipsToConvert().isEmpty();
}

bool AppModel::canConvertAgain() const
{
    return !clips_.isEmpty() && !outputFolder_.isEmpty() && !isConverting_ && !batchRunning_
           && !tavrelune::clipsToConvert(clips_, batchInputs(), true).isEmpty();
}

BatchInputs AppModel::batchInputs() const
{
    return {lutURL_, watermark_, settings_, outputFolder_.toLocalFile(), lookChoices_};
}

int AppModel::upToDateCount() const
{
    const BatchInputs inputs = batchInputs();
    return static_cast<int>(std::count_if(clips_.begin(), clips_.end(), [&](const ClipItem& clip) {
        return isUpToDate(clip, clips_, inputs);
    }));
}

// What Convert would write; once everything is converted, what Convert
// All Again would. Unreadable clips write nothing.
SizeForecast AppModel::sizeForecast() const
{
    const BatchInputs inputs = batchInputs();
    QList<ClipItem> planned = tavrelune::clipsToConvert(clips_, inputs, false);
    if (planned.isEmpty())
        planned = tavrelune::clipsToConvert(clips_, inputs, true);
    return forecastBatch(planned, settings_);
}

bool AppModel::watermarkEditable() const
{
    return watermark_.isEnabled() && !isConverting_;
}

double AppModel::previewVideoAspect() const
{
    if (const auto clip = selectedClip()) {
        if (clip->width && clip->height && *clip->width > 0 && *clip->height > 0)
            return static_cast<double>(*clip->width) / static_cast<double>(*clip->height);
    }
    const QImage& still = sourcePreview_.isNull() ? gradedPreview_ : sourcePreview_;
    if (still.height() > 0)
        return static_cast<double>(still.width()) / still.height();
    return 16.0 / 9.0;
}

void AppModel::notifyDerived()
{
    if (const bool now = canConvert(); now != lastCanConvert_) {
        lastCanConvert_ = now;
        Q_EMIT canConvertChanged();
    }
    if (const bool now = watermarkEditable(); now != lastWatermarkEditable_) {
        lastWatermarkEditable_ = now;
        Q_EMIT watermarkEditableChanged();
    }
}

void AppModel::setClips(QList<ClipItem> clips)
{
    if (clips_ == clips)
        return;
    clips_ = std::move(clips);
    Q_EMIT clipsChanged();
    notifyDerived();
}

bool AppModel::updateClip(const QUuid& id, const std::function<void(ClipItem&)>& change)
{
    for (int i = 0; i < clips_.size(); ++i) {
        if (clips_[i].id != id)
            continue;
        ClipItem updated = clips_[i];
        change(updated);
        if (!(updated == clips_[i])) {
            clips_[i] = std::move(updated);
            Q_EMIT clipsChanged();
        }
        return true;
    }
    return false;
}

void AppModel::setSelectedClipID(const QUuid& id)
{
    if (selectedClipID_ == id)
        return;
    selectedClipID_ = id;
    Q_EMIT selectedClipIDChanged();
}

void AppModel::setLutURL(const QUrl& url)
{
    if (lutURL_ == url)
        return;
    lutURL_ = url;
    Q_EMIT lutURLChanged();
    notifyDerived();  // converted clips are out of date
}

void AppModel::setWatermarkSettings(const WatermarkSettings& settings)
{
    if (watermark_ == settings)
        return;
    watermark_ = settings;
    Q_EMIT watermarkChanged();
    notifyDerived();
}

void AppModel::setOutputFolder(const QUrl& folder)
{
    if (outputFolder_ == folder)
        return;
    outputFolder_ = folder;
    Q_EMIT outputFolderChanged();
    notifyDerived();
}

void AppModel::setSettings(const EncodeSettings& settings)
{
    if (settings_ == settings)
        return;
    settings_ = settings;
    Q_EMIT settingsChanged();
    notifyDerived();
}

void AppModel::setIsConverting(bool converting)
{
    if (isConverting_ == converting)
        return;
    isConverting_ = converting;
    Q_EMIT isConvertingChanged();
    notifyDerived();
}

void AppModel::setConversionFraction(double fraction)
{
    if (conversionFraction_ == fraction)
        return;
    conversionFraction_ = fraction;
    Q_EMIT conversionFractionChanged();
}

// Every assignment notifies, also of the same text: each step of a batch
// is a new message even when two clips share a name.
void AppModel::setStatusMessage(const QString& message, const QUuid& about)
{
    statusMessage_ = message;
    statusClip_ = about;
    Q_EMIT statusMessageChanged();
}

void AppModel::setErrorMessage(const QString& message)
{
    errorMessage_ = message;
    Q_EMIT errorMessageChanged();
}

void AppModel::setIsPreviewing(bool previewing)
{
    if (isPreviewing_ == previewing)
        return;
    isPreviewing_ = previewing;
    Q_EMIT isPreviewingChanged();
}

// Images compare by identity: a new still is a change even with the same
// pixels, and the same image assigned again is not.
void AppModel::setSourcePreview(const QImage& image)
{
    if (sourcePreview_.cacheKey() == image.cacheKey() && sourcePreview_.isNull() == image.isNull())
        return;
    sourcePreview_ = image;
    Q_EMIT sourcePreviewChanged();
}

void AppModel::setGradedPreview(const QImage& image)
{
    if (gradedPreview_.cacheKey() == image.cacheKey() && gradedPreview_.isNull() == image.isNull())
        return;
    gradedPreview_ = image;
    Q_EMIT gradedPreviewChanged();
}

void AppModel::setIsPlayingAll(bool playing)
{
    if (isPlayingAll_ == playing)
        return;
    isPlayingAll_ = playing;
    Q_EMIT isPlayingAllChanged();
}

}  // namespace tavrelune
