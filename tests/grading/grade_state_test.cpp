// The shared grade state and the observable slider values.
#include "grading/grade_state.h"
#include "grading/live_grade.h"
#include "model/clip_item.h"

#include <cmath>
#include <gtest/gtest.h>

#include <QVariant>
#include <atomic>
#include <chrono>
#include <thread>

namespace tavrelune {
namespace {

TEST(GradeState, SnapshotsUnderAConcurrentWriterNeverMixTwoGrades)
{
    // Two grades whose every field differs; a reader must always see one of
    // them whole.
    const CubeLUT flat{2, std::make_shared<std::vector<float>>(32, 0.25f)};
    const GradeSnapshot older{{0.5, 1.2, 0.8, -40}, flat, false};
    const GradeSnapshot newer{{-1, 0.7, 1.5, 120}, std::nullopt, true};
    GradeState state;
    state.assign(older);
    std::atomic<bool> readerDone = false;
    std::thread writer([&] {
        for (int i = 0; !readerDone; ++i)
            state.assign(i % 2 ? older : newer);
    });
    int mixed = 0;
    int seenOlder = 0;
    int seenNewer = 0;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while ((seenOlder < 2000 || seenNewer < 2000) && std::chrono::steady_clock::now() < deadline) {
        const GradeSnapshot seen = state.snapshot();
        const bool isOlder = seen.grade == older.grade && seen.lut == older.lut && !seen.bypass;
        const bool isNewer = seen.grade == newer.grade && !seen.lut && seen.bypass;
        mixed += !isOlder && !isNewer;
        seenOlder += isOlder;
        seenNewer += isNewer;
    }
    readerDone = true;
    writer.join();
    EXPECT_EQ(mixed, 0);
    EXPECT_GT(seenNewer, 0) << "the reader never overlapped the writer";
}

TEST(LiveGrade, CopiesAClipAndNotifiesOnceOnlyWhenSomethingChanged)
{
    LiveGrade live;
    int notified = 0;
    QObject::connect(&live, &LiveGrade::valuesChanged, [&] { ++notified; });
    ClipItem clip;
    clip.grade = {0.5, 1.2, 0.8, -40, 12};
    live.copyFrom(clip);
    EXPECT_EQ(live.values(), clip.grade);
    EXPECT_EQ(notified, 1) << "a whole grade is one change";
    live.copyFrom(clip);
    live.setTemperature(-40);
    live.setValue(&GradeValues::tint, std::nan(""));
    live.setValue(&GradeValues::tint, std::nan(""));
    EXPECT_EQ(notified, 2) << "only a different value notifies, not-a-number once";
}

}  // namespace
}  // namespace tavrelune
