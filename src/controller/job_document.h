// The job the window works on: the file it was opened from or saved to,
// whether the batch has changed since, and the jobs opened lately. A job
// file holds the clips with their grades and trims, the LUT, the watermark
// and its placement, the export settings and the output folder, in the
// format `tavrelune convert --job` reads, so a job made in the window runs
// unchanged on the command line.
//
// Main thread. Follows the controller, which must outlive it. The choosers
// are the window's desktop services, set once both exist (none: Save As and
// Open do nothing). Failures go to the controller's alert.
#pragma once

#include "controller/job_file.h"

#include <QObject>
#include <QStringList>
#include <qcoro/qcorotask.h>

namespace tavrelune {

class AppModel;
class DesktopServices;

class JobDocument : public QObject {
    Q_OBJECT
public:
    static constexpr qsizetype recentLimit = 8;

    explicit JobDocument(AppModel& model, QObject* parent = nullptr);

    void setDesktopServices(DesktopServices* services) { desktop_ = services; }

    // The job file, empty until saved or opened.
    QString path() const { return path_; }
    // The batch differs from the job file (or, never saved, is not empty).
    bool isModified() const;
    QStringList recentJobs() const { return recent_; }
    void setRecentJobs(const QStringList& paths);

    // Writes to the job file, asking where first when there is none.
    // False when nothing was written (cancelled, or the alert says why).
    bool save();
    bool saveAs();
    bool saveTo(const QString& path);

    // Asks for a job file and opens it.
    QCoro::Task<void> chooseAndOpen();
    // Replaces the batch with the job's. Files of the job that are gone are
    // left out and named in the alert; the rest opens.
    QCoro::Task<void> open(QString path);

Q_SIGNALS:
    void pathChanged();
    void modifiedChanged();
    void recentJobsChanged();
    // A job has replaced the batch.
    void opened();

private:
    void followModel();
    void remember(const QString& path);
    void markSaved(const QString& path);

    AppModel& model_;
    DesktopServices* desktop_ = nullptr;
    QString path_;
    ConvertJob saved_;
    bool lastModified_ = false;
    bool opening_ = false;
    QStringList recent_;
};

}  // namespace tavrelune
