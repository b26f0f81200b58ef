#include "preview/frame_queue.h"

#include <gtest/gtest.h>

using namespace tavrelune;

namespace {

std::shared_ptr<const VideoFrame> frame(std::uint64_t sequence)
{
    auto made = std::make_shared<VideoFrame>(2, 2);
    made->sequence = sequence;
    return made;
}

std::vector<std::uint64_t> sequences(const std::vector<std::shared_ptr<const VideoFrame>>& frames)
{
    std::vector<std::uint64_t> numbers;
    for (const auto& each : frames)
        numbers.push_back(each->sequence);
    return numbers;
}

}  // namespace

TEST(FrameQueue, HistoryKeepsTheNewestFewInOrderAndHandsOutWhatIsNew)
{
    FrameQueue queue(FrameQueue::Overflow::dropOldest, 3);
    for (std::uint64_t sequence = 1; sequence <= 5; ++sequence)
        queue.push(frame(sequence));
    EXPECT_EQ(sequences(queue.after(3)), (std::vector<std::uint64_t>{4, 5}));
    EXPECT_EQ(sequences(queue.after(1)), (std::vector<std::uint64_t>{3, 4, 5}));
    EXPECT_EQ(sequences(queue.after(0)), (std::vector<std::uint64_t>{5}));
    EXPECT_TRUE(queue.after(5).empty());
    EXPECT_EQ(queue.pop()->sequence, 3u);
    EXPECT_EQ(queue.newest()->sequence, 5u);
    EXPECT_EQ(queue.size(), 2u);
}

TEST(FrameQueue, QueueToTheScreenSkipsToTheNewestWhenItOverflows)
{
    FrameQueue queue(FrameQueue::Overflow::keepNewest, 3);
    for (std::uint64_t sequence = 1; sequence <= 3; ++sequence)
        queue.push(frame(sequence));
    EXPECT_EQ(queue.size(), 3u);  // a hiccup's worth waits in order
    queue.push(frame(4));
    ASSERT_EQ(queue.size(), 1u);
    EXPECT_EQ(queue.pop()->sequence, 4u);
}

TEST(FrameQueue, TheSamePictureAgainReplacesItsWaitingCopy)
{
    FrameQueue queue(FrameQueue::Overflow::keepNewest);
    const auto first = frame(7);
    const auto regraded = frame(7);
    queue.push(frame(6));
    queue.push(first);
    queue.push(regraded);
    queue.push(nullptr);
    ASSERT_EQ(queue.size(), 2u);
    EXPECT_EQ(queue.pop()->sequence, 6u);
    EXPECT_EQ(queue.pop(), regraded);
    EXPECT_EQ(queue.pop(), nullptr);
}
