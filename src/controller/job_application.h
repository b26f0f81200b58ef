// Between the controller and a job: the job the controller's batch is now
// (to save it), and writing a job's per-clip and watermark values onto it
// (when a job is opened or run from the command line).
//
// Main thread, like the controller.
#pragma once

#include "controller/job_file.h"

namespace tavrelune {

class AppModel;

// Every clip with its file, grade and trim; the LUT, the watermark and its
// placement, the export settings and the output folder, all given in full.
ConvertJob jobOf(const AppModel& model);

// Grade and trim onto the probed clips of the same files (the trim is
// limited by the probed duration); the sliders then show the selected
// clip's values.
void applyClipEdits(AppModel& model, const QList<JobClip>& edits);

// The placement and opacity given, onto the watermark already chosen.
void placeWatermark(AppModel& model, const WatermarkChoice& choice);

}  // namespace tavrelune
