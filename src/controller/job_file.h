// The job file: a JSON description of a batch, as `tavrelune convert --job`
// reads it and the window saves and opens it, held in plain values.
//
// Keys use the controller's own names. Every value is optional except a
// clip's url: an absent key keeps the controller's default. Unknown keys,
// wrong types and bad names are errors that name the key ("clips[1].exposure").
// Relative paths are resolved against the job file's folder.
#pragma once

#include "model/clip_item.h"
#include "model/encode_settings.h"

#include <QList>
#include <array>
#include <QString>
#include <optional>

namespace tavrelune {

// Fields set here replace the same fields of `target`.
template <typename T>
void overrideWith(std::optional<T>& target, const std::optional<T>& given)
{
    if (given)
        target = given;
}

struct SettingsChoice {
    std::optional<VideoCodec> codec;
    std::optional<QualityPreset> quality;
    std::optional<bool> copyAudio;
    std::optional<bool> removeAudio;
    std::optional<bool> concatenateClips;
    std::optional<bool> matchPreview;
    std::optional<QString> combinedName;

    EncodeSettings appliedTo(EncodeSettings settings) const;
    void overrideWith(const SettingsChoice& given);
    bool operator==(const SettingsChoice&) const = default;
};

struct GradeChoice {
    std::optional<double> exposure;
    std::optional<double> contrast;
    std::optional<double> saturation;
    std::optional<double> temperature;
    std::optional<double> tint;

    // This choice's value of each grade control, in gradeControls' order.
    static constexpr std::array<std::optional<double> GradeChoice::*, gradeControls.size()> members{
        &GradeChoice::exposure, &GradeChoice::contrast, &GradeChoice::saturation, &GradeChoice::temperature,
        &GradeChoice::tint};

    void applyTo(ClipItem& clip) const;
    void overrideWith(const GradeChoice& given);
    bool operator==(const GradeChoice&) const = default;
};

struct WatermarkChoice {
    std::optional<QString> url;
    std::optional<double> x;
    std::optional<double> y;
    std::optional<double> widthFraction;
    std::optional<double> opacity;

    // Whether any placement value is given (they need a watermark image).
    bool placesWatermark() const { return x || y || widthFraction || opacity; }
    void overrideWith(const WatermarkChoice& given);
    bool operator==(const WatermarkChoice&) const = default;
};

struct JobClip {
    QString url;  // absolute, cleaned path
    GradeChoice grade;
    std::optional<double> inPoint;
    std::optional<double> outPoint;

    // Writes the grade and the trim; the trim is limited to the probed
    // duration the way the probe limits a stored trim.
    void applyTo(ClipItem& clip) const;
    bool operator==(const JobClip&) const = default;
};

struct ConvertJob {
    std::optional<QString> outputFolder;
    SettingsChoice settings;
    std::optional<QString> lut;
    WatermarkChoice watermark;
    QList<JobClip> clips;

    bool operator==(const ConvertJob&) const = default;
};

// What is wrong with a job file, in one line that names the key.
struct JobFileError {
    QString message;
};

// Parses job text; relative paths are taken from `baseFolder`. Throws JobFileError.
ConvertJob parseConvertJob(const QByteArray& json, const QString& baseFolder);

// Reads and parses the file at `path`. Throws JobFileError.
ConvertJob readConvertJob(const QString& path);

// The job as JSON text that parseConvertJob reads back equal (paths as
// given: the window gives absolute ones, so the file can move). Absent
// values are left out.
QByteArray convertJobText(const ConvertJob& job);

}  // namespace tavrelune
