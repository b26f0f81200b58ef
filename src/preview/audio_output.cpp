#include "preview/audio_output.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

namespace tavrelune {

AudioEnvironment AudioEnvironment::current()
{
    AudioEnvironment environment;
    environment.pulseServer = qEnvironmentVariable("PULSE_SERVER");
    environment.runtimeDir = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return environment;
}

namespace {

bool hasSoundServer(const AudioEnvironment& environment)
{
    if (!environment.pulseServer.isEmpty())
        return true;
    if (environment.runtimeDir.isEmpty())
        return false;
    const QDir runtime(environment.runtimeDir);
    // PulseAudio's socket; PipeWire serves it too through pipewire-pulse.
    return QFileInfo::exists(runtime.filePath(QStringLiteral("pulse/native")))
        || QFileInfo::exists(runtime.filePath(QStringLiteral("pipewire-0")));
}

bool hasSoundCard(const QString& cardsFile)
{
    QFile cards(cardsFile);
    if (!cards.open(QIODevice::ReadOnly))
        return false;
    // One " N [id ]: driver - name" line per card; "--- no soundcards ---"
    // when there is none.
    static const QRegularExpression card(QStringLiteral("^\\s*\\d+\\s+\\["),
                                         QRegularExpression::MultilineOption);
    return card.match(QString::fromUtf8(cards.readAll())).hasMatch();
}

}  // namespace

QString previewAudioOutput(const AudioEnvironment& environment)
{
    if (hasSoundServer(environment) || hasSoundCard(environment.soundCards))
        return {};
    return QStringLiteral("null");
}

}  // namespace tavrelune
