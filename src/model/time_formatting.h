// Clock-style time text for the user: "1:05", "1:05.3", "1:02:05".
#pragma once

#include <QString>

namespace tavrelune::TimeFormatting {

// Negative and not-a-number times show as zero; times beyond about 30
// million years are shown as that limit.
QString clock(double seconds, bool tenths = false);

// SMPTE timecode "HH:MM:SS:FF" of the frame showing at `seconds` in a clip
// of `fps` frames per second: frames count at the clip's rate and are
// labelled at the nearest whole rate (25, 30, 60…). 29.97 and 59.94 use
// drop-frame labels ("HH:MM:SS;FF"), which stay on the wall clock.
// Negative and not-a-number times show as frame 0; a rate that is not
// positive shows as the clock with tenths.
QString timecode(double seconds, double fps);

// What is left of a job `fraction` done (0 to 1) after `elapsedSeconds`, at
// the pace so far: "about 40 s left", "about 4 min left", "about 1 h 5 min
// left". Empty until 5 % is done or 3 s have passed (earlier guesses swing
// widely), and once done.
QString timeLeft(double elapsedSeconds, double fraction);

}  // namespace tavrelune::TimeFormatting
