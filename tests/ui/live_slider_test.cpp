// Begin / change / end reporting of the live slider and its held-knob rule.
#include "ui/live_slider.h"

#include <QSignalSpy>
#include <QStyle>
#include <QStyleOptionSlider>
#include <QTest>
#include <gtest/gtest.h>

using namespace tavrelune::ui;

namespace {

class LiveSliderTest : public ::testing::Test {
protected:
    LiveSliderTest() : slider(-3, 3)
    {
        slider.resize(300, 30);
        slider.setValue(0);
        slider.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&slider));
    }

    QPoint knob()
    {
        QStyleOptionSlider option;
        option.initFrom(&slider);
        option.orientation = Qt::Horizontal;
        option.minimum = slider.minimum();
        option.maximum = slider.maximum();
        option.sliderPosition = slider.sliderPosition();
        option.sliderValue = slider.QSlider::value();
        return slider.style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, &slider).center();
    }

    QList<bool> editing() const
    {
        QList<bool> result;
        for (const QList<QVariant>& call : editingSpy)
            result << call.first().toBool();
        return result;
    }

    LiveSlider slider;
    QSignalSpy editingSpy{&slider, &LiveSlider::editingChanged};
    QSignalSpy valueSpy{&slider, &LiveSlider::valueEdited};
};

}  // namespace

TEST_F(LiveSliderTest, ADragBeginsOnceReportsEveryMoveAndEndsOnce)
{
    const QPoint start = knob();
    QTest::mousePress(&slider, Qt::LeftButton, {}, start);
    QTest::mouseMove(&slider, start + QPoint(30, 0));
    QTest::mouseMove(&slider, start + QPoint(60, 0));
    QTest::mouseRelease(&slider, Qt::LeftButton, {}, start + QPoint(60, 0));
    EXPECT_EQ(editing(), (QList<bool>{true, false}));
    ASSERT_GE(valueSpy.size(), 2);
    EXPECT_GT(valueSpy.last().first().toDouble(), valueSpy.first().first().toDouble());
    EXPECT_DOUBLE_EQ(valueSpy.last().first().toDouble(), slider.value());
    EXPECT_GT(slider.value(), 0.5) << "the knob followed the pointer";
}

TEST_F(LiveSliderTest, AClickOnTheKnobBeginsAndEndsWithoutAChange)
{
    QTest::mouseClick(&slider, Qt::LeftButton, {}, knob());
    EXPECT_EQ(editing(), (QList<bool>{true, false}));
    EXPECT_TRUE(valueSpy.isEmpty());
}

TEST_F(LiveSliderTest, AClickOnTheTrackJumpsThere)
{
    QTest::mouseClick(&slider, Qt::LeftButton, {}, QPoint(slider.width() - 10, slider.height() / 2));
    EXPECT_EQ(editing(), (QList<bool>{true, false}));
    ASSERT_EQ(valueSpy.size(), 1);
    EXPECT_GT(slider.value(), 2.5);
}

TEST_F(LiveSliderTest, AValueFromOutsideWaitsWhileTheKnobIsHeld)
{
    slider.setValue(1.5);
    EXPECT_NEAR(slider.value(), 1.5, 0.001);
    EXPECT_TRUE(valueSpy.isEmpty()) << "values from outside are not edits";

    QTest::mousePress(&slider, Qt::LeftButton, {}, knob());
    slider.setValue(-2);
    EXPECT_NEAR(slider.value(), 1.5, 0.001);
    QTest::mouseRelease(&slider, Qt::LeftButton, {}, knob());
    EXPECT_NEAR(slider.value(), -2, 0.001);
    EXPECT_TRUE(valueSpy.isEmpty());
}

TEST_F(LiveSliderTest, AKeyStepIsOneWholeEdit)
{
    slider.setFocus();
    QTest::keyClick(&slider, Qt::Key_Right);
    EXPECT_EQ(editing(), (QList<bool>{true, false}));
    ASSERT_EQ(valueSpy.size(), 1);
    EXPECT_NEAR(valueSpy.first().first().toDouble(), 0.06, 0.0001) << "a hundredth of the range until a unit is set";
    QTest::keyClick(&slider, Qt::Key_Tab);
    EXPECT_EQ(editingSpy.size(), 2) << "keys that move nothing report nothing";

    slider.setStep(0.05);
    QTest::keyClick(&slider, Qt::Key_Left);
    QTest::keyClick(&slider, Qt::Key_Left);
    QTest::keyClick(&slider, Qt::Key_PageUp);
    ASSERT_EQ(valueSpy.size(), 4);
    const double onTheGrid[] = {0.06, 0.0, -0.05, 0.45};
    for (int i = 0; i < 4; ++i)
        EXPECT_NEAR(valueSpy[i].first().toDouble(), onTheGrid[i], 1e-12) << "steps land on the unit's grid";
}

TEST_F(LiveSliderTest, ADoubleClickReturnsToTheDefaultAsOneEdit)
{
    slider.setValue(2);
    slider.setDefaultValue(0);
    QTest::mouseDClick(&slider, Qt::LeftButton, {}, QPoint(slider.width() - 10, slider.height() / 2));
    EXPECT_DOUBLE_EQ(slider.value(), 0);
    EXPECT_DOUBLE_EQ(valueSpy.last().first().toDouble(), 0);
    EXPECT_EQ(editing().size() % 2, 0) << "every begin has its end";
    EXPECT_FALSE(slider.isTracking());
}

// Disabled (a batch starting) or hidden while held: the drag ends then, and
// a value that waited for the release is shown.
TEST_F(LiveSliderTest, DisablingOrHidingAHeldKnobEndsTheDrag)
{
    for (const bool hide : {false, true}) {
        editingSpy.clear();
        QTest::mousePress(&slider, Qt::LeftButton, {}, knob());
        slider.setValue(hide ? 1 : -1);
        if (hide)
            slider.hide();
        else
            slider.setEnabled(false);
        EXPECT_EQ(editing(), (QList<bool>{true, false})) << hide;
        EXPECT_FALSE(slider.isSliderDown());
        EXPECT_NEAR(slider.value(), hide ? 1 : -1, 0.001);
        QTest::mouseRelease(&slider, Qt::LeftButton, {}, knob());
        EXPECT_EQ(editing().size(), 2) << "the late release reports nothing more";
        slider.setEnabled(true);
        slider.show();
    }
}
