// The command line of `tavrelune convert`, and the batch it asks for once
// an optional job file is laid under it.
//
// Pure: parsing touches no file. Paths come back absolute and cleaned, as
// the controller stores them.
#pragma once

#include "controller/job_file.h"

#include <QStringList>

namespace tavrelune::cli {

struct ConvertOptions {
    QStringList files;  // FILE arguments, absolute
    std::optional<QString> jobPath;
    std::optional<QString> outputFolder;
    SettingsChoice settings;
    GradeChoice grade;          // for every clip
    WatermarkChoice watermark;  // placement only, never a url
    bool dryRun = false;
    bool help = false;

    bool operator==(const ConvertOptions&) const = default;
};

// A bad option or value, in one line.
struct UsageError {
    QString message;
};

// `arguments` are those after "convert". Throws UsageError.
ConvertOptions parseConvertOptions(const QStringList& arguments);

QString convertHelpText();

// Everything the command does to the controller, in the order it does it.
struct ConvertRequest {
    std::optional<QString> outputFolder;
    SettingsChoice settings;
    // Given to addURLs in this order: the job's LUT and watermark, its
    // clips, then the FILE arguments (so a FILE .cube wins over the job's).
    QStringList files;
    // Grade and trim per clip path, set once the clips are probed.
    QList<JobClip> clipEdits;
    WatermarkChoice watermark;
};

// The job's choices with the command line's laid over them.
ConvertRequest mergeRequest(const ConvertJob& job, const ConvertOptions& options);

}  // namespace tavrelune::cli
