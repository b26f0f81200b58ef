// The grade a live preview draws with, shared between the controller that
// writes it and the view that reads it for every frame.
//
// Thread-safe: written on the main thread, read from the drawing thread. One
// lock makes the six fields change together, so a snapshot never mixes an
// old and a new grade. The lock is held only while fields are copied or
// swapped; the LUT's entries are shared, so copying them costs a reference
// count. Shared by reference (e.g. std::shared_ptr) by the player that owns
// it, the controller and the view.
#pragma once

#include "grading/cube_lut.h"
#include "model/grade_values.h"

#include <mutex>
#include <optional>

namespace tavrelune {

struct GradeSnapshot {
    GradeValues grade;
    std::optional<CubeLUT> lut;
    // Draw frames without grade or LUT.
    bool bypass = false;
};

class GradeState {
public:
    GradeSnapshot snapshot() const;
    // Replaces all six fields in one step.
    void assign(GradeSnapshot next);

private:
    mutable std::mutex lock_;
    GradeSnapshot current_;
};

}  // namespace tavrelune
