// Which audio output the live preview plays through.
//
// Pure apart from `AudioEnvironment::current()`, which reads the process
// environment. Any thread.
#pragma once

#include <QString>

namespace tavrelune {

// Where a desktop's sound would go, as far as the preview needs to know.
struct AudioEnvironment {
    QString pulseServer;  // $PULSE_SERVER
    QString runtimeDir;   // $XDG_RUNTIME_DIR
    QString soundCards = QStringLiteral("/proc/asound/cards");

    static AudioEnvironment current();
};

// mpv's "ao" value: empty (mpv's own choice, which is the desktop's default
// output: PipeWire, PulseAudio or ALSA's default device) when a sound server
// or a sound card exists, else "null", so that a machine without audio plays
// video silently instead of failing to open a device for every clip.
QString previewAudioOutput(const AudioEnvironment& environment);

}  // namespace tavrelune
