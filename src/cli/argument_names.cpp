#include "cli/argument_names.h"

#include <QDir>
#include <QFile>

#include <sys/stat.h>
#include <unistd.h>

namespace tavrelune::cli {

namespace {

// The argument's bytes as an absolute path; the working directory is read
// as bytes too, since its name may be just as undecodable.
QByteArray absoluteBytes(const QByteArray& path)
{
    if (path.startsWith('/'))
        return path;
    QByteArray directory(4096, '\0');
    while (!::getcwd(directory.data(), directory.size())) {
        if (errno != ERANGE)
            return path;
        directory.resize(directory.size() * 2);
    }
    directory.truncate(qstrlen(directory.constData()));
    return directory + '/' + path;
}

}  // namespace

ArgumentNames::ArgumentNames() = default;
ArgumentNames::~ArgumentNames() = default;

QString ArgumentNames::decode(const char* argument)
{
    const QByteArray bytes(argument);
    const QString text = QFile::decodeName(bytes);
    if (QFile::encodeName(text) == bytes)
        return text;
    struct stat status {};
    if (::stat(bytes.constData(), &status) != 0 || !S_ISREG(status.st_mode))
        return text;  // not a file: nothing to keep reachable
    if (!links_) {
        links_ = std::make_unique<QTemporaryDir>(QDir::tempPath() + "/tavrelune-names-XXXXXX");
        if (!links_->isValid()) {
            links_.reset();
            return text;
        }
    }
    // One folder per link, so two names that read alike do not collide.
    const QString folder = links_->filePath(QString::number(linkCount_++));
    const QByteArray target = absoluteBytes(bytes);
    const QString link = folder + '/' + QFile::decodeName(target.mid(target.lastIndexOf('/') + 1));
    if (!QDir().mkdir(folder) || ::symlink(target.constData(), QFile::encodeName(link).constData()) != 0)
        return text;
    return link;
}

QStringList ArgumentNames::decode(int argc, char** argv, int first)
{
    QStringList arguments;
    for (int i = first; i < argc; ++i)
        arguments << decode(argv[i]);
    return arguments;
}

}  // namespace tavrelune::cli
