// Claiming an output name so that no two runs, and no file that appears
// meanwhile, ever share it, and publishing only finished files there.
//
// claim() creates the chosen name exclusively (O_CREAT|O_EXCL: an existing
// file or a planted symlink, even a dangling one, makes the name taken and
// the next name is tried) as an empty placeholder, and a hidden temporary
// file ".tavrelune-<random>.mp4" in the same folder for ffmpeg to write.
// commit() renames the temporary file over the placeholder once the output
// is known to be good; until then the final name holds only the empty
// placeholder. An uncommitted claim removes its temporary file and its
// placeholder when it goes, and nothing else: a placeholder that is no
// longer the file it created is left alone.
//
// A claim can be recorded in a folder of the running instance (its run
// folder): should the instance be killed before the claim ends, the instance
// that sweeps that folder finds the record and releases the claim with
// releaseRecorded(), so a killed run leaves neither an empty file at a final
// name nor a hidden half-written one.
//
// Threading: any thread, one owner. Move-only. Errors are PlatformErrors
// carrying the system's text.
#pragma once

#include "controller/output_naming.h"

#include <QString>
#include <functional>
#include <sys/types.h>

namespace tavrelune {

class OutputClaim {
public:
    // `choose` picks a name given a "taken" test (OutputNaming's functions
    // fit); the test claims each name it is asked about, so the name chosen
    // is the one claimed. Throws when a name cannot be created for another
    // reason than being taken (a missing or read-only folder, say).
    // `recordFolder`, when given, keeps a record of the claim while it lasts.
    static OutputClaim claim(const std::function<QString(const OutputNaming::PathTaken&)>& choose,
                             const QString& recordFolder = {});

    // Releases the claims recorded in `recordFolder` by an instance that no
    // longer runs: removes each claim's files that are still the ones it
    // created, and its record.
    static void releaseRecorded(const QString& recordFolder);

    OutputClaim(OutputClaim&& other) noexcept;
    OutputClaim& operator=(OutputClaim&& other) noexcept;
    OutputClaim(const OutputClaim&) = delete;
    OutputClaim& operator=(const OutputClaim&) = delete;
    ~OutputClaim();

    const QString& finalPath() const { return finalPath_; }
    const QString& temporaryPath() const { return temporaryPath_; }

    // Moves the finished temporary file to the final name. Throws, leaving
    // everything else as it is, when the placeholder was replaced or removed
    // by someone else meanwhile.
    void commit();
    // Removes this claim's files now (also done by the destructor).
    void abandon();

private:
    struct FileIdentity {
        dev_t device = 0;
        ino_t inode = 0;
    };
    OutputClaim() = default;
    static bool createExclusive(const QString& path, FileIdentity& identity);
    static bool isSame(const QString& path, const FileIdentity& identity);
    void writeRecord(const QString& recordFolder);

    QString finalPath_;
    QString temporaryPath_;
    FileIdentity placeholder_;
    FileIdentity temporary_;
    QString recordPath_;  // empty when not recorded
    bool open_ = false;  // claimed and neither committed nor abandoned
};

}  // namespace tavrelune
