// The one service that runs the external ffmpeg and ffprobe programs.
//
// Threading: main thread only. Operations are coroutines on the Qt event loop;
// child output and termination arrive as Qt signals on the same thread, so
// callbacks (`onStdout`, `onProgress`) run on the main thread too.
//
// Cancellation: every operation takes a std::stop_token. A stop request
// (made on the main thread) terminates that operation's child and the
// operation fails with FFmpegError::cancelled. `cancel()` stops only the
// tracked conversion child. A child that ignores SIGTERM is killed after a
// grace period; children run in their own process group (a terminal's Ctrl-C
// reaches only this application) and are terminated if this process dies.
//
// Encoders: the video encoder of each codec is found once per launch
// (`detectEncoders`, which the controller starts in the background; a
// conversion that starts first waits for it). Until then, and when no
// hardware encoder works, the software encoders are used.
//
// Units: times and durations in seconds, sizes in pixels, progress as a
// fraction from 0 to 1. Paths are local file paths.
//
// Ownership: the controller owns one instance for the application's life.
// Every argument of a coroutine is taken by value, because the caller's
// temporaries are gone by the time the coroutine resumes.
#pragma once

#include "engine/clip_conversion.h"
#include "engine/encoder_detection.h"
#include "engine/ffmpeg_error.h"
#include "engine/frame_extraction.h"
#include "engine/tool_locator.h"
#include "engine/video_encoder.h"
#include "model/encode_settings.h"
#include "model/grade_values.h"
#include "model/media_info.h"
#include "watermark/watermark_settings.h"

#include <QPointer>
#include <QRect>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>

#include <qcoro/qcorotask.h>

namespace tavrelune {

struct RunState;

class FFmpegService {
public:
    using LineCallback = std::function<void(const QString& line)>;
    using ProgressCallback = std::function<void(double fraction)>;

    explicit FFmpegService(ToolLocator locator = ToolLocator::fromEnvironment());
    ~FFmpegService();
    FFmpegService(const FFmpegService&) = delete;
    FFmpegService& operator=(const FFmpegService&) = delete;

    // Full path of "ffmpeg" or "ffprobe" by the locator's search order.
    QString binaryPath(const QString& toolName) const;

    // Runs one child to its end and returns its standard output as text.
    // Fails with FFmpegError (missing tool, non-zero exit, cancelled) or with
    // PlatformError when the child cannot be started.
    QCoro::Task<QString> run(QString executable, QStringList arguments, bool trackAsConversion,
                             LineCallback onStdout, std::stop_token stop);

    // Stops the tracked conversion child, if any; its run fails with cancelled.
    void cancel();

    // Duration, size, codec, frame rate and audio presence of a media file.
    // A stream that does not say whether it holds fields is judged by its
    // first frames (see field_detection.h).
    QCoro::Task<MediaInfo> probe(QString path, std::stop_token stop = {});

    // How long a terminated child may take before it is killed.
    void setKillGracePeriod(int milliseconds) { killGraceMs_ = milliseconds; }

    // --- Encoders ---

    // Lists ffmpeg's encoders and tries each listed hardware encoder on one
    // frame; keeps the best that works. Runs once per launch: later calls
    // return at once, or wait for a detection already under way. A broken
    // ffmpeg leaves the software encoders in place (the conversion then
    // reports the real problem). Fails only with cancelled.
    QCoro::Task<void> detectEncoders(std::stop_token stop = {});
    // Uses these encoders from now on and skips detection.
    void pinEncoders(EncoderCatalog catalog);
    void pinSoftwareEncoders() { pinEncoders(EncoderCatalog::software()); }
    // The encoder a conversion would use now (software until detection ends).
    VideoEncoder encoder(VideoCodec codec) const { return encoders_.encoder(codec); }

    // --- Export ---

    // Converts one clip to an MP4 file. Copy of the source audio that ffmpeg
    // refuses for MP4 is retried once with AAC audio (progress then restarts
    // at 0). Fails with "Output file was not created." when ffmpeg succeeds
    // without writing (the output left empty or absent). A partly written output is never removed.
    QCoro::Task<void> convertClip(ClipConversion job, ProgressCallback onProgress,
                                  std::stop_token stop = {});

    // Whether the first of a file's `tracks` audio tracks is silent over its
    // first seconds while a later one is not (see silent_track.h). Not a
    // tracked conversion.
    QCoro::Task<bool> firstAudioTrackSilent(QString path, int tracks, std::stop_token stop = {});

    // Joins parts made to the normalization `size`, in order, into
    // `output`: video by stream copy (then, on any failure but a stop, by
    // re-encoding at the bitrate for that size and rate) and audio encoded
    // once. Each part counts as long as its picture. `duration` is the
    // expected total, used for progress only. The inputs share one folder of
    // their own; "tavrelune-concat.txt" is written there and removed on
    // every way out.
    QCoro::Task<void> concatenate(QStringList inputs, QString output, double duration,
                                  EncodeSettings settings, VideoNormalization size,
                                  ProgressCallback onProgress, std::stop_token stop = {});

    // Writes the frame at `at` as an 8-bit RGB image `width` pixels wide,
    // read as `colour` says.
    // Not a tracked conversion: only `stop` ends it, not cancel().
    QCoro::Task<void> extractFrame(QString from, double at, QString output, int64_t width,
                                   std::stop_token stop = {}, StillColour colour = {});

    // --- Filter graphs (pure) ---

    // The grade chain: 16-bit RGB, exposure, LUT, white balance (temperature
    // and tint), contrast and saturation (each left out when neutral by
    // GradeValues' rules), the size (even sides, or fitted and padded to a
    // normalization) and `outputPixelFormat`.
    static QString filterGraph(std::optional<QString> lutPath, const GradeValues& grade,
                               std::optional<VideoNormalization> normalization,
                               const QString& outputPixelFormat);
    // The grade steps of that chain alone.
    static QStringList gradeFilters(const std::optional<QString>& lutPath, const GradeValues& grade);
    // The size steps of every chain: even sides, or the picture (shown at
    // `pictureWidth` x `pictureHeight`) fitted into a normalization's frame
    // at `partPicture`, bars around it, square pixels and the frame rate.
    static QStringList sizeFilters(const std::optional<VideoNormalization>& normalization,
                                   int64_t pictureWidth = 0, int64_t pictureHeight = 0);
    // Where a picture of that shown size lies in the normalization's frame:
    // fitted, centred, even sides (the whole frame for an unknown size).
    static QRect partPicture(const VideoNormalization& frame, int64_t pictureWidth, int64_t pictureHeight);
    // A backslash before every backslash, colon, quote, comma, bracket and
    // semicolon. That is one level of escaping: enough for the graph parser,
    // but lut3d parses its options once more, so a LUT path holding a colon,
    // quote or backslash still fails. Callers stage LUTs under paths free
    // of those three.
    static QString escapeFilterPath(const QString& path);
    // Input 0 graded with `grade` (which must end in gbrp16le), input 1
    // overlaid at the clamped placement, output "[vout]" in yuv420p made by
    // `outputConversion`. The placement is relative to `picture` within the
    // frame (a part's picture inside its bars), else to the whole frame.
    static QString watermarkFilterComplex(const QString& grade, const WatermarkOverlay& watermark,
                                          int64_t outputWidth, int64_t outputHeight,
                                          const QString& outputConversion = QStringLiteral("format=yuv420p"),
                                          std::optional<QRect> picture = std::nullopt);

private:
    struct TrackedChild {
        QPointer<QProcess> process;
        std::shared_ptr<RunState> state;
    };

    void stopChild(QProcess* process, RunState& state);
    QCoro::Task<bool> encoderWorks(QString ffmpeg, VideoEncoder candidate, std::stop_token stop);
    QCoro::Task<bool> picturedAsFields(QString path, std::stop_token stop);
    QCoro::Task<double> partVideoDuration(QString path, std::stop_token stop);
    QCoro::Task<void> runConversion(QStringList arguments, double duration,
                                    ProgressCallback onProgress, std::stop_token stop);

    enum class DetectionState { pending, running, settled };

    ToolLocator locator_;
    TrackedChild conversion_;
    int killGraceMs_ = 5000;
    EncoderCatalog encoders_;
    DetectionState detection_ = DetectionState::pending;
    std::unique_ptr<EncoderDetectionSignal> detectionSettled_ =
        std::make_unique<EncoderDetectionSignal>();
};

}  // namespace tavrelune
