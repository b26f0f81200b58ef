// What each export of a batch needs for its colour: the baked preview grade
// or the filter chain, and the delivery tables of HDR and BT.2020 clips.
#include "controller/app_model.h"

#include "grading/baked_cube.h"
#include "grading/delivery_table.h"
#include "model/delivery_conversion.h"

#include <QDir>

namespace tavrelune {

bool AppModel::previewLacksLUT() const
{
    return !lutURL_.isEmpty() && !grader_.lut();
}

std::optional<QString> AppModel::matchedPreviewCube(const ClipItem& clip, bool write) const
{
    const GradeValues grade{clip.exposure, clip.contrast, clip.saturation, clip.temperature};
    if (!BakedCube::isNeeded(grade, grader_.lut()))
        return std::nullopt;
    if (write)
        return BakedCube::writeBakedCube(workspace_, grade, grader_.lut());
    return QDir(workspace_).filePath(BakedCube::fileName(grade, grader_.lut()));
}

void AppModel::prepareColour(ClipConversion& job, const ClipItem& clip, QStringList* written) const
{
    const auto remember = [written](const QString& path) {
        if (written && !written->contains(path))
            *written << path;
    };
    // The preview shows the table the grader holds; a LUT it cannot read
    // (not a .cube) is left to ffmpeg's own filters.
    if (job.settings.matchPreview && previewLacksLUT())
        job.settings.matchPreview = false;
    if (job.settings.matchPreview) {
        job.bakedCube = matchedPreviewCube(clip, written != nullptr);
        if (job.bakedCube)
            remember(*job.bakedCube);
    }
    const DeliveryConversion conversion = deliveryConversionFor(clip.color);
    if (conversion == DeliveryConversion::none)
        return;
    // The dry run names the files a run would write.
    const DeliveryTable::TableFiles tables = written ? DeliveryTable::writeTables(workspace_, conversion)
                                                     : DeliveryTable::tableFiles(workspace_, conversion);
    remember(tables.light);
    remember(tables.encoding);
    job.deliveryTables = tables;
}

}  // namespace tavrelune
