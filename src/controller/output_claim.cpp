#include "controller/output_claim.h"

#include "model/error.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tavrelune {

namespace {

QByteArray native(const QString& path)
{
    return QFile::encodeName(path);
}

[[noreturn]] void throwSystemError(const QString& path)
{
    throw PlatformError(QStringLiteral("Could not create %1: %2")
                            .arg(QDir::toNativeSeparators(path), QString::fromLocal8Bit(std::strerror(errno))));
}

}  // namespace

bool OutputClaim::createExclusive(const QString& path, FileIdentity& identity)
{
    // O_EXCL never follows a symlink at the name, dangling or not.
    const int fd = ::open(native(path).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0666);
    if (fd < 0) {
        if (errno == EEXIST)
            return false;
        throwSystemError(path);
    }
    struct stat info = {};
    ::fstat(fd, &info);
    ::close(fd);
    identity = {info.st_dev, info.st_ino};
    return true;
}

bool OutputClaim::isSame(const QString& path, const FileIdentity& identity)
{
    struct stat info = {};
    return ::lstat(native(path).constData(), &info) == 0 && S_ISREG(info.st_mode)
           && info.st_dev == identity.device && info.st_ino == identity.inode;
}

OutputClaim OutputClaim::claim(const std::function<QString(const OutputNaming::PathTaken&)>& choose,
                               const QString& recordFolder)
{
    OutputClaim result;
    const OutputNaming::PathTaken taken = [&result](const QString& path) {
        return !createExclusive(path, result.placeholder_);
    };
    result.finalPath_ = choose(taken);
    result.open_ = true;  // from here on the placeholder is ours to remove
    const QDir folder = QFileInfo(result.finalPath_).dir();
    for (;;) {
        const quint64 random = QRandomGenerator::system()->generate64();
        const QString candidate =
            folder.filePath(QStringLiteral(".tavrelune-%1.mp4").arg(random, 16, 16, QLatin1Char('0')));
        if (createExclusive(candidate, result.temporary_)) {
            result.temporaryPath_ = candidate;
            if (!recordFolder.isEmpty())
                result.writeRecord(recordFolder);
            return result;
        }
    }
}

namespace {

// A record holds the final name, the temporary name and their files'
// identities, separated by NUL bytes (names may hold line feeds).
const QString recordPrefix = QStringLiteral("claim-");

QByteArray identityText(dev_t device, ino_t inode)
{
    return QByteArray::number(quint64(device)) + ' ' + QByteArray::number(quint64(inode));
}

}  // namespace

void OutputClaim::writeRecord(const QString& recordFolder)
{
    const QString path = QDir(recordFolder).filePath(QFileInfo(temporaryPath_).fileName().replace(
        QStringLiteral(".tavrelune-"), recordPrefix));
    QFile record(path);
    const QByteArray text = native(finalPath_) + '\0' + identityText(placeholder_.device, placeholder_.inode)
                            + '\0' + native(temporaryPath_) + '\0'
                            + identityText(temporary_.device, temporary_.inode);
    // Best effort: without a record only a killed run's leftovers stay.
    if (record.open(QIODevice::WriteOnly | QIODevice::NewOnly) && record.write(text) == text.size())
        recordPath_ = path;
}

void OutputClaim::releaseRecorded(const QString& recordFolder)
{
    const QDir folder(recordFolder);
    for (const QString& name : folder.entryList({recordPrefix + '*'}, QDir::Files)) {
        QFile record(folder.filePath(name));
        if (!record.open(QIODevice::ReadOnly))
            continue;
        const QList<QByteArray> fields = record.readAll().split('\0');
        record.remove();
        if (fields.size() != 4)
            continue;
        for (int i = 0; i < 4; i += 2) {
            const QString path = QFile::decodeName(fields[i]);
            const QList<QByteArray> identity = fields[i + 1].split(' ');
            if (identity.size() != 2 || !isSame(path, {dev_t(identity[0].toULongLong()), ino_t(identity[1].toULongLong())}))
                continue;
            // The placeholder only while still empty; the temporary file
            // whatever ffmpeg left in it.
            if (i == 2 || QFileInfo(path).size() == 0)
                ::unlink(native(path).constData());
        }
    }
}

OutputClaim::OutputClaim(OutputClaim&& other) noexcept
    : finalPath_(std::move(other.finalPath_)),
      temporaryPath_(std::move(other.temporaryPath_)),
      placeholder_(other.placeholder_),
      temporary_(other.temporary_),
      recordPath_(std::move(other.recordPath_)),
      open_(std::exchange(other.open_, false))
{
}

OutputClaim& OutputClaim::operator=(OutputClaim&& other) noexcept
{
    if (this != &other) {
        abandon();
        finalPath_ = std::move(other.finalPath_);
        temporaryPath_ = std::move(other.temporaryPath_);
        placeholder_ = other.placeholder_;
        temporary_ = other.temporary_;
        recordPath_ = std::move(other.recordPath_);
        open_ = std::exchange(other.open_, false);
    }
    return *this;
}

OutputClaim::~OutputClaim()
{
    abandon();
}

void OutputClaim::commit()
{
    if (!open_)
        return;
    if (!isSame(finalPath_, placeholder_))
        throw PlatformError(QStringLiteral("%1 was replaced by another program during the conversion; "
                                           "it was left as it is.")
                                .arg(QDir::toNativeSeparators(finalPath_)));
    if (::rename(native(temporaryPath_).constData(), native(finalPath_).constData()) != 0)
        throw PlatformError(QStringLiteral("Could not move the converted file to %1: %2")
                                .arg(QDir::toNativeSeparators(finalPath_),
                                     QString::fromLocal8Bit(std::strerror(errno))));
    open_ = false;
    if (!recordPath_.isEmpty())
        QFile::remove(recordPath_);
}

void OutputClaim::abandon()
{
    if (!open_)
        return;
    open_ = false;
    // ffmpeg writes the temporary file in place (same inode); anything else
    // found at either name is someone else's.
    if (!temporaryPath_.isEmpty() && isSame(temporaryPath_, temporary_))
        ::unlink(native(temporaryPath_).constData());
    if (isSame(finalPath_, placeholder_))
        ::unlink(native(finalPath_).constData());
    if (!recordPath_.isEmpty())
        QFile::remove(recordPath_);
}

}  // namespace tavrelune
