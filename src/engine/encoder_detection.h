// Wakes coroutines that wait for a detection of encoders started elsewhere.
//
// Main thread only; owned by FFmpegService. A QObject because QCoro awaits
// signals safely: a waiter destroyed while suspended disconnects itself.
#pragma once

#include <QObject>

namespace tavrelune {

class EncoderDetectionSignal : public QObject {
    Q_OBJECT
Q_SIGNALS:
    // The running detection ended: with a result, or stopped (then the next
    // caller detects again).
    void settled();
};

}  // namespace tavrelune
