// The timeline widget under a real X server: what a press, moves and a
// release report, when it reports nothing, and the cursor it shows.
#include "ui/trim/trim_timeline_view.h"

#include <QGuiApplication>
#include <QMouseEvent>
#include <QTest>
#include <gtest/gtest.h>

using namespace tavrelune::trim;

namespace {

// A 10 s clip on a 218 px control: x(t) = 9 + 20 t, the track at y 13–21.
class TimelineTest : public ::testing::Test {
protected:
    TimelineTest()
    {
        view.resize(218, 34);
        view.setState({.duration = 10, .inPoint = 2, .outPoint = 8, .playhead = 5});
        view.onScrubStart = [this] { log.push_back("start"); };
        view.onScrubEnd = [this] { log.push_back("end"); };
        view.onInChange = [this](double t) { log.push_back("in " + QString::number(t).toStdString()); };
        view.onOutChange = [this](double t) { log.push_back("out " + QString::number(t).toStdString()); };
        view.onPlayheadChange = [this](double t) { log.push_back("playhead " + QString::number(t).toStdString()); };
        view.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&view));
    }

    void press(int x, int y = 17) { QTest::mousePress(&view, Qt::LeftButton, {}, QPoint(x, y)); }
    // Sent straight to the view: QTest moves the X pointer for a move without
    // a button held, and that event arrives later.
    void move(int x, int y = 17)
    {
        QMouseEvent event(QEvent::MouseMove, QPointF(x, y), view.mapToGlobal(QPointF(x, y)), Qt::NoButton,
                          QGuiApplication::mouseButtons(), {});
        QCoreApplication::sendEvent(&view, &event);
    }
    void release(int x, int y = 17) { QTest::mouseRelease(&view, Qt::LeftButton, {}, QPoint(x, y)); }

    TrimTimelineView view;
    std::vector<std::string> log;
};

using Log = std::vector<std::string>;

}  // namespace

TEST_F(TimelineTest, EachDragReportsStartItsTargetsTimesAndEnd)
{
    press(59);  // on the track, 10 px from the in handle
    move(89);
    move(500);  // past the end
    release(500);
    EXPECT_EQ(log, (Log{"start", "playhead 2.5", "playhead 4", "playhead 10", "end"}));

    log.clear();
    press(170);  // beside the out handle: it jumps to the pointer
    move(-40);
    release(-40);
    EXPECT_EQ(log, (Log{"start", "out 8.05", "out 0", "end"}));
    EXPECT_EQ(view.state().outPoint, 8) << "the view waits for its host's times";

    log.clear();
    press(59, 1);  // above the track and away from every item
    release(59, 1);
    EXPECT_TRUE(log.empty());
}

TEST_F(TimelineTest, DisabledOrEmptyTakesNoDragButARunningDragStillEndsAndTheCursorFollows)
{
    view.setState({.duration = 10, .inPoint = 2, .outPoint = 8, .playhead = 5, .enabled = false});
    press(49);
    release(49);
    view.setState({.duration = -4, .inPoint = 2, .outPoint = 8, .playhead = 5});
    EXPECT_EQ(view.state().duration, 0);
    press(9);
    release(9);
    EXPECT_TRUE(log.empty());

    view.setState({.duration = 10, .inPoint = 2, .outPoint = 8, .playhead = 5});
    press(49);
    view.setState({.duration = 10, .inPoint = 2, .outPoint = 8, .playhead = 5, .enabled = false});
    move(69);
    release(69);
    EXPECT_EQ(log, (Log{"start", "in 2", "end"}));

    // A widget disabled mid-drag never sees the release: the drag ends then.
    log.clear();
    view.setState({.duration = 10, .inPoint = 2, .outPoint = 8, .playhead = 5});
    press(109);
    view.setEnabled(false);
    EXPECT_EQ(log, (Log{"start", "playhead 5", "end"}));
    EXPECT_FALSE(view.dragTarget());

    // The cursor shows what a press would grab, even while drags are off.
    view.setEnabled(true);
    release(109);
    view.setState({.duration = 10, .inPoint = 2, .outPoint = 8, .playhead = 5, .enabled = false});
    move(50);
    EXPECT_EQ(view.cursor().shape(), Qt::SizeHorCursor);
    move(130);
    EXPECT_EQ(view.cursor().shape(), Qt::PointingHandCursor);
    move(130, 1);
    EXPECT_EQ(view.cursor().shape(), Qt::ArrowCursor);
    move(104, 1);
    EXPECT_EQ(view.cursor().shape(), Qt::PointingHandCursor) << "near the playhead at any height";
}
