#include "preview/frame_grader.h"

#include <chrono>

namespace tavrelune {

FrameGrader::FrameGrader(std::function<void()> onReady, GradeFilterEngine::Kernels kernels)
    : onReady_(std::move(onReady)), engine_(kernels)
{
    thread_ = std::thread([this] { run(); });
}

FrameGrader::~FrameGrader()
{
    {
        std::lock_guard guard(lock_);
        stopping_ = true;
    }
    wake_.notify_all();
    thread_.join();
}

void FrameGrader::submit(std::shared_ptr<const VideoFrame> frame, std::shared_ptr<const GradeState> grade)
{
    if (!frame)
        return;
    {
        std::lock_guard guard(lock_);
        if (!waiting_.empty() && waiting_.back().frame->sequence == frame->sequence)
            waiting_.pop_back();
        else if (waiting_.size() >= FrameQueue::defaultCapacity)
            waiting_.clear();  // behind for good: on with the newest
        waiting_.push_back(Work{std::move(frame), std::move(grade)});
    }
    wake_.notify_one();
}

void FrameGrader::clear()
{
    std::lock_guard guard(lock_);
    waiting_.clear();
    results_.clear();
    ++generation_;
}

std::vector<std::shared_ptr<const VideoFrame>> FrameGrader::takeResults()
{
    std::lock_guard guard(lock_);
    std::vector<std::shared_ptr<const VideoFrame>> taken;
    while (!results_.empty())
        taken.push_back(results_.pop());
    return taken;
}

void FrameGrader::setStatistics(std::shared_ptr<FrameStatistics> statistics)
{
    std::lock_guard guard(lock_);
    statistics_ = std::move(statistics);
}

void FrameGrader::run()
{
    std::unique_lock guard(lock_);
    for (;;) {
        wake_.wait(guard, [this] { return !waiting_.empty() || stopping_; });
        if (stopping_)
            return;
        const Work work = std::move(waiting_.front());
        waiting_.pop_front();
        const std::uint64_t generation = generation_;
        const std::shared_ptr<FrameStatistics> statistics = statistics_;
        guard.unlock();
        std::shared_ptr<const VideoFrame> graded = grade(work, statistics.get());
        guard.lock();
        if (generation != generation_)
            continue;  // cleared meanwhile
        results_.push(std::move(graded));
        guard.unlock();
        if (onReady_)
            onReady_();
        guard.lock();
    }
}

std::shared_ptr<const VideoFrame> FrameGrader::grade(const Work& work, FrameStatistics* statistics)
{
    if (!work.grade)
        return work.frame;
    const GradeSnapshot snapshot = work.grade->snapshot();
    if (snapshot.bypass)
        return work.frame;
    const auto started = std::chrono::steady_clock::now();
    std::shared_ptr<VideoFrame> graded = pool_.acquire(work.frame->width(), work.frame->height());
    engine_.apply(work.frame->pixels(), graded->pixels(), snapshot.grade, snapshot.lut);
    graded->sequence = work.frame->sequence;
    if (statistics) {
        const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - started;
        statistics->record(FrameStatistics::Stage::grade, took.count());
    }
    return graded;
}

}  // namespace tavrelune
