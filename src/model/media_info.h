// What a probe learned about one media file. Plain value type.
#pragma once

#include <QString>
#include <cstdint>

namespace tavrelune {

struct MediaInfo {
    double duration = 0;          // seconds; 0 when unknown
    int64_t width = 0;            // first video stream as shown (turned upright), 0 when absent
    int64_t height = 0;
    QString codecName = QStringLiteral("unknown");
    QString pixFmt;               // empty when absent
    double fps = 24;              // 24 when no rate could be read
    bool hasAudio = false;
    int64_t audioBitrate = 0;     // first audio stream, bits per second; 0 when unknown

    bool operator==(const MediaInfo&) const = default;
};

}  // namespace tavrelune
