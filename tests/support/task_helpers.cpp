#include "support/task_helpers.h"

#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <unistd.h>

namespace tavrelune::test {

void spinEventLoop(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

bool processExists(qint64 pid)
{
    return QFile::exists(QStringLiteral("/proc/%1").arg(pid));
}

QList<qint64> livingChildren()
{
    QList<qint64> children;
    const QString self = QString::number(getpid());
    const QStringList entries = QDir("/proc").entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& entry : entries) {
        bool numeric = false;
        const qint64 pid = entry.toLongLong(&numeric);
        if (!numeric)
            continue;
        QFile stat("/proc/" + entry + "/stat");
        if (!stat.open(QIODevice::ReadOnly))
            continue;
        // Fields after the parenthesised name: state, ppid, ...
        const QByteArray text = stat.readAll();
        const QList<QByteArray> fields = text.mid(text.lastIndexOf(')') + 2).split(' ');
        if (fields.size() > 1 && fields[1] == self.toLatin1())
            children << pid;
    }
    return children;
}

}  // namespace tavrelune::test
