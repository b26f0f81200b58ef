// What reading job text says: its one-line message, or "(accepted)".
#pragma once

#include "controller/job_file.h"

namespace tavrelune::test {

inline QString jobMessageFor(const QByteArray& json, const QString& baseFolder = "/jobs/today")
{
    try {
        parseConvertJob(json, baseFolder);
    } catch (const JobFileError& error) {
        return error.message;
    }
    return "(accepted)";
}

}  // namespace tavrelune::test
