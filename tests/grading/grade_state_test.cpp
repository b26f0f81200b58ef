// The shared grade state and the observable slider values.
#include "grading/grade_state.h"
#include "grading/live_grade.h"
#include "model/clip_item.h"

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

TEST(LiveGrade, CopiesAClipAndNotifiesOnlyChangedValues)
{
    LiveGrade live;
    QStringList notified;
    QObject::connect(&live, &LiveGrade::exposureChanged, [&](double v) { notified << "exposure " + QString::number(v); });
    QObject::connect(&live, &LiveGrade::contrastChanged, [&](double v) { notified << "contrast " + QString::number(v); });
    QObject::connect(&live, &LiveGrade::saturationChanged, [&](double v) { notified << "saturation " + QString::number(v); });
    QObject::connect(&live, &LiveGrade::temperatureChanged, [&](double v) { notified << "temperature " + QString::number(v); });
    ClipItem clip;
    clip.exposure = 0.5;
    clip.contrast = 1.2;
    clip.saturation = 0.8;
    clip.temperature = -40;
    live.copyFrom(clip);
    EXPECT_EQ(live.values(), (GradeValues{0.5, 1.2, 0.8, -40}));
    EXPECT_EQ(notified, QStringList({"exposure 0.5", "contrast 1.2", "saturation 0.8", "temperature -40"}));

    notified.clear();
    clip.contrast = 1;
    live.copyFrom(clip);
    live.setTemperature(-40);
    EXPECT_EQ(notified, QStringList({"contrast 1"}));
    EXPECT_DOUBLE_EQ(live.property("contrast").toDouble(), 1.0);
}

}  // namespace
}  // namespace tavrelune
