#include "cli/standard_output.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace tavrelune::cli {

QString printablePath(const QString& path)
{
    const bool plain = !path.startsWith(QLatin1Char('"'))
                       && std::none_of(path.begin(), path.end(), [](QChar c) { return c.unicode() < 0x20 || c.unicode() == 0x7f; });
    if (plain)
        return path;
    // The array's one element, without the brackets.
    const QByteArray array = QJsonDocument(QJsonArray{path}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(array.mid(1, array.size() - 2));
}

void reopenClosedStandardStreams()
{
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
        if (::fcntl(descriptor, F_GETFD) != -1 || errno != EBADF)
            continue;
        // The lowest free number is this one: the lower ones are open.
        const int opened = ::open("/dev/null", O_RDWR);
        if (opened != descriptor && opened >= 0)
            ::close(opened);
    }
}

int writeStandardOutput(const QByteArray& bytes)
{
    qsizetype done = 0;
    while (done < bytes.size()) {
        const ssize_t written = ::write(STDOUT_FILENO, bytes.constData() + done, bytes.size() - done);
        if (written < 0) {
            if (errno == EINTR)
                continue;
            return errno;
        }
        done += written;
    }
    return 0;
}

}  // namespace tavrelune::cli
