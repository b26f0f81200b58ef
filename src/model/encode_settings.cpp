#include "model/encode_settings.h"

#include <cmath>
#include <limits>

namespace tavrelune {

namespace {
__extension__ typedef __int128 WideInt;
}

QString rawValue(VideoCodec codec)
{
    switch (codec) {
    case VideoCodec::h264: return QStringLiteral("H.264");
    case VideoCodec::hevc: return QStringLiteral("HEVC");
    }
    return {};
}

std::optional<VideoCodec> videoCodecFromRawValue(const QString& raw)
{
    for (VideoCodec codec : allVideoCodecs)
        if (rawValue(codec) == raw)
            return codec;
    return std::nullopt;
}

QString caseName(VideoCodec codec)
{
    return codec == VideoCodec::h264 ? QStringLiteral("h264") : QStringLiteral("hevc");
}

std::optional<VideoCodec> videoCodecFromCaseName(const QString& name)
{
    for (VideoCodec codec : allVideoCodecs)
        if (caseName(codec) == name)
            return codec;
    return std::nullopt;
}

QString rawValue(QualityPreset preset)
{
    switch (preset) {
    case QualityPreset::high: return QStringLiteral("High");
    case QualityPreset::balanced: return QStringLiteral("Balanced");
    case QualityPreset::small: return QStringLiteral("Small file");
    }
    return {};
}

std::optional<QualityPreset> qualityPresetFromRawValue(const QString& raw)
{
    for (QualityPreset preset : allQualityPresets)
        if (rawValue(preset) == raw)
            return preset;
    return std::nullopt;
}

QString caseName(QualityPreset preset)
{
    switch (preset) {
    case QualityPreset::high: return QStringLiteral("high");
    case QualityPreset::balanced: return QStringLiteral("balanced");
    case QualityPreset::small: return QStringLiteral("small");
    }
    return {};
}

std::optional<QualityPreset> qualityPresetFromCaseName(const QString& name)
{
    for (QualityPreset preset : allQualityPresets)
        if (caseName(preset) == name)
            return preset;
    return std::nullopt;
}

double bitrateFactor(QualityPreset preset, VideoCodec codec)
{
    const bool h264 = codec == VideoCodec::h264;
    switch (preset) {
    case QualityPreset::high: return h264 ? 9.0 : 6.5;
    case QualityPreset::balanced: return h264 ? 5.5 : 3.8;
    case QualityPreset::small: return h264 ? 3.2 : 2.2;
    }
    return 0;
}

int64_t bitrateKbps(QualityPreset preset, int64_t width, int64_t height, VideoCodec codec, double fps)
{
    const int64_t w = std::max<int64_t>(width, 1280);
    const int64_t h = std::max<int64_t>(height, 720);
    // The product of two int64 values fits in 128 bits; only the final
    // conversion can exceed the result type, and that saturates.
    const auto area = static_cast<WideInt>(w) * static_cast<WideInt>(h);
    const double megapixels = static_cast<double>(area) / 1'000'000.0;
    const double rate = fps > 30 && std::isfinite(fps) ? std::pow(std::min(fps, 240.0) / 30, 0.75) : 1.0;
    const double kbps = std::round(megapixels * bitrateFactor(preset, codec) * rate * 1000.0);
    if (!(kbps < 9.2e18))
        return std::numeric_limits<int64_t>::max();
    return static_cast<int64_t>(kbps);
}

}  // namespace tavrelune
