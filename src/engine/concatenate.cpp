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

QCoro::Task<void> FFmpegService::concatenate(QStringList inputs, QString output, double duration,
                                             EncodeSettings settings, int64_t width, int64_t height,
                                             ProgressCallback onProgress, std::stop_token stop)
{
    if (inputs.isEmpty())
        throw FFmpegError::conversionFailed(QStringLiteral("No clips to concatenate."));
    const QString listPath = concatListPath(QFileInfo(inputs.first()).path());
    writeListFile(listPath, concatListText(inputs));
    const ListFileRemoval removal(listPath);

    std::exception_ptr copyFailure;
    try {
        co_await runConversion(concatCopyArguments(listPath, output), duration, onProgress, stop);
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
            concatReencodeArguments(listPath, output, encoder(settings.codec), settings, width, height),
            duration, onProgress, stop);
    }
    if (QFileInfo(output).size() <= 0)
        throw FFmpegError::conversionFailed(QStringLiteral("Combined video was not created."));
}

}  // namespace tavrelune
