// The inspector's cards on a real controller: what they show, what they
// write, and what is enabled when.
#include "window_fixture.h"

#include "ui/adjustments_card.h"
#include "ui/convert_button.h"
#include "ui/export_card.h"
#include "ui/file_choice_row.h"
#include "ui/inspector.h"
#include "ui/live_slider.h"
#include "ui/lut_card.h"
#include "ui/main_menus.h"
#include "ui/output_folder_card.h"
#include "ui/path_label.h"
#include "ui/segmented_control.h"
#include "ui/slider_row.h"
#include "ui/watermark_card.h"

#include <QCheckBox>
#include <QComboBox>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QWheelEvent>

using namespace tavrelune;
using namespace tavrelune::test;

class InspectorTest : public WindowTest {
protected:
    ui::Inspector& inspector() { return *window->inspector(); }
    ui::ExportCard& exportCard() { return *inspector().exportCard(); }
    const ui::AdjustmentsCard::Rows& gradeRows() { return inspector().adjustmentsCard()->rows(); }

    void dragRight(QWidget* slider)
    {
        inspector().ensureWidgetVisible(slider);
        const QPoint from(slider->width() / 2, slider->height() / 2);
        QTest::mousePress(slider, Qt::LeftButton, {}, from);
        QTest::mouseMove(slider, from + QPoint(20, 0));
        QTest::mouseRelease(slider, Qt::LeftButton, {}, from + QPoint(20, 0));
    }
};

TEST_F(InspectorTest, PerClipSlidersShowTheLiveGradeAndStoreItWhenADragEnds)
{
    ui::AdjustmentsCard& card = *inspector().adjustmentsCard();
    EXPECT_FALSE(card.showsSliders());
    addClips(2);
    EXPECT_TRUE(card.showsSliders());

    LiveGrade& grade = model->liveGrade();
    grade.setExposure(0.5);
    grade.setContrast(1.2);
    grade.setSaturation(0.8);
    grade.setTemperature(-25);
    QStringList shown;
    for (const ui::SliderRow* row : gradeRows())
        shown << row->valueText();
    EXPECT_EQ(shown, (QStringList{"+0.50 EV", QString("1.20") + QChar(0x00D7), QString("0.80") + QChar(0x00D7), "-25",
                                  "+0"}));

    dragRight(gradeRows()[3]->slider());
    EXPECT_GT(grade.temperature(), 0) << "every move reaches the live grade";
    EXPECT_DOUBLE_EQ(clipAt(0).grade.temperature, grade.temperature()) << "the end of the drag stores it";
    EXPECT_DOUBLE_EQ(clipAt(0).grade.exposure, 0.5);

    QTest::mouseClick(card.findChild<QPushButton*>(), Qt::LeftButton);  // "Reset"
    EXPECT_EQ(gradeRows()[0]->valueText(), "+0.00 EV");
    EXPECT_NEAR(gradeRows()[0]->slider()->value(), 0, 0.001) << "an idle knob follows outside values";
    EXPECT_DOUBLE_EQ(clipAt(0).grade.temperature, 0);
}

TEST_F(InspectorTest, ATypedValueIsStoredAndEscapeKeepsTheValue)
{
    addClips(1);
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    ui::SliderRow& exposure = *gradeRows()[0];
    inspector().ensureWidgetVisible(&exposure);
    const auto type = [&](const QString& text, Qt::Key end) {
        QLabel* value = exposure.findChildren<QLabel*>().last();
        QTest::mouseDClick(value, Qt::LeftButton);
        ASSERT_TRUE(exposure.valueEditor()->hasFocus());
        exposure.valueEditor()->setText(text);
        QTest::keyClick(exposure.valueEditor(), end);
    };
    type("+0.35 EV", Qt::Key_Return);
    EXPECT_DOUBLE_EQ(clipAt(0).grade.exposure, 0.35);
    EXPECT_EQ(exposure.valueText(), "+0.35 EV");
    type("9", Qt::Key_Return);
    EXPECT_DOUBLE_EQ(clipAt(0).grade.exposure, 3) << "clamped to the slider's end";
    type("-1", Qt::Key_Escape);
    EXPECT_DOUBLE_EQ(clipAt(0).grade.exposure, 3);
    EXPECT_FALSE(exposure.valueEditor()->isVisible());
}

TEST_F(InspectorTest, LutAndWatermarkRowsShowTheChosenFiles)
{
    ui::FileChoiceRow& lut = *inspector().lutCard()->fileRow();
    EXPECT_EQ(lut.shownName(), "None");
    EXPECT_FALSE(lut.canClear());
    model->setLUT(QUrl::fromLocalFile(root.write("Warm.cube", "LUT_3D_SIZE 2\n0 0 0\n1 0 0\n0 1 0\n1 1 0\n"
                                                                  "0 0 1\n1 0 1\n0 1 1\n1 1 1\n")));
    EXPECT_EQ(lut.shownName(), "Warm.cube");
    EXPECT_TRUE(lut.canClear());
    model->clearLUT();
    EXPECT_EQ(lut.shownName(), "None");
    EXPECT_FALSE(lut.canClear());

    ui::WatermarkCard& watermark = *inspector().watermarkCard();
    EXPECT_FALSE(watermark.sizeRow()->isVisible());
    QImage logo(40, 20, QImage::Format_ARGB32);
    logo.fill(Qt::white);
    logo.save(root.file("logo.png"));
    model->setWatermark(QUrl::fromLocalFile(root.file("logo.png")));
    EXPECT_EQ(watermark.fileRow()->shownName(), "logo.png");
    EXPECT_TRUE(watermark.sizeRow()->isVisible());
    model->updateWatermarkSize(0.25);
    model->updateWatermarkOpacity(0.6);
    EXPECT_EQ(watermark.sizeRow()->valueText(), "25%");
    EXPECT_EQ(watermark.opacityRow()->valueText(), "60%");
    model->clearWatermark();
    EXPECT_FALSE(watermark.sizeRow()->isVisible());
}

TEST_F(InspectorTest, HintAndConvertButtonFollowTheClipsAndSettings)
{
    const QString copied = "Encoding with x265 (software). Audio is copied when possible.";
    const QString stripped = "Encoding with x265 (software). Audio is stripped from the export.";
    const QString joined = QString("Clips are scaled to the first clip") + QChar(0x2019)
                           + "s size and joined in list order. Encoding with x265 (software).";
    const struct {
        int clips;
        bool combine;
        bool removeAudio;
        QString hint;
        const char* button;
        bool combineEnabled;
        const char* forecastFiles;
    } cases[] = {
        {1, false, false, copied, "Convert all", false, " in 1 file"},
        {1, true, false, copied, "Convert all", false, " in 1 file"},
        {1, false, true, stripped, "Convert all", false, " in 1 file"},
        {2, true, true, joined, "Export one video", true, " in 1 file"},
        {2, false, true, stripped, "Convert all", true, " in 2 files"},
    };
    EXPECT_EQ(inspector().forecastText(), "");
    addClips(1);
    for (const auto& each : cases) {
        if (model->clips().size() < each.clips)
            addAndProbe({clip("second.mp4", {.seconds = 0.5})});
        model->setSettings({.removeAudio = each.removeAudio, .concatenateClips = each.combine});
        EXPECT_EQ(exportCard().hint(), each.hint) << each.clips << each.combine << each.removeAudio;
        EXPECT_EQ(inspector().convertButton()->text(), each.button) << each.clips << each.combine;
        EXPECT_EQ(exportCard().combineToggle()->isEnabled(), each.combineEnabled) << each.clips;
        EXPECT_TRUE(inspector().forecastText().startsWith("About ")) << inspector().forecastText().toStdString();
        EXPECT_TRUE(inspector().forecastText().endsWith(each.forecastFiles)) << each.clips << each.combine;
    }
    model->setSettings({.codec = VideoCodec::h264});
    EXPECT_EQ(exportCard().hint(), "Encoding with x264 (software). Audio is copied when possible.");

    // Whatever detection settles on is named once it ends.
    EncoderCatalog found;
    found.setEncoder(VideoCodec::h264, {"h264_nvenc", "NVENC (hardware)", {}, true});
    model->ffmpeg().pinEncoders(found);
    model->startEncoderDetection();
    QTest::qWait(20);
    EXPECT_EQ(exportCard().hint(), "Encoding with NVENC (hardware). Audio is copied when possible.");
}

TEST_F(InspectorTest, ExportControlsWriteTheSettings)
{
    addClips(2);
    ui::SegmentedControl& codec = *exportCard().codecPicker();
    inspector().ensureWidgetVisible(&codec);
    QTest::mouseClick(&codec, Qt::LeftButton, {}, codec.segmentRect(0).center());
    EXPECT_EQ(model->settings().codec, VideoCodec::h264);

    QComboBox& quality = *exportCard().qualityPicker();
    quality.setFocus();
    QTest::keyClick(&quality, Qt::Key_Down);
    EXPECT_EQ(model->settings().quality, QualityPreset::balanced);

    inspector().ensureWidgetVisible(exportCard().matchPreviewToggle());
    for (QCheckBox* toggle :
         {exportCard().combineToggle(), exportCard().removeAudioToggle(), exportCard().matchPreviewToggle()})
        QTest::mouseClick(toggle, Qt::LeftButton, {}, QPoint(8, toggle->height() / 2));
    EXPECT_TRUE(model->settings().concatenateClips);
    QLineEdit& name = *exportCard().combinedNameField();
    EXPECT_TRUE(name.isVisible()) << "combining offers a name for the file";
    name.setText(" Day one ");
    Q_EMIT name.editingFinished();
    EXPECT_EQ(model->settings().combinedName, "Day one");
    EXPECT_TRUE(model->settings().removeAudio);
    EXPECT_FALSE(model->settings().matchPreview) << "on by default, turned off";
    EXPECT_EQ(inspector().convertButton()->text(), "Export one video");
}

TEST_F(InspectorTest, WhileConvertingOnlyScrollingAndTheFolderTextStayEnabled)
{
    addClips(1);
    ui::ConvertButton& convert = *inspector().convertButton();
    const auto controls = [&] {
        QList<QWidget*> all{inspector().lutCard()->fileRow(), inspector().watermarkCard()->fileRow(),
                            exportCard().codecPicker(), exportCard().qualityPicker(),
                            exportCard().removeAudioToggle()};
        for (ui::SliderRow* row : gradeRows())
            all << row->slider();
        for (QPushButton* button : inspector().adjustmentsCard()->findChildren<QPushButton*>())
            all << button;
        for (QPushButton* button : inspector().outputFolderCard()->findChildren<QPushButton*>())
            all << button;
        return all;
    };
    EXPECT_TRUE(convert.isEnabled());
    EXPECT_EQ(convert.text(), "Convert all");
    for (QWidget* control : controls())
        EXPECT_TRUE(control->isEnabled()) << control->metaObject()->className();

    startConverting();
    EXPECT_FALSE(convert.isEnabled());
    EXPECT_EQ(convert.text(), QString("Working") + QChar(0x2026));
    for (QWidget* control : controls())
        EXPECT_FALSE(control->isEnabled()) << control->metaObject()->className();
    EXPECT_TRUE(inspector().outputFolderCard()->pathLabel()->isEnabled());
    EXPECT_TRUE(inspector().verticalScrollBar()->isEnabled());
    stopConverting();
    EXPECT_TRUE(convert.isEnabled());
}

TEST_F(InspectorTest, ConvertStaysInReachAndTheWheelScrollsPastUnfocusedControls)
{
    addClips(2);
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    window->resize(window->minimumSizeHint());
    QTRY_COMPARE(window->size(), window->minimumSizeHint());
    QWidget& convert = *inspector().convertButton();
    const QRect shown(convert.mapTo(window.get(), QPoint(0, 0)), convert.size());
    EXPECT_TRUE(convert.isVisible());
    EXPECT_TRUE(window->rect().contains(shown)) << "Convert is cut off at the smallest window";

    QScrollBar& scroll = *inspector().verticalScrollBar();
    ASSERT_GT(scroll.maximum(), 0) << "the cards should scroll at this size";
    scroll.setValue(scroll.maximum() / 2);
    QComboBox& quality = *exportCard().qualityPicker();
    inspector().ensureWidgetVisible(&quality);
    window->setFocus();
    const QualityPreset before = model->settings().quality;
    const int scrolledTo = scroll.value();
    const QPoint over = quality.rect().center();
    for (int turn = 0; turn < 2; ++turn) {
        QWheelEvent wheel(over, quality.mapToGlobal(over), {}, {0, -120}, Qt::NoButton, {}, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&quality, &wheel);
    }
    EXPECT_EQ(model->settings().quality, before) << "the wheel changed a list it only passed over";
    EXPECT_GT(scroll.value(), scrolledTo) << "the wheel should scroll the cards";

    quality.setFocus();
    ASSERT_TRUE(quality.hasFocus());
    QWheelEvent wheel(over, quality.mapToGlobal(over), {}, {0, -120}, Qt::NoButton, {}, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&quality, &wheel);
    EXPECT_NE(model->settings().quality, before) << "a focused list still takes the wheel";
}

TEST_F(InspectorTest, ConvertMakesOnlyWhatChangedSinceAndSaysHowMany)
{
    addClips(3);
    ui::ConvertButton& button = *inspector().convertButton();
    convert();
    EXPECT_EQ(button.text(), "All converted");
    EXPECT_FALSE(button.isEnabled());
    EXPECT_TRUE(window->menus()->convertAllAgain()->isEnabled());

    model->updateClip(clipAt(1).id, [](ClipItem& clip) { clip.grade.exposure = 0.5; });
    EXPECT_EQ(button.text(), "Convert 1 remaining");
    QTest::mouseClick(&button, Qt::LeftButton);
    waitForTask(model->conversionFinished());
    EXPECT_EQ(model->statusMessage(), "Done: converted 1 clip.");
    EXPECT_EQ(outputNames(), (QStringList{"clip1_graded.mp4", "clip2_graded-2.mp4", "clip2_graded.mp4",
                                          "clip3_graded.mp4"}));

    window->menus()->convertAllAgain()->trigger();
    waitForTask(model->conversionFinished());
    EXPECT_EQ(model->statusMessage(), "Done: converted 3 clips.");
}

TEST_F(InspectorTest, ASliderDragIsOneUndoStep)
{
    addClips(1);
    const QString logo = root.file("logo.png");
    QImage(40, 20, QImage::Format_ARGB32).save(logo);
    model->setWatermark(QUrl::fromLocalFile(logo));
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    const double before = model->watermark().widthFraction;
    QWidget* size = inspector().watermarkCard()->sizeRow()->slider();
    inspector().ensureWidgetVisible(size);
    const QPoint from(size->width() / 2, size->height() / 2);
    QTest::mousePress(size, Qt::LeftButton, {}, from);
    for (int step = 1; step <= 3; ++step)
        QTest::mouseMove(size, from + QPoint(15 * step, 0));
    QTest::mouseRelease(size, Qt::LeftButton, {}, from + QPoint(45, 0));
    const double dragged = model->watermark().widthFraction;
    ASSERT_GT(dragged, before);

    QTest::keyClick(window.get(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(model->watermark().widthFraction, before) << "the whole drag is one step";
    EXPECT_TRUE(model->watermark().isEnabled());
    QTest::keyClick(window.get(), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(model->watermark().widthFraction, dragged);
}
