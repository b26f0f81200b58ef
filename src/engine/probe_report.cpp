#include "engine/probe_report.h"

#include "engine/ffmpeg_error.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMetaType>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace tavrelune::ProbeReport {

QStringList arguments(const QString& path)
{
    return {"-v", "error", "-show_entries",
            "format=duration,start_time:stream=codec_type,codec_name,channels,width,height,sample_aspect_ratio,pix_fmt,r_frame_rate,"
            "avg_frame_rate,bit_rate,color_space,color_range,color_primaries,color_transfer,field_order:"
            "stream_tags=rotate:stream_side_data=rotation,dv_profile",
            "-of", "json", path};
}

QStringList packetArguments(const QString& path)
{
    // Packets are listed, not decoded: reading even a long file is quick.
    return {"-v", "error", "-select_streams", "v:0", "-show_entries", "packet=pts_time,duration_time",
            "-of", "csv=p=0", path};
}

double durationFromPackets(const QString& csvLines, double startTime)
{
    double end = 0;
    for (const QStringView line : QStringView(csvLines).split(u'\n', Qt::SkipEmptyParts)) {
        const auto fields = line.trimmed().split(u',');
        const auto pts = parseDecimal(fields.value(0));
        if (!pts || !std::isfinite(*pts))
            continue;
        const auto length = fields.size() > 1 ? parseDecimal(fields[1]) : std::nullopt;
        end = std::max(end, *pts + (length && std::isfinite(*length) ? *length : 0.0));
    }
    return std::max(end - startTime, 0.0);
}

double startTime(const QString& report)
{
    const QJsonDocument document = QJsonDocument::fromJson(report.toUtf8());
    return document.isObject() ? doubleValue(document.object().value("format").toObject().value("start_time")) : 0;
}

bool statesFieldOrder(const QString& report)
{
    const QJsonDocument document = QJsonDocument::fromJson(report.toUtf8());
    if (!document.isObject())
        return false;
    for (const QJsonValue& element : document.object().value("streams").toArray()) {
        const QJsonObject stream = element.toObject();
        if (stream.value("codec_type").toString() != QLatin1String("video"))
            continue;
        const QString order = stream.value("field_order").toString();
        return !order.isEmpty() && order != QLatin1String("unknown");
    }
    return false;
}

namespace {

bool isInteger(const QJsonValue& value)
{
    return value.toVariant().metaType().id() == QMetaType::LongLong;
}

// Whole-string base-10 integer with an optional sign; anything else fails.
std::optional<int64_t> parseInteger(QStringView text)
{
    const QByteArray bytes = text.toUtf8();
    const char* begin = bytes.constData();
    const char* end = begin + bytes.size();
    // One sign at most: from_chars takes a '-' itself, so a '+' may not
    // precede it.
    if (begin != end && *begin == '+')
        ++begin;
    if (begin == end || *begin == '+' || (*begin == '-' && (begin != bytes.constData() || begin + 1 == end)))
        return std::nullopt;
    int64_t result = 0;
    const auto [stop, error] = std::from_chars(begin, end, result, 10);
    if (error != std::errc() || stop != end)
        return std::nullopt;
    return result;
}

// Degrees the stream must be turned to be upright: the display matrix's
// rotation when the stream has one, else the older "rotate" tag; 0 when
// neither is given.
double rotationOf(const QJsonObject& stream)
{
    const QJsonValue sideData = stream.value("side_data_list");
    if (sideData.isArray()) {
        for (const QJsonValue& entry : sideData.toArray())
            if (entry.isObject() && entry.toObject().contains("rotation"))
                return doubleValue(entry.toObject().value("rotation"));
    }
    const QJsonValue tags = stream.value("tags");
    if (tags.isObject())
        return doubleValue(tags.toObject().value("rotate"));
    return 0;
}

// Dolby Vision profile 5 carries its picture in Dolby's own colour space,
// which only a Dolby Vision decoder turns back into RGB; every other reader
// sees wrong colours. Other profiles have an HDR10, HLG or SDR base layer.
bool lacksCompatibleBaseLayer(const QJsonObject& stream)
{
    const QJsonValue sideData = stream.value("side_data_list");
    if (!sideData.isArray())
        return false;
    for (const QJsonValue& entry : sideData.toArray())
        if (entry.isObject() && entry.toObject().contains("dv_profile")
            && intValue(entry.toObject().value("dv_profile")) == 5)
            return true;
    return false;
}

}  // namespace

bool turnsSideways(double degrees)
{
    if (!std::isfinite(degrees))
        return false;
    const double quarterTurns = degrees / 90;
    return quarterTurns == std::round(quarterTurns) && std::fmod(std::abs(quarterTurns), 2) == 1;
}

std::optional<double> parseDecimal(QStringView text)
{
    const QByteArray bytes = text.toUtf8();
    const char* begin = bytes.constData();
    const char* end = begin + bytes.size();
    // strtod accepts one leading '+', which from_chars does not.
    if (begin != end && *begin == '+')
        ++begin;
    if (begin == end || *begin == '+' || (*begin == '-' && begin == bytes.constData() + 1))
        return std::nullopt;
    double result = 0;
    const auto [stop, error] = std::from_chars(begin, end, result, std::chars_format::general);
    if (stop != end || (error != std::errc() && error != std::errc::result_out_of_range))
        return std::nullopt;
    if (error == std::errc::result_out_of_range) {
        // Like strtod: overflow gives infinity, underflow zero.
        return std::strtod(bytes.constData(), nullptr);
    }
    return result;
}

double doubleValue(const QJsonValue& value)
{
    if (value.isDouble())
        return value.toDouble();
    if (value.isString())
        return parseDecimal(value.toString()).value_or(0.0);
    return 0.0;
}

int64_t intValue(const QJsonValue& value)
{
    if (value.isDouble()) {
        if (isInteger(value))
            return value.toInteger();
        const double truncated = std::trunc(value.toDouble());
        // Doubles outside the int64 range (and non-finite ones) give 0.
        if (!(truncated >= -9223372036854775808.0 && truncated < 9223372036854775808.0))
            return 0;
        return static_cast<int64_t>(truncated);
    }
    if (value.isString())
        return parseInteger(value.toString()).value_or(0);
    return 0;
}

std::optional<double> frameRate(const QJsonValue& value)
{
    if (!value.isString())
        return std::nullopt;
    const QString text = value.toString();
    const QStringList pieces = text.split('/', Qt::SkipEmptyParts);
    if (pieces.size() == 2) {
        const auto numerator = parseDecimal(pieces[0]);
        const auto denominator = parseDecimal(pieces[1]);
        if (numerator && denominator && *denominator != 0)
            return *numerator / *denominator;
    }
    return parseDecimal(text);
}

MediaInfo parse(const QString& report)
{
    const QJsonDocument document = QJsonDocument::fromJson(report.toUtf8());
    if (!document.isObject())
        throw FFmpegError::probeFailed(QStringLiteral("invalid ffprobe output"));
    const QJsonObject root = document.object();

    const QJsonValue formatValue = root.value("format");
    const std::optional<QJsonObject> format =
        formatValue.isObject() ? std::optional(formatValue.toObject()) : std::nullopt;

    QList<QJsonObject> streams;
    const QJsonValue streamsValue = root.value("streams");
    if (streamsValue.isArray()) {
        const QJsonArray array = streamsValue.toArray();
        bool allObjects = true;
        for (const QJsonValue& element : array)
            allObjects = allObjects && element.isObject();
        if (allObjects)
            for (const QJsonValue& element : array)
                streams << element.toObject();
    }

    std::optional<QJsonObject> video;
    std::optional<QJsonObject> audio;
    MediaInfo info;
    for (const QJsonObject& stream : streams) {
        const QJsonValue type = stream.value("codec_type");
        if (!video && type.isString() && type.toString() == "video")
            video = stream;
        if (type.isString() && type.toString() == "audio") {
            if (!audio)
                audio = stream;
            const QJsonValue codec = stream.value("codec_name");
            const int64_t channels = intValue(stream.value("channels"));
            info.audioTracks << AudioTrack{codec.isString() ? codec.toString() : QString(),
                                           channels > 0 && channels <= 64 ? static_cast<int>(channels) : 0};
        }
    }

    info.hasAudio = audio.has_value();
    if (audio)
        info.audioBitrate = std::max<int64_t>(intValue(audio->value("bit_rate")), 0);
    info.duration = format ? doubleValue(format->value("duration")) : 0.0;
    if (video && lacksCompatibleBaseLayer(*video))
        throw FFmpegError::probeFailed(QStringLiteral(
            "Dolby Vision profile 5 has no picture that other players can show; export an HDR10 or SDR version "
            "from the phone or camera"));
    if (video) {
        info.width = intValue(video->value("width"));
        // Non-square pixels (HDV, DV): the width they are shown at. "1:1",
        // "0:1" (unknown) and absent all mean square.
        const QStringList aspect = video->value("sample_aspect_ratio").toString().split(QLatin1Char(':'));
        if (aspect.size() == 2) {
            const auto across = parseDecimal(aspect[0]);
            const auto down = parseDecimal(aspect[1]);
            if (across && down && *across > 0 && *down > 0 && *across != *down) {
                info.pixelAspect = *across / *down;
                info.width = std::llround(static_cast<double>(info.width) * info.pixelAspect);
            }
        }
        info.height = intValue(video->value("height"));
        // ffmpeg and the preview turn such a clip upright, so its displayed
        // size is what the export's filters and the watermark work with.
        if (turnsSideways(rotationOf(*video)))
            std::swap(info.width, info.height);
        const QJsonValue codec = video->value("codec_name");
        info.codecName = codec.isString() ? codec.toString() : QStringLiteral("unknown");
        const QJsonValue pixFmt = video->value("pix_fmt");
        info.pixFmt = pixFmt.isString() ? pixFmt.toString() : QString();
        const auto tag = [&video](const char* key) {
            const QJsonValue value = video->value(QLatin1String(key));
            // ffprobe writes "unknown" (or "unspecified") when the stream is silent.
            const QString text = value.isString() ? value.toString() : QString();
            return text == QLatin1String("unknown") || text == QLatin1String("unspecified") ? QString() : text;
        };
        info.color = {tag("color_space"), tag("color_range"), tag("color_primaries"), tag("color_transfer")};
        const QString fieldOrder = tag("field_order");
        info.interlaced = fieldOrder == QLatin1String("tt") || fieldOrder == QLatin1String("bb")
                       || fieldOrder == QLatin1String("tb") || fieldOrder == QLatin1String("bt");
        auto rate = frameRate(video->value("r_frame_rate"));
        const auto average = frameRate(video->value("avg_frame_rate"));
        if (!rate)
            rate = average;
        info.fps = rate.value_or(24.0);
        // A variable rate shows as a base rate (often the time base, 120 or
        // more) far from the average; a constant one's two agree.
        if (rate && average && *average > 0 && std::abs(*rate - *average) > 0.01 * *average) {
            info.variableFrameRate = true;
            info.fps = nearestStandardRate(*average);
        }
    }
    return info;
}

}  // namespace tavrelune::ProbeReport
