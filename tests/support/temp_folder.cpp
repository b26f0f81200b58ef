#include "support/temp_folder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <stdexcept>

namespace tavrelune::test {

TempFolder::TempFolder()
{
    if (!dir_.isValid())
        throw std::runtime_error("cannot create a temporary folder");
}

QString TempFolder::write(const QString& name, const QByteArray& content) const
{
    const QString path = file(name);
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile out(path);
    if (!out.open(QIODevice::WriteOnly) || out.write(content) != content.size())
        throw std::runtime_error("cannot write test file " + path.toStdString());
    return path;
}

}  // namespace tavrelune::test
