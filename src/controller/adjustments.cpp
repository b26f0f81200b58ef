// The look-up table, the grade of the selected clip and the file choosers.
#include "controller/app_model.h"

#include "model/media_type.h"

#include <algorithm>

namespace tavrelune {

namespace {

QStringList sorted(const QSet<QString>& extensions)
{
    QStringList list(extensions.begin(), extensions.end());
    list.sort();
    return list;
}

}  // namespace

void AppModel::setLUT(const QUrl& url)
{
    // A repeated choice still re-stages: the file may have changed on disk.
    stagedLUT_.reset();
    ++lookChoices_;
    setLutURL(url);
    grader_.setLUT(std::optional<QString>(url.toLocalFile()));
    pushLiveGradeToPreview();
    if (!clock_.isPlayable() && sourcePreview_.isNull())
        scheduleFrameExtract(false);
}

void AppModel::clearLUT()
{
    setLutURL(QUrl());
    stagedLUT_.reset();
    grader_.setLUT(std::optional<QString>());
    pushLiveGradeToPreview();
}

std::optional<QUrl> AppModel::chooseOneFile(const QString& message, const QSet<QString>& extensions)
{
    if (!desktop_)
        return std::nullopt;
    ChooserRequest request;
    request.mode = ChooserRequest::Mode::oneFile;
    request.message = message;
    request.extensions = sorted(extensions);
    const QStringList chosen = desktop_->choose(request);
    if (chosen.isEmpty())
        return std::nullopt;
    return QUrl::fromLocalFile(chosen.first());
}

void AppModel::chooseLUT()
{
    if (const auto url = chooseOneFile(QStringLiteral("Select a LUT (.cube)"), MediaType::lutExtensions()))
        setLUT(*url);
}

void AppModel::applyLiveGrade(ClipItem& clip) const
{
    clip.grade.exposure = liveGrade_.exposure();
    clip.grade.contrast = liveGrade_.contrast();
    clip.grade.saturation = liveGrade_.saturation();
    clip.grade.temperature = liveGrade_.temperature();
}

void AppModel::commitLiveGrade()
{
    const auto index = selectedIndex();
    if (!index)
        return;
    updateClip(clips_[*index].id, [this](ClipItem& clip) { applyLiveGrade(clip); });
}

void AppModel::applyAdjustmentsToAll()
{
    commitLiveGrade();
    QList<ClipItem> graded = clips_;
    for (ClipItem& clip : graded)
        applyLiveGrade(clip);
    setClips(std::move(graded));
    setStatusMessage(QStringLiteral("Adjustments applied to all clips."));
}

void AppModel::resetAdjustments()
{
    liveGrade_.setExposure(0);
    liveGrade_.setContrast(1);
    liveGrade_.setSaturation(1);
    liveGrade_.setTemperature(0);
    commitLiveGrade();
    pushLiveGradeToPreview();
}

void AppModel::chooseVideos()
{
    if (!desktop_)
        return;
    ChooserRequest request;
    request.mode = ChooserRequest::Mode::manyFiles;
    request.message = QStringLiteral("Select video clips");
    request.extensions = sorted(MediaType::videoExtensions());
    request.audioVisualOnly = true;
    const QStringList chosen = desktop_->choose(request);
    if (chosen.isEmpty())
        return;
    QList<QUrl> urls;
    for (const QString& path : chosen)
        urls << QUrl::fromLocalFile(path);
    addURLs(urls);
}

void AppModel::chooseOutputFolder()
{
    if (!desktop_)
        return;
    ChooserRequest request;
    request.mode = ChooserRequest::Mode::folder;
    request.message = QStringLiteral("Folder for converted clips");
    request.confirmLabel = QStringLiteral("Choose");
    request.canCreateFolders = true;
    const QStringList chosen = desktop_->choose(request);
    if (!chosen.isEmpty())
        setOutputFolder(QUrl::fromLocalFile(chosen.first()));
}

}  // namespace tavrelune
