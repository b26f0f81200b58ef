// Undo and redo for the user's edits of the batch: each clip's grade and
// trim, the list itself (clips added, removed, reordered), the LUT and the
// watermark (its image, place, size and opacity). Settings, the output
// folder and what a batch writes into the rows (status, progress) are not
// edits. Every change the controller reports becomes one step, except
// inside a gesture: all changes between beginGesture() and endGesture() (a
// slider or watermark drag) make one step.
//
// Main thread. Follows the controller, which must outlive it. Nothing is
// undone or redone while a batch runs.
#pragma once

#include "model/clip_item.h"
#include "watermark/watermark_settings.h"

#include <QList>
#include <QObject>
#include <QUrl>

namespace tavrelune {

class AppModel;

// The edited part of the batch at one moment.
struct EditState {
    QList<ClipItem> clips;  // whole records, so a removed clip comes back probed
    QUrl lut;
    WatermarkSettings watermark;

    // Equal in what the user edits (order, files, grades, trims, LUT,
    // watermark), whatever the rows' probe results and statuses.
    bool sameEdits(const EditState& other) const;
};

class EditHistory : public QObject {
    Q_OBJECT
public:
    static constexpr qsizetype depth = 200;

    explicit EditHistory(AppModel& model, QObject* parent = nullptr);

    bool canUndo() const;
    bool canRedo() const;
    void undo();
    void redo();
    // Forgets every step (a job opened is where history starts).
    void clear();

    void beginGesture();
    void endGesture();

Q_SIGNALS:
    void changed();

private:
    void follow();
    EditState capture() const;
    void restore(const EditState& state);

    AppModel& model_;
    QList<EditState> undo_;
    QList<EditState> redo_;
    EditState last_;
    int gestures_ = 0;
    bool restoring_ = false;
};

}  // namespace tavrelune
