// The main window: the clip list, the preview and the inspector side by
// side in a splitter, above the status row; the menus; the error alert; a
// drop target for files anywhere on the window; and the "In & Out" window
// whenever the controller asks for the trim editor.
//
// Main thread. Observes the controller and calls its operations; owns no
// batch state. The controller must outlive the window.
#pragma once

#include "controller/edit_history.h"
#include "controller/job_document.h"
#include "ui/preview_pane.h"
#include "ui/time_display.h"
#include "ui/trim_window.h"

#include <QMainWindow>
#include <QPointer>

class QSplitter;

namespace tavrelune {
class AppModel;
}

namespace tavrelune::ui {

class ClipListPane;
class ErrorAlert;
class Inspector;
class MainMenus;
class StatusRow;

class MainWindow : public QMainWindow {
    Q_OBJECT
public:
    explicit MainWindow(AppModel& model, QWidget* parent = nullptr);
    ~MainWindow() override;

    static constexpr QSize defaultSize{1280, 820};
    static constexpr QSize minimumContentSize{1080, 680};

    ClipListPane* clipList() const { return clipList_; }
    PreviewPane* previewPane() const { return preview_; }
    Inspector* inspector() const { return inspector_; }
    StatusRow* statusRow() const { return statusRow_; }
    MainMenus* menus() const { return menus_; }
    ErrorAlert* errorAlert() const { return errorAlert_; }
    QSplitter* splitter() const { return splitter_; }
    // The "In & Out" window once it has been asked for, else null.
    TrimWindow* trimWindow() const { return trimWindow_; }
    TimeDisplay& timeDisplay() { return timeDisplay_; }
    JobDocument& jobDocument() { return jobDocument_; }
    EditHistory& editHistory() { return editHistory_; }

    // Before work is replaced or the window closes: with unsaved changes,
    // asks "Save changes to this job?" and saves when told to. False when
    // the user cancels (or the save did not happen).
    bool settleUnsavedChanges();
    // Opens a job file (asking first about unsaved changes).
    void openJob(const QString& path);
    // Where the "In & Out" window of `size` opens: beside this window on
    // its screen (right, else left), else over the preview and inspector,
    // never over the clip list.
    QRect trimWindowPlace(QSize size) const;

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void openTrimWindow();
    void followJob();
    void fillRecentMenu();

    AppModel& model_;
    TimeDisplay timeDisplay_;
    JobDocument jobDocument_;
    EditHistory editHistory_;
    QSplitter* splitter_;
    ClipListPane* clipList_;
    PreviewPane* preview_;
    Inspector* inspector_;
    StatusRow* statusRow_;
    MainMenus* menus_;
    ErrorAlert* errorAlert_;
    QPointer<TrimWindow> trimWindow_;
};

}  // namespace tavrelune::ui
