// Per-frame timings of the live preview path, recorded by the player's render
// thread, a view's grader and the view's drawing, for benchmarks and
// diagnostics. Nothing records unless one is attached.
//
// Thread-safe. Times are milliseconds of wall-clock time. Shared by
// std::shared_ptr between the reader and the recording components.
#pragma once

#include <array>
#include <cstdint>
#include <mutex>
#include <vector>

namespace tavrelune {

class FrameStatistics {
public:
    enum class Stage { render, grade, draw };

    void record(Stage stage, double milliseconds);
    std::vector<double> samples(Stage stage) const;
    void clear();

private:
    mutable std::mutex lock_;
    std::array<std::vector<double>, 3> samples_;
};

}  // namespace tavrelune
