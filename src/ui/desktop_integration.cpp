#include "ui/desktop_integration.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDesktopServices>
#include <QFileDialog>
#include <QStandardPaths>
#include <QUrl>

namespace tavrelune::ui {

QString DesktopIntegration::nameFilter(const ChooserRequest& request)
{
    if (request.extensions.isEmpty())
        return {};
    QStringList patterns;
    for (const QString& extension : request.extensions)
        patterns << "*." + extension.toLower() << "*." + extension.toUpper();
    const QString label = request.audioVisualOnly ? QStringLiteral("Video clips") : QStringLiteral("Files");
    return label + " (" + patterns.join(' ') + ")";
}

QStringList DesktopIntegration::choose(const ChooserRequest& request)
{
    QFileDialog dialog(parent_, request.message);
    dialog.setLabelText(QFileDialog::LookIn, request.message);
    switch (request.mode) {
    case ChooserRequest::Mode::oneFile:
        dialog.setFileMode(QFileDialog::ExistingFile);
        break;
    case ChooserRequest::Mode::manyFiles:
        dialog.setFileMode(QFileDialog::ExistingFiles);
        break;
    case ChooserRequest::Mode::folder:
        dialog.setFileMode(QFileDialog::Directory);
        dialog.setOption(QFileDialog::ShowDirsOnly, true);
        break;
    case ChooserRequest::Mode::saveFile:
        dialog.setAcceptMode(QFileDialog::AcceptSave);
        dialog.setFileMode(QFileDialog::AnyFile);
        if (!request.extensions.isEmpty())
            dialog.setDefaultSuffix(request.extensions.first());
        if (!request.suggestedPath.isEmpty())
            dialog.selectFile(request.suggestedPath);
        break;
    }
    if (!request.canCreateFolders && request.mode != ChooserRequest::Mode::saveFile)
        dialog.setOption(QFileDialog::ReadOnly, request.mode != ChooserRequest::Mode::folder);
    if (!request.confirmLabel.isEmpty())
        dialog.setLabelText(QFileDialog::Accept, request.confirmLabel);
    if (const QString filter = nameFilter(request); !filter.isEmpty())
        dialog.setNameFilter(filter);
    if (dialog.exec() != QDialog::Accepted)
        return {};
    return dialog.selectedFiles();
}

void DesktopIntegration::showInFileManager(const QString& folder, const QString& fileToSelect)
{
    const bool selectFile = !fileToSelect.isEmpty();
    QDBusMessage call = QDBusMessage::createMethodCall(
        "org.freedesktop.FileManager1", "/org/freedesktop/FileManager1", "org.freedesktop.FileManager1",
        selectFile ? "ShowItems" : "ShowFolders");
    const QString target = QUrl::fromLocalFile(selectFile ? fileToSelect : folder).toString();
    call << QStringList{target} << QString();
    const QDBusMessage reply = QDBusConnection::sessionBus().call(call, QDBus::Block, 3000);
    if (reply.type() != QDBusMessage::ReplyMessage)
        QDesktopServices::openUrl(QUrl::fromLocalFile(folder));
}

}  // namespace tavrelune::ui
