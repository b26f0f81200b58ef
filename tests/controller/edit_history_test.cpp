// Undo and redo over the batch's edits, one step per change or gesture.
#include "controller_fixture.h"

#include "controller/edit_history.h"

#include <QImage>

using namespace tavrelune;
using namespace tavrelune::test;

TEST_F(ControllerTest, EveryEditUndoesAndRedoesAsOneStep)
{
    EditHistory history(*model);
    EXPECT_FALSE(history.canUndo());
    addAndProbe({clip("a.mov", {.seconds = 0.5}), clip("b.mov", {.seconds = 0.5})});
    const QUuid a = clipAt(0).id;
    const QUuid b = clipAt(1).id;

    model->updateClip(a, [](ClipItem& clip) { clip.grade.exposure = 0.5; });
    history.beginGesture();  // a drag: many changes, one step
    for (double contrast : {1.1, 1.2, 1.3})
        model->updateClip(b, [contrast](ClipItem& clip) { clip.grade.contrast = contrast; });
    history.endGesture();
    model->moveClips({1}, 0);
    model->removeClip(a);
    const QString logo = root.file("logo.png");
    QImage(40, 20, QImage::Format_ARGB32).save(logo);
    model->setWatermark(QUrl::fromLocalFile(logo));
    model->updateWatermarkLayout(0.2, 0.3, 0.25);

    const auto ids = [this] {
        QList<QUuid> result;
        for (const ClipItem& clip : model->clips())
            result << clip.id;
        return result;
    };
    history.undo();  // the placement
    EXPECT_TRUE(model->watermark().isEnabled());
    EXPECT_NE(model->watermark().widthFraction, 0.25);
    history.undo();  // the watermark
    EXPECT_FALSE(model->watermark().isEnabled());
    history.undo();  // the removal: a comes back probed, where it was
    EXPECT_EQ(ids(), (QList<QUuid>{b, a}));
    EXPECT_TRUE(clipAt(1).duration.has_value());
    history.undo();  // the move
    EXPECT_EQ(ids(), (QList<QUuid>{a, b}));
    history.undo();  // the whole drag
    EXPECT_EQ(clipAt(1).grade.contrast, 1.0);
    history.undo();
    EXPECT_EQ(clipAt(0).grade.exposure, 0.0);
    EXPECT_EQ(model->liveGrade().exposure(), 0.0) << "the sliders follow the selected clip";

    history.redo();
    history.redo();
    EXPECT_EQ(clipAt(0).grade.exposure, 0.5);
    EXPECT_EQ(clipAt(1).grade.contrast, 1.3);
    model->updateClip(a, [](ClipItem& clip) { clip.grade.saturation = 0.2; });
    EXPECT_FALSE(history.canRedo()) << "a new edit drops what could be redone";

    const qsizetype steps = [&] {
        qsizetype n = 0;
        while (history.canUndo()) {
            history.undo();
            ++n;
        }
        return n;
    }();
    EXPECT_EQ(steps, 4) << "saturation, contrast, exposure, adding the clips";
    EXPECT_TRUE(model->clips().isEmpty()) << "back to before the clips were added";
}
