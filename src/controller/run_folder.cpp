#include "controller/run_folder.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tavrelune {

namespace {

const char* const lockName = "lock";

// A folder without its lock file is one being made this moment, or the
// rest of a removal cut short; only the latter is old.
constexpr qint64 unlockedFolderGraceSeconds = 60;

QByteArray native(const QString& path)
{
    return QFile::encodeName(path);
}

QString randomName(const QString& prefix)
{
    const quint64 value = QRandomGenerator::system()->generate64();
    return prefix + QStringLiteral("%1").arg(value, 16, 16, QLatin1Char('0'));
}

bool sameFile(int fd, const QString& path)
{
    struct stat opened = {};
    struct stat named = {};
    return ::fstat(fd, &opened) == 0 && ::lstat(native(path).constData(), &named) == 0
           && opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

// Opens and locks `path` without waiting; -1 when it is missing, locked by
// someone else, or was removed while we took the lock.
int lockExisting(const QString& path, int flags)
{
    const int fd = ::open(native(path).constData(), flags | O_RDWR | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (fd < 0)
        return -1;
    if (::flock(fd, LOCK_EX | LOCK_NB) != 0 || !sameFile(fd, path)) {
        ::close(fd);
        return -1;
    }
    return fd;
}

}  // namespace

std::optional<RunFolder> RunFolder::create(const QString& parent, const QString& prefix, QString* error)
{
    const auto fail = [error](const QString& what) {
        if (error)
            *error = what + QStringLiteral(": ") + QString::fromLocal8Bit(std::strerror(errno));
        return std::nullopt;
    };
    for (int attempt = 0; attempt < 16; ++attempt) {
        const QString path = QDir(parent).filePath(randomName(prefix));
        if (::mkdir(native(path).constData(), 0700) != 0) {
            if (errno == EEXIST)
                continue;
            return fail(QStringLiteral("Could not create a folder in %1").arg(parent));
        }
        ::chmod(native(path).constData(), 0700);  // whatever the umask
        // Between the lock file's creation and its lock, a sweeping instance
        // may take the lock and remove the folder; the lock is then ours on a
        // removed file, which sameFile() sees, and another name is tried.
        const int fd = lockExisting(QDir(path).filePath(lockName), O_CREAT | O_EXCL);
        if (fd < 0) {
            if (errno == EACCES || errno == ENOSPC || errno == EROFS || errno == EDQUOT) {
                ::rmdir(native(path).constData());
                return fail(QStringLiteral("Could not create a folder in %1").arg(parent));
            }
            continue;
        }
        return RunFolder(path, fd);
    }
    errno = EEXIST;
    return fail(QStringLiteral("Could not create a folder in %1").arg(parent));
}

int RunFolder::sweepStale(const QString& parent, const QString& prefix,
                          const std::function<void(const QString& folder)>& beforeRemoval)
{
    const QDir dir(parent);
    const QStringList names = dir.entryList({prefix + QLatin1Char('*')},
                                            QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot | QDir::NoSymLinks);
    int removed = 0;
    for (const QString& name : names) {
        const QString path = dir.filePath(name);
        struct stat info = {};
        if (::lstat(native(path).constData(), &info) != 0 || !S_ISDIR(info.st_mode) || info.st_uid != ::getuid())
            continue;
        const QString lockPath = QDir(path).filePath(lockName);
        const int fd = lockExisting(lockPath, 0);
        if (fd < 0) {
            const bool lockMissing = ::access(native(lockPath).constData(), F_OK) != 0 && errno == ENOENT;
            const qint64 age = QDateTime::currentSecsSinceEpoch() - info.st_mtime;
            if (!lockMissing || age < unlockedFolderGraceSeconds)
                continue;
            QDir(path).removeRecursively();
        } else {
            // Removed while its lock is held, so no instance can start using
            // it meanwhile.
            if (beforeRemoval)
                beforeRemoval(path);
            QDir(path).removeRecursively();
            ::close(fd);
        }
        ++removed;
    }
    return removed;
}

RunFolder::RunFolder(RunFolder&& other) noexcept
    : path_(std::exchange(other.path_, QString())), lockFd_(std::exchange(other.lockFd_, -1))
{
}

RunFolder& RunFolder::operator=(RunFolder&& other) noexcept
{
    if (this != &other) {
        release();
        path_ = std::exchange(other.path_, QString());
        lockFd_ = std::exchange(other.lockFd_, -1);
    }
    return *this;
}

RunFolder::~RunFolder()
{
    release();
}

void RunFolder::release()
{
    if (lockFd_ < 0)
        return;
    QDir(path_).removeRecursively();
    ::close(lockFd_);
    lockFd_ = -1;
}

}  // namespace tavrelune
