// Which ffmpeg video encoder each codec uses, and with which options.
//
// Value types, safe to copy between threads. A catalog starts with the
// software encoders (libx264, libx265), which every Debian ffmpeg has; the
// service upgrades it once per launch when a hardware encoder proves to work
// (see FFmpegService::detectEncoders). Listing is not proof: ffmpeg lists
// NVENC whether or not the machine has an NVIDIA device.
#pragma once

#include "model/encode_settings.h"

#include <QString>
#include <QStringList>
#include <vector>

namespace tavrelune {

struct VideoEncoder {
    QString name;         // ffmpeg's encoder name, e.g. "libx265"
    QString label;        // short text for the export hint, e.g. "x265 (software)"
    QStringList options;  // speed/quality options, placed right after the bitrate
    bool hardware = false;

    bool operator==(const VideoEncoder&) const = default;
};

// The software encoder of a codec with the options this product ships.
VideoEncoder softwareEncoder(VideoCodec codec);

// Hardware encoders worth a trial for a codec, best first.
std::vector<VideoEncoder> hardwareCandidates(VideoCodec codec);

// Encoder names from `ffmpeg -encoders` output. Only the rows after the
// legend's "------" rule count; each row is a flags column then the name.
QStringList parseEncoderList(const QString& listing);

// Arguments of a one-frame trial encode to the null muxer: fails fast when
// the encoder has no device behind it.
QStringList encoderTrialArguments(const VideoEncoder& encoder);

class EncoderCatalog {
public:
    // libx264 and libx265.
    static EncoderCatalog software();

    VideoEncoder encoder(VideoCodec codec) const;
    void setEncoder(VideoCodec codec, VideoEncoder encoder);

    bool operator==(const EncoderCatalog&) const = default;

private:
    VideoEncoder h264_ = softwareEncoder(VideoCodec::h264);
    VideoEncoder hevc_ = softwareEncoder(VideoCodec::hevc);
};

}  // namespace tavrelune
