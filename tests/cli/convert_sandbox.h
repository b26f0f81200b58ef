// A private world in which tests run `tavrelune convert` as a user runs it:
// real ffmpeg behind a logging wrapper, real ffprobe, tiny clips. For the
// test thread only; everything lives in one temporary folder.
#pragma once

#include "support/media_fixtures.h"
#include "support/temp_folder.h"

#include <QDir>
#include <QFile>
#include <QMap>
#include <QProcess>
#include <QStandardPaths>

namespace tavrelune::test {

struct CommandRun {
    int exitCode = -1;
    QString out;
    QStringList errLines;

    QString lastErrLine() const { return errLines.value(errLines.size() - 1); }
};

// A private world for the command: its own home, runtime and cache folders,
// no display, and an ffmpeg wrapper that logs each conversion's arguments
// (one a line, a blank line after each) and its pid before running the real
// one; conversions of inputs named fail.* fail as ffmpeg would, those of
// inputs named short.* keep only their first 0.2 s, and those of inputs
// named wait.* start once the file log/go exists (or 10 s have passed).
// The wrapper lists only the software encoders, so the encoder choice is
// the same on every machine.
class Sandbox {
public:
    Sandbox()
    {
        for (const char* name : {"home", "runtime", "cache", "log", "tmp"})
            QDir().mkpath(folder.file(name));
        QFile::setPermissions(file("runtime"), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        writeFakeTool(file("tools"), "ffmpeg", QString(R"sh(case " $* " in *" -encoders "*)
  printf 'Encoders:\n ------\n V....D libx264 H.264\n V....D libx265 HEVC\n'; exit 0;; esac
case " $* " in *" -progress "*) printf '%s\n' "$@" '' >> "%1/calls"; echo $$ > "%1/pid";; esac
case " $* " in *"/wait."*) n=0; while [ ! -e "%1/go" ] && [ $n -lt 200 ]; do sleep 0.05; n=$((n+1)); done;; esac
case " $* " in *"/fail."*) echo "simulated encoder failure" >&2; exit 1;; esac
case " $* " in *"/short."*) '%2' "$@" || exit; for last; do :; done
  '%2' -v error -y -i "$last" -t 0.2 -c copy -f mp4 "$last.cut" && cat "$last.cut" > "$last"; rm -f "$last.cut"; exit;; esac
exec '%2' "$@")sh").arg(file("log"), QStandardPaths::findExecutable("ffmpeg")));
        QFile::link(QStandardPaths::findExecutable("ffprobe"), folder.file("tools/ffprobe"));
    }

    QString file(const QString& name) const { return folder.file(name); }
    QString ffmpeg() const { return folder.file("tools/ffmpeg"); }

    QString clip(const QString& name, const ClipSpec& spec = {}) const
    {
        makeClip(file(name), spec);
        return file(name);
    }

    void start(QProcess& process, const QStringList& arguments) const
    {
        start(process, TAVRELUNE_BINARY, QStringList{"convert"} + arguments);
    }

    void start(QProcess& process, const QString& program, const QStringList& arguments) const
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
            environment.remove(name);
        environment.insert("HOME", file("home"));
        environment.insert("XDG_RUNTIME_DIR", file("runtime"));
        environment.insert("XDG_CACHE_HOME", file("cache"));
        environment.insert("TAVRELUNE_TOOLS_DIR", file("tools"));
        environment.insert("TMPDIR", file("tmp"));
        for (auto variable = extraEnvironment.begin(); variable != extraEnvironment.end(); ++variable)
            environment.insert(variable.key(), variable.value());
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(folder.path());
        process.setStandardInputFile(QProcess::nullDevice());
        process.start(program, arguments);
    }

    CommandRun run(const QStringList& arguments) const
    {
        QProcess process;
        start(process, arguments);
        return finish(process);
    }

    static CommandRun finish(QProcess& process)
    {
        CommandRun run;
        if (!process.waitForFinished(60000))
            return run;
        run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
        run.out = QString::fromUtf8(process.readAllStandardOutput());
        run.errLines = QString::fromUtf8(process.readAllStandardError()).split('\n', Qt::SkipEmptyParts);
        return run;
    }

    // The arguments of every conversion ffmpeg was asked for, in order.
    QList<QStringList> loggedConversions() const
    {
        QList<QStringList> calls;
        QFile log(file("log/calls"));
        if (log.open(QIODevice::ReadOnly))
            for (const QString& call : QString::fromUtf8(log.readAll()).split("\n\n", Qt::SkipEmptyParts))
                calls << call.split('\n');
        return calls;
    }

    TempFolder folder;
    // Set for the command on top of the sandbox's own (PATH, say).
    QMap<QString, QString> extraEnvironment;
};

// Everything in a folder, hidden entries included.
inline QStringList entries(const QString& folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
}

}  // namespace tavrelune::test
