#include "preview/frame_statistics.h"

namespace tavrelune {

void FrameStatistics::record(Stage stage, double milliseconds)
{
    std::lock_guard guard(lock_);
    samples_[static_cast<std::size_t>(stage)].push_back(milliseconds);
}

std::vector<double> FrameStatistics::samples(Stage stage) const
{
    std::lock_guard guard(lock_);
    return samples_[static_cast<std::size_t>(stage)];
}

void FrameStatistics::clear()
{
    std::lock_guard guard(lock_);
    for (auto& stage : samples_)
        stage.clear();
}

}  // namespace tavrelune
