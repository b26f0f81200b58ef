#include "engine/ffmpeg_error.h"

namespace tavrelune {

QString FFmpegError::description() const
{
    switch (kind_) {
    case Kind::missingBinary:
        return payload_ + QStringLiteral(" was not found. Install FFmpeg (for example the Debian package ffmpeg).");
    case Kind::probeFailed:
        return QStringLiteral("Could not read clip: ") + payload_;
    case Kind::conversionFailed:
        return payload_;
    case Kind::cancelled:
        return QStringLiteral("Cancelled");
    }
    return payload_;
}

bool isCancellation(std::exception_ptr error)
{
    try {
        if (error)
            std::rethrow_exception(error);
    } catch (const FFmpegError& ffmpegError) {
        return ffmpegError.kind() == FFmpegError::Kind::cancelled;
    } catch (...) {
    }
    return false;
}

}  // namespace tavrelune
