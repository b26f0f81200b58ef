// Clips and waits for tests of the live preview: clips tagged BT.709 (as
// cameras tag them, so mpv and ffmpeg agree on colour) with short key-frame
// intervals so that seeks are quick, and a bounded wait for asynchronous
// player work.
#pragma once

#include "support/media_fixtures.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>
#include <functional>

namespace tavrelune::test {

inline ClipSpec previewClip(double seconds, QString pattern = "testsrc2", int width = 320, int height = 180,
                            QString rate = "30")
{
    ClipSpec spec;
    spec.width = width;
    spec.height = height;
    spec.rate = std::move(rate);
    spec.seconds = seconds;
    spec.audio = false;
    spec.pattern = std::move(pattern);
    spec.videoOptions = {"-g", "10", "-colorspace", "bt709", "-color_primaries", "bt709",
                         "-color_trc", "bt709", "-color_range", "tv"};
    return spec;
}

// Runs the event loop until `done` holds or `timeoutMs` passes; whether it held.
inline bool waitUntil(const std::function<bool()>& done, int timeoutMs = 10000)
{
    QElapsedTimer clock;
    clock.start();
    while (!done()) {
        if (clock.elapsed() > timeoutMs)
            return false;
        QEventLoop loop;
        QTimer::singleShot(2, &loop, &QEventLoop::quit);
        loop.exec();
    }
    return true;
}

}  // namespace tavrelune::test
