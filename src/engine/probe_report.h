// Reading ffprobe's JSON report into a MediaInfo.
//
// The reading is lenient: numbers may arrive as numbers or strings, missing
// entries get neutral values; only a report that is not a JSON object fails.
#pragma once

#include "model/media_info.h"

#include <QJsonValue>
#include <QStringList>
#include <optional>

namespace tavrelune::ProbeReport {

// The fixed ffprobe arguments for one file.
QStringList arguments(const QString& path);

// Throws FFmpegError::probeFailed("invalid ffprobe output"). Width and
// height are the displayed size: swapped for a stream turned by ±90° or ±270°.
MediaInfo parse(const QString& report);

// True for an odd number of quarter turns (90, -90, 270, ...).
bool turnsSideways(double degrees);

// For a file that states no duration (a recording cut off, a stream saved
// as it came): the arguments that list its first video stream's packets,
// and the length they span after `startTime` (0 when none is readable).
QStringList packetArguments(const QString& path);
double durationFromPackets(const QString& csvLines, double startTime);
// The format's start time from a report (0 when absent).
double startTime(const QString& report);
// Whether the report's first video stream says how it is stored (any
// field_order but "unknown"); false without a video stream.
bool statesFieldOrder(const QString& report);

// Lenient conversions; an absent value is QJsonValue::Undefined.
double doubleValue(const QJsonValue& value);
int64_t intValue(const QJsonValue& value);
std::optional<double> frameRate(const QJsonValue& value);

// Decimal number in the C locale, whole string, no leading white space.
std::optional<double> parseDecimal(QStringView text);

}  // namespace tavrelune::ProbeReport
