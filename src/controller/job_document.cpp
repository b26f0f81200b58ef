#include "controller/job_document.h"

#include "controller/app_model.h"
#include "controller/desktop_services.h"
#include "controller/job_application.h"

#include <QDir>
#include <QFileInfo>
#include <QPointer>
#include <QSaveFile>

namespace tavrelune {

JobDocument::JobDocument(AppModel& model, QObject* parent) : QObject(parent), model_(model)
{
    for (auto changed : {&AppModel::clipsChanged, &AppModel::lutURLChanged, &AppModel::watermarkChanged,
                         &AppModel::settingsChanged, &AppModel::outputFolderChanged})
        connect(&model_, changed, this, &JobDocument::followModel);
}

bool JobDocument::isModified() const
{
    if (opening_)
        return false;
    if (path_.isEmpty())
        return !model_.clips().isEmpty();
    return jobOf(model_) != saved_;
}

void JobDocument::followModel()
{
    if (const bool now = isModified(); now != lastModified_) {
        lastModified_ = now;
        Q_EMIT modifiedChanged();
    }
}

void JobDocument::setRecentJobs(const QStringList& paths)
{
    QStringList kept = paths;
    kept.removeDuplicates();
    kept.removeAll(QString());
    if (kept.size() > recentLimit)
        kept.resize(recentLimit);
    if (kept == recent_)
        return;
    recent_ = kept;
    Q_EMIT recentJobsChanged();
}

void JobDocument::remember(const QString& path)
{
    QStringList paths = recent_;
    paths.removeAll(path);
    paths.prepend(path);
    setRecentJobs(paths);
}

void JobDocument::markSaved(const QString& path)
{
    saved_ = jobOf(model_);
    if (path_ != path) {
        path_ = path;
        Q_EMIT pathChanged();
    }
    remember(path);
    followModel();
}

bool JobDocument::save()
{
    return path_.isEmpty() ? saveAs() : saveTo(path_);
}

bool JobDocument::saveAs()
{
    if (!desktop_)
        return false;
    ChooserRequest request;
    request.mode = ChooserRequest::Mode::saveFile;
    request.message = QStringLiteral("Save the job");
    request.extensions = {QStringLiteral("json")};
    const QString folder = model_.outputFolder().isEmpty() ? QDir::homePath() : model_.outputFolder().toLocalFile();
    request.suggestedPath =
        path_.isEmpty() ? QDir(folder).filePath(QStringLiteral("Tavrelune job.json")) : path_;
    const QStringList chosen = desktop_->choose(request);
    return !chosen.isEmpty() && saveTo(chosen.first());
}

bool JobDocument::saveTo(const QString& path)
{
    // Written whole to a temporary file and renamed over the old one, so a
    // failed save never leaves half a job.
    QSaveFile file(path);
    const QByteArray text = convertJobText(jobOf(model_));
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() || !file.commit()) {
        model_.setErrorMessage(QStringLiteral("Could not save the job to %1: %2").arg(path, file.errorString()));
        return false;
    }
    markSaved(QFileInfo(path).absoluteFilePath());
    return true;
}

QCoro::Task<void> JobDocument::chooseAndOpen()
{
    if (!desktop_)
        co_return;
    ChooserRequest request;
    request.mode = ChooserRequest::Mode::oneFile;
    request.message = QStringLiteral("Open a job");
    request.extensions = {QStringLiteral("json")};
    const QStringList chosen = desktop_->choose(request);
    if (!chosen.isEmpty())
        co_await open(chosen.first());
}

QCoro::Task<void> JobDocument::open(QString path)
{
    if (model_.isBatchRunning()) {
        model_.setErrorMessage(QStringLiteral("A batch is running. Open the job once it has ended."));
        co_return;
    }
    ConvertJob job;
    try {
        job = readConvertJob(path);
    } catch (const JobFileError& error) {
        model_.setErrorMessage(QStringLiteral("Could not open %1: %2").arg(QFileInfo(path).fileName(), error.message));
        co_return;
    }
    QStringList missing;
    const auto present = [&missing](const QString& file) {
        if (QFileInfo::exists(file))
            return true;
        missing << file;
        return false;
    };

    QPointer<JobDocument> self(this);
    opening_ = true;
    for (const ClipItem& clip : model_.clips())
        model_.removeClip(clip.id);
    model_.clearLUT();
    model_.clearWatermark();
    model_.setSettings(job.settings.appliedTo(EncodeSettings{}));
    if (job.outputFolder)
        model_.setOutputFolder(QUrl::fromLocalFile(*job.outputFolder));
    QList<QUrl> clips;
    for (const JobClip& clip : job.clips)
        if (present(clip.url))
            clips << QUrl::fromLocalFile(clip.url);
    model_.addURLs(clips);
    co_await model_.probesFinished();
    if (!self)
        co_return;
    applyClipEdits(model_, job.clips);
    if (job.lut && present(*job.lut))
        model_.setLUT(QUrl::fromLocalFile(*job.lut));
    if (job.watermark.url && present(*job.watermark.url)) {
        model_.setWatermark(QUrl::fromLocalFile(*job.watermark.url));
        placeWatermark(model_, job.watermark);
    }
    opening_ = false;
    markSaved(QFileInfo(path).absoluteFilePath());
    Q_EMIT opened();
    if (!missing.isEmpty())
        model_.setErrorMessage(QStringLiteral("These files of the job are missing and were left out:\n")
                               + missing.join(QLatin1Char('\n')));
}

}  // namespace tavrelune
