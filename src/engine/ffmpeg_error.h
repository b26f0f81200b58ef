// The conversion engine's error: one of four cases, each with the text shown
// to the user.
#pragma once

#include "model/error.h"

namespace tavrelune {

class FFmpegError : public Error {
public:
    enum class Kind { missingBinary, probeFailed, conversionFailed, cancelled };

    static FFmpegError missingBinary(QString toolName) { return {Kind::missingBinary, std::move(toolName)}; }
    static FFmpegError probeFailed(QString reason) { return {Kind::probeFailed, std::move(reason)}; }
    static FFmpegError conversionFailed(QString message) { return {Kind::conversionFailed, std::move(message)}; }
    static FFmpegError cancelled() { return {Kind::cancelled, {}}; }

    Kind kind() const { return kind_; }
    const QString& payload() const { return payload_; }
    QString description() const override;

    bool operator==(const FFmpegError& other) const
    {
        return kind_ == other.kind_ && payload_ == other.payload_;
    }

private:
    FFmpegError(Kind kind, QString payload) : kind_(kind), payload_(std::move(payload)) {}

    Kind kind_;
    QString payload_;
};

// True for a stop requested by the user, which is never reported as a failure.
bool isCancellation(std::exception_ptr error);

// A tool's complaint about the file at `path` as one line for people: the
// last message, without the path before it, then the earlier ones in
// brackets, each without ffmpeg's "[demuxer @ 0x…]" prefix ("Invalid data
// found when processing input (moov atom not found)").
QString oneLineReason(const QString& toolText, const QString& path);

}  // namespace tavrelune
