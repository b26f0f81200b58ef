// Command-line arguments as strings that still name the files they named.
//
// Qt decodes arguments and encodes file names as UTF-8, which loses the
// bytes of a name that is not valid UTF-8, so such a file would be reported
// missing. An argument naming an existing regular file by such bytes is
// given instead as a symbolic link to it, in a private folder (mode 0700,
// unguessable name, below the temporary folder); the link's name is the
// readable form of the file's name (each bad byte shown as U+FFFD), so
// messages and output names derived from it read as the file's own.
//
// Main thread; owns the links, which are removed with it.
#pragma once

#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <memory>

namespace tavrelune::cli {

class ArgumentNames {
public:
    ArgumentNames();
    ~ArgumentNames();
    ArgumentNames(const ArgumentNames&) = delete;
    ArgumentNames& operator=(const ArgumentNames&) = delete;

    // The argument as text; a link path for a file name Qt cannot carry.
    QString decode(const char* argument);
    // argv[first] to argv[argc - 1], each decoded.
    QStringList decode(int argc, char** argv, int first = 1);

private:
    std::unique_ptr<QTemporaryDir> links_;
    int linkCount_ = 0;
};

}  // namespace tavrelune::cli
