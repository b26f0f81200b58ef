#include "engine/ffmpeg_error.h"

#include <QRegularExpression>

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

QString oneLineReason(const QString& toolText, const QString& path)
{
    static const QRegularExpression componentPrefix(QStringLiteral("^\\[[^\\]]* @ 0x[0-9a-fA-F]+\\]\\s*"));
    QStringList messages;
    for (const QString& line : toolText.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        QString message = line.trimmed();
        message.remove(componentPrefix);
        if (!path.isEmpty() && message.startsWith(path + QStringLiteral(": ")))
            message = message.mid(path.size() + 2);
        if (!message.isEmpty() && !messages.contains(message))
            messages << message;
    }
    if (messages.isEmpty())
        return QStringLiteral("Unknown error");
    QString reason = messages.takeLast();
    if (!messages.isEmpty())
        reason += QStringLiteral(" (") + messages.join(QStringLiteral("; ")) + QLatin1Char(')');
    reason[0] = reason[0].toUpper();
    return reason;
}

}  // namespace tavrelune
