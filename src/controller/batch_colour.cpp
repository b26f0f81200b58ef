// What each export of a batch needs for its colour: the staged LUT, the
// baked preview grade or the filter chain, and the delivery tables of HDR
// and BT.2020 clips.
#include "controller/app_model.h"

#include "grading/baked_cube.h"
#include "grading/delivery_table.h"
#include "model/delivery_conversion.h"

#include "grading/cube_writer.h"
#include "model/media_type.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace tavrelune {

AppModel::BatchLook AppModel::currentLook() const
{
    return {grader_.lut(), !lutURL_.isEmpty() && !grader_.lut()};
}

std::optional<QString> AppModel::matchedPreviewCube(const ClipItem& clip, const BatchLook& look, bool write) const
{
    const GradeValues grade{clip.grade.exposure, clip.grade.contrast, clip.grade.saturation, clip.grade.temperature};
    if (!BakedCube::isNeeded(grade, look.lut))
        return std::nullopt;
    if (write)
        return BakedCube::writeBakedCube(workspace_, grade, look.lut);
    return QDir(workspace_).filePath(BakedCube::fileName(grade, look.lut));
}

void AppModel::prepareColour(ClipConversion& job, const ClipItem& clip, const BatchLook& look,
                             QStringList* written) const
{
    const auto remember = [written](const QString& path) {
        if (written && !written->contains(path))
            *written << path;
    };
    // The preview shows the table the grader holds; a LUT it cannot read
    // (not a .cube) is left to ffmpeg's own filters.
    if (job.settings.matchPreview && look.previewLacksLUT)
        job.settings.matchPreview = false;
    if (job.settings.matchPreview) {
        job.bakedCube = matchedPreviewCube(clip, look, written != nullptr);
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

std::optional<QString> AppModel::stagedLUTTarget(const QString& source) const
{
    return QDir(workspace_).filePath("active-lut." + QFileInfo(source).suffix().toLower());
}

std::optional<QString> AppModel::preparedLUTPath(const std::optional<QString>& source)
{
    const std::optional<QString> chosen =
        source ? source : (lutURL_.isEmpty() ? std::nullopt : std::optional(lutURL_.toLocalFile()));
    if (!chosen)
        return std::nullopt;
    if (stagedLUT_ && QFileInfo::exists(*stagedLUT_))
        return stagedLUT_;
    const QString target = *stagedLUTTarget(*chosen);
    QFile::remove(target);
    if (MediaType::extensionOf(*chosen) != "cube") {
        // Other formats are ffmpeg's alone to read; the preview shows none.
        if (!QFile::copy(*chosen, target))
            return chosen;
    } else {
        // The table as the preview reads it, so both show the same colours.
        const QByteArray text = cubeText(CubeLUT::load(*chosen));
        QSaveFile file(target);
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() || !file.commit())
            throw PlatformError(QStringLiteral("Could not write the LUT for the export: ") + file.errorString());
    }
    stagedLUT_ = target;
    return target;
}

QString AppModel::batchCopy(const QString& staged) const
{
    const QString copy = QDir(workspace_).filePath(QStringLiteral("batch-") + QFileInfo(staged).fileName());
    QFile::remove(copy);
    if (!QFile::copy(staged, copy))
        throw PlatformError(QStringLiteral("Could not copy %1 for the batch.").arg(QFileInfo(staged).fileName()));
    return copy;
}

}  // namespace tavrelune
