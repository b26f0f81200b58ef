#include "controller/job_application.h"

#include "controller/app_model.h"

#include <algorithm>

namespace tavrelune {

ConvertJob jobOf(const AppModel& model)
{
    ConvertJob job;
    if (!model.outputFolder().isEmpty())
        job.outputFolder = model.outputFolder().toLocalFile();
    const EncodeSettings& s = model.settings();
    job.settings = {s.codec, s.quality, s.copyAudio, s.removeAudio, s.concatenateClips, s.matchPreview};
    if (!s.combinedName.isEmpty())
        job.settings.combinedName = s.combinedName;
    if (!model.lutURL().isEmpty())
        job.lut = model.lutURL().toLocalFile();
    if (const WatermarkSettings& mark = model.watermark(); mark.isEnabled())
        job.watermark = {mark.url->toLocalFile(), mark.x, mark.y, mark.widthFraction, mark.opacity};
    for (const ClipItem& clip : model.clips()) {
        JobClip entry;
        entry.url = clip.url.toLocalFile();
        for (std::size_t i = 0; i < gradeControls.size(); ++i)
            entry.grade.*GradeChoice::members[i] = clip.grade.*gradeControls[i].member;
        if (clip.inPoint > 0)
            entry.inPoint = clip.inPoint;
        entry.outPoint = clip.outPoint;
        job.clips << entry;
    }
    return job;
}

void applyClipEdits(AppModel& model, const QList<JobClip>& edits)
{
    const QList<ClipItem> clips = model.clips();
    for (const ClipItem& clip : clips) {
        const QString path = clip.url.toLocalFile();
        const auto edit = std::find_if(edits.begin(), edits.end(),
                                       [&path](const JobClip& candidate) { return candidate.url == path; });
        if (edit != edits.end())
            model.updateClip(clip.id, [&edit](ClipItem& stored) { edit->applyTo(stored); });
    }
    // A batch starts by committing the sliders into the selected clip, as
    // when the user presses Convert. The sliders must therefore show that
    // clip's stored grade, as they do after selecting it in the window;
    // otherwise the first clip would lose its grade. (selectClip would commit
    // the old slider values first, so it cannot be used here.)
    if (const auto selected = model.selectedClip())
        model.liveGrade().copyFrom(*selected);
}

void placeWatermark(AppModel& model, const WatermarkChoice& choice)
{
    if (choice.x || choice.y || choice.widthFraction) {
        const WatermarkSettings& current = model.watermark();
        model.updateWatermarkLayout(choice.x.value_or(current.x), choice.y.value_or(current.y),
                                    choice.widthFraction);
    }
    if (choice.opacity)
        model.updateWatermarkOpacity(*choice.opacity);
}

}  // namespace tavrelune
