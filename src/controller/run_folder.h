// A folder private to one running instance, inside a shared parent folder.
//
// Several instances (two windows, a window and a `convert`) share the
// working folder, and combined exports into one output folder share that
// folder; each gets its own run folder so no fixed name is ever shared.
// The folder is created with mode 0700 under an unguessable name
// (<prefix><16 random hex digits>) and holds a file "lock" that this
// instance keeps locked with flock() for the object's life. The object
// removes the folder when it goes; a folder left by an instance that died
// is recognised by its lock being free and removed by sweepStale().
//
// Threading: any thread, one owner. Move-only.
#pragma once

#include <QString>
#include <functional>
#include <optional>

namespace tavrelune {

class RunFolder {
public:
    // Creates a new run folder in `parent` (which must exist). Nothing on
    // failure; `error` (when given) then says why.
    static std::optional<RunFolder> create(const QString& parent, const QString& prefix,
                                           QString* error = nullptr);

    // Removes the folders named <prefix>... in `parent` whose instance no
    // longer runs, calling `beforeRemoval` (when given) with each one whose
    // lock was left behind first. Live instances' folders and anything not
    // named so are left alone. Returns how many were removed.
    static int sweepStale(const QString& parent, const QString& prefix,
                          const std::function<void(const QString& folder)>& beforeRemoval = {});

    RunFolder(RunFolder&& other) noexcept;
    RunFolder& operator=(RunFolder&& other) noexcept;
    RunFolder(const RunFolder&) = delete;
    RunFolder& operator=(const RunFolder&) = delete;
    ~RunFolder();

    const QString& path() const { return path_; }

private:
    RunFolder(QString path, int lockFd) : path_(std::move(path)), lockFd_(lockFd) {}
    void release();

    QString path_;
    int lockFd_ = -1;  // open and flock()ed while the folder is ours
};

}  // namespace tavrelune
