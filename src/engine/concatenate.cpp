// FFmpegService::concatenate: joins converted parts into one video.
#include "engine/concat_job.h"
#include "engine/ffmpeg_service.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace tavrelune {

namespace {

void writeListFile(const QString& path, const QString& text)
{
    // Written aside and moved into place, so ffmpeg never reads half a list.
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0 || !file.commit())
        throw PlatformError(QStringLiteral("Could not write %1: %2").arg(path, file.errorString()));
}

// Removes the list file however the operation ends.
class ListFileRemoval {
public:
    explicit ListFileRemoval(QString path) : path_(std::move(path)) {}
    ~ListFileRemoval() { QFile::remove(path_); }
    ListFileRemoval(const ListFileRemoval&) = delete;
    ListFileRemoval& operator=(const ListFileRemoval&) = delete;

private:
    QString path_;
};

}  // namespace

QCoro::Task<double> FFmpegService::partVideoDuration(QString path, std::stop_token stop)
{
    QString report;
    std::exception_ptr failure;
    try {
        report = co_await run(binaryPath(QStringLiteral("ffprobe")), partDurationArguments(path), false, {}, stop);
    } catch (...) {
        failure = std::current_exception();
    }
    // A part that cannot be measured is joined by its whole length; the
    // join itself reports a part that cannot be read.
    if (failure && isCancellation(failure))
        std::rethrow_exception(failure);
    co_return partDuration(report);
}

QCoro::Task<void> FFmpegService::concatenate(QStringList inputs, QString output, double duration,
                                             EncodeSettings settings, VideoNormalization size,
                                             ProgressCallback onProgress, std::stop_token stop)
{
    if (inputs.isEmpty())
        throw FFmpegError::conversionFailed(QStringLiteral("No clips to concatenate."));
    QList<ConcatPart> parts;
    for (const QString& input : inputs) {
        // Awaited on its own: GCC 12 miscompiles a co_await inside a braced
        // initializer.
        const double length = co_await partVideoDuration(input, stop);
        parts.append(ConcatPart{input, length});
    }
    const QString listFolder = QFileInfo(inputs.first()).path();
    const QString listPath = concatListPath(listFolder);
    writeListFile(listPath, concatListText(parts, listFolder));
    const ListFileRemoval removal(listPath);

    std::exception_ptr copyFailure;
    try {
        co_await runConversion(concatCopyArguments(listPath, output, settings), duration, onProgress, stop);
    } catch (...) {
        copyFailure = std::current_exception();
    }
    if (copyFailure) {
        if (isCancellation(copyFailure))
            std::rethrow_exception(copyFailure);
        // Parts that differ in codec parameters cannot be copied into one
        // stream; re-encoding joins anything ffmpeg can decode.
        co_await detectEncoders(stop);
        co_await runConversion(
            concatReencodeArguments(listPath, output, encoder(settings.codec), settings, size),
            duration, onProgress, stop);
    }
    if (QFileInfo(output).size() <= 0)
        throw FFmpegError::conversionFailed(QStringLiteral("Combined video was not created."));
}

}  // namespace tavrelune
