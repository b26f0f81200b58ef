// Grades a live view's frames on a thread of its own, so that the GUI thread
// never waits for a grade.
//
// Work is taken in order, a few frames at most waiting (see frame_queue.h):
// a short stall skips nothing, a grade slower than the footage skips to the
// newest frame instead of falling behind, and the same frame submitted
// again (a regrade while paused) replaces its waiting copy, so only the
// newest grade is done. Results wait the same way until taken. The grade is read with GradeState::snapshot() when the
// work starts; a frame submitted without a grade state, or whose snapshot
// has `bypass` set, passes through unchanged (no copy).
//
// Threading: `submit`, `clear` and `takeResults` from any thread; `onReady` runs
// on the grading thread after each new result and must only hand the news
// on. The GradeFilterEngine is this object's alone and used only on its
// thread. Destroying the grader waits for the grade under way.
#pragma once

#include "grading/grade_filter_engine.h"
#include "grading/grade_state.h"
#include "preview/frame_queue.h"
#include "preview/frame_statistics.h"
#include "preview/video_frame.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

namespace tavrelune {

class FrameGrader {
public:
    explicit FrameGrader(std::function<void()> onReady,
                         GradeFilterEngine::Kernels kernels = GradeFilterEngine::Kernels::fastest);
    ~FrameGrader();
    FrameGrader(const FrameGrader&) = delete;
    FrameGrader& operator=(const FrameGrader&) = delete;

    void submit(std::shared_ptr<const VideoFrame> frame, std::shared_ptr<const GradeState> grade);
    // Drops waiting work and results; a grade under way is discarded.
    void clear();
    // The results not taken yet, oldest first.
    std::vector<std::shared_ptr<const VideoFrame>> takeResults();
    void setStatistics(std::shared_ptr<FrameStatistics> statistics);

private:
    struct Work {
        std::shared_ptr<const VideoFrame> frame;
        std::shared_ptr<const GradeState> grade;
    };

    void run();
    std::shared_ptr<const VideoFrame> grade(const Work& work, FrameStatistics* statistics);

    std::function<void()> onReady_;
    GradeFilterEngine engine_;  // grading thread only
    FramePool pool_;            // grading thread only

    mutable std::mutex lock_;
    std::condition_variable wake_;
    std::deque<Work> waiting_;
    std::uint64_t generation_ = 0;
    bool stopping_ = false;
    FrameQueue results_{FrameQueue::Overflow::keepNewest};
    std::shared_ptr<FrameStatistics> statistics_;
    std::thread thread_;
};

}  // namespace tavrelune
