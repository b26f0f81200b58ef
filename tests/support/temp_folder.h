// A private temporary folder for one test, removed with the object.
#pragma once

#include <QString>
#include <QTemporaryDir>

namespace tavrelune::test {

class TempFolder {
public:
    TempFolder();
    QString path() const { return dir_.path(); }
    // Absolute path of `name` inside the folder (not created).
    QString file(const QString& name) const { return dir_.filePath(name); }
    // Writes `content` to `name` and returns its path.
    QString write(const QString& name, const QByteArray& content) const;

private:
    QTemporaryDir dir_;
};

}  // namespace tavrelune::test
