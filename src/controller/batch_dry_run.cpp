// The dry run: the ffmpeg runs a batch would make, built as the batch builds
// them, without staging or running anything.
#include "controller/app_model.h"

#include "controller/output_naming.h"
#include "engine/concat_job.h"

#include <QDir>
#include <QFileInfo>

namespace tavrelune {

std::vector<PlannedCommand> AppModel::plannedCommands() const
{
    std::vector<PlannedCommand> commands;
    // As startConversion does, the selected clip takes the sliders' values.
    QList<ClipItem> clips = clips_;
    if (const auto index = selectedIndex())
        applyLiveGrade(clips[*index]);
    clips = tavrelune::clipsToConvert(clips, batchInputs(), false);
    const BatchPlan plan = planBatch(clips, settings_);
    const QString folder = outputFolder_.toLocalFile();
    // Staged files are shown in a stand-in for the run folder a real run
    // would make (this instance's own is gone when it exits).
    const QDir runFolder(QDir(workingFolder_).filePath(QStringLiteral("run-<instance>")));
    std::optional<QString> lutPath;
    if (!lutURL_.isEmpty())
        lutPath = runFolder.filePath("batch-" + QFileInfo(*stagedLUTTarget(lutURL_.toLocalFile())).fileName());
    std::optional<WatermarkOverlay> watermark;
    if (watermark_.isEnabled())
        watermark = overlayFor(runFolder.filePath("batch-active-watermark.png"));

    // Names chosen earlier in the plan are taken, as their files would be.
    QStringList claimed;
    const OutputNaming::PathTaken taken = [&claimed](const QString& path) {
        return claimed.contains(path) || OutputNaming::existsOnDisk(path);
    };
    const QString partsFolder = QDir(folder).filePath(partsFolderPrefix() + "<batch>");
    for (int position = 0; position < clips.size(); ++position) {
        const ClipItem& clip = clips[position];
        const QString output = plan.combine
                                   ? QDir(partsFolder).filePath(partFileName(position))
                                   : OutputNaming::uniqueOutputPath(clip.url.toLocalFile(), folder, taken);
        claimed << output;
        ClipConversion job = conversionFor(clip, plan, output, lutPath, watermark, settings_);
        prepareColour(job, clip, currentLook(), nullptr);
        commands.push_back({conversionArguments(job, ffmpeg_.encoder(settings_.codec)), output});
    }
    if (plan.combine) {
        const QString output = OutputNaming::uniqueCombinedOutputPath(folder, now_(), taken, settings_.combinedName);
        const QString list = concatListPath(partsFolder);
        commands.push_back({concatCopyArguments(list, output, settings_), output});
    }
    return commands;
}

}  // namespace tavrelune
