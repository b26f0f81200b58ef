#include "preview/sw_frame_renderer.h"

#include <mpv/render.h>

#include <chrono>

namespace tavrelune {

std::unique_ptr<SwFrameRenderer> SwFrameRenderer::create(mpv_handle* mpv, std::function<void()> onFrame)
{
    mpv_render_param params[] = {
        {MPV_RENDER_PARAM_API_TYPE, const_cast<char*>(MPV_RENDER_API_TYPE_SW)},
        {MPV_RENDER_PARAM_INVALID, nullptr},
    };
    mpv_render_context* context = nullptr;
    if (mpv_render_context_create(&context, mpv, params) < 0)
        return nullptr;
    return std::unique_ptr<SwFrameRenderer>(new SwFrameRenderer(context, std::move(onFrame)));
}

SwFrameRenderer::SwFrameRenderer(mpv_render_context* context, std::function<void()> onFrame)
    : context_(context), onFrame_(std::move(onFrame))
{
    thread_ = std::thread([this] { run(); });
    mpv_render_context_set_update_callback(context_, &SwFrameRenderer::onUpdate, this);
}

SwFrameRenderer::~SwFrameRenderer()
{
    {
        std::lock_guard guard(lock_);
        stopping_ = true;
    }
    wake_.notify_all();
    thread_.join();
    // No render call runs now, so these may come from this thread.
    mpv_render_context_set_update_callback(context_, nullptr, nullptr);
    mpv_render_context_free(context_);
}

void SwFrameRenderer::onUpdate(void* self)
{
    auto* renderer = static_cast<SwFrameRenderer*>(self);
    {
        std::lock_guard guard(renderer->lock_);
        renderer->updatePending_ = true;
    }
    renderer->wake_.notify_one();
}

void SwFrameRenderer::beginContent(QSize frameSize)
{
    std::lock_guard guard(lock_);
    size_ = frameSize.isValid() && !frameSize.isEmpty() ? frameSize : QSize(16, 16);
    publishing_ = true;
    ++generation_;
    recent_.clear();
}

void SwFrameRenderer::endContent()
{
    std::lock_guard guard(lock_);
    publishing_ = false;
    ++generation_;
    recent_.clear();
}

std::shared_ptr<const VideoFrame> SwFrameRenderer::latest() const
{
    std::lock_guard guard(lock_);
    return recent_.newest();
}

std::vector<std::shared_ptr<const VideoFrame>> SwFrameRenderer::framesAfter(std::uint64_t sequence) const
{
    std::lock_guard guard(lock_);
    return recent_.after(sequence);
}

bool SwFrameRenderer::isPublishing() const
{
    std::lock_guard guard(lock_);
    return publishing_;
}

void SwFrameRenderer::setStatistics(std::shared_ptr<FrameStatistics> statistics)
{
    std::lock_guard guard(lock_);
    statistics_ = std::move(statistics);
}

void SwFrameRenderer::run()
{
    std::unique_lock guard(lock_);
    for (;;) {
        wake_.wait(guard, [this] { return updatePending_ || stopping_; });
        if (stopping_)
            return;
        updatePending_ = false;
        guard.unlock();
        renderOnce();
        guard.lock();
    }
}

void SwFrameRenderer::renderOnce()
{
    if (!(mpv_render_context_update(context_) & MPV_RENDER_UPDATE_FRAME))
        return;
    mpv_render_frame_info info{};
    mpv_render_param infoParam{MPV_RENDER_PARAM_NEXT_FRAME_INFO, &info};
    // A redraw repeats whatever the output last had, which after a clip
    // change may be the previous clip's frame: only new frames are news.
    const bool newPicture = mpv_render_context_get_info(context_, infoParam) < 0
        || ((info.flags & MPV_RENDER_FRAME_INFO_PRESENT) && !(info.flags & MPV_RENDER_FRAME_INFO_REDRAW));

    QSize size;
    std::uint64_t generation = 0;
    bool publishing = false;
    std::shared_ptr<FrameStatistics> statistics;
    {
        std::lock_guard guard(lock_);
        size = size_;
        generation = generation_;
        publishing = publishing_;
        statistics = statistics_;
    }

    // mpv waits for every frame it announces to be rendered, so render even
    // a frame nobody will see.
    const auto started = std::chrono::steady_clock::now();
    std::shared_ptr<VideoFrame> frame = pool_.acquire(size.width(), size.height());
    int surfaceSize[2] = {frame->width(), frame->height()};
    auto stride = static_cast<std::size_t>(frame->stride());
    int blockForTargetTime = 0;
    mpv_render_param params[] = {
        {MPV_RENDER_PARAM_SW_SIZE, surfaceSize},
        {MPV_RENDER_PARAM_SW_FORMAT, const_cast<char*>("bgr0")},
        {MPV_RENDER_PARAM_SW_STRIDE, &stride},
        {MPV_RENDER_PARAM_SW_POINTER, frame->data()},
        {MPV_RENDER_PARAM_BLOCK_FOR_TARGET_TIME, &blockForTargetTime},
        {MPV_RENDER_PARAM_INVALID, nullptr},
    };
    if (mpv_render_context_render(context_, params) < 0 || !publishing || !newPicture)
        return;
    frame->makeOpaque();
    frame->sequence = ++sequence_;
    if (statistics) {
        const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - started;
        statistics->record(FrameStatistics::Stage::render, took.count());
    }
    {
        std::lock_guard guard(lock_);
        if (generation != generation_)
            return;  // a clip change came while rendering
        recent_.push(std::move(frame));
    }
    if (onFrame_)
        onFrame_();
}

}  // namespace tavrelune
