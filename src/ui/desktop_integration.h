// The desktop's file choosers (QFileDialog) and file manager (the
// freedesktop FileManager1 D-Bus interface, else the folder opened through
// QDesktopServices) for the controller.
//
// Main thread; the choosers are modal. Owned by the window.
#pragma once

#include "controller/desktop_services.h"

class QWidget;

namespace tavrelune::ui {

class DesktopIntegration : public DesktopServices {
public:
    explicit DesktopIntegration(QWidget* dialogParent) : parent_(dialogParent) {}

    QStringList choose(const ChooserRequest& request) override;
    void showInFileManager(const QString& folder, const QString& fileToSelect) override;

    // "Videos (*.mp4 *.MP4 ...)": both cases, since the file system is.
    static QString nameFilter(const ChooserRequest& request);

private:
    QWidget* parent_;
};

}  // namespace tavrelune::ui
