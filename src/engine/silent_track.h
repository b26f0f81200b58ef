// Whether a clip's first audio track is silent while another is not: a
// camera with an unplugged first input, say. Players pick the first track,
// so such a file plays mute although its sound is there.
//
// Pure functions, safe on any thread.
#pragma once

#include <QString>
#include <QStringList>
#include <optional>

namespace tavrelune {

// Seconds from the start that the check listens to.
inline constexpr double silenceCheckSeconds = 10;
// Peaks at or below this are silence (dBFS): below any microphone's noise.
inline constexpr double silencePeakDb = -60;

// ffmpeg arguments that print the peak level of audio track `track` (from 0)
// over the first seconds to standard output, as
// "lavfi.astats.Overall.Peak_level=-18.06".
QStringList trackPeakArguments(const QString& input, int track);

// The peak in dBFS from that output; -inf for digital silence. Nothing when
// the output holds no such line (an empty track).
std::optional<double> parseTrackPeak(const QString& output);

// The sentence the batch's status adds for the clips (by name) found so.
QString silentFirstTrackNotice(const QStringList& clipNames);

}  // namespace tavrelune
