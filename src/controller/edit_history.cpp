#include "controller/edit_history.h"

#include "controller/app_model.h"

#include <algorithm>

namespace tavrelune {

namespace {

bool sameClipEdits(const ClipItem& a, const ClipItem& b)
{
    return a.id == b.id && a.url == b.url && a.grade == b.grade && a.inPoint == b.inPoint
           && a.outPoint == b.outPoint;
}

}  // namespace

bool EditState::sameEdits(const EditState& other) const
{
    return lut == other.lut && watermark == other.watermark
           && std::equal(clips.begin(), clips.end(), other.clips.begin(), other.clips.end(), sameClipEdits);
}

EditHistory::EditHistory(AppModel& model, QObject* parent) : QObject(parent), model_(model), last_(capture())
{
    for (auto changed : {&AppModel::clipsChanged, &AppModel::lutURLChanged, &AppModel::watermarkChanged})
        connect(&model_, changed, this, &EditHistory::follow);
    connect(&model_, &AppModel::batchEnded, this, &EditHistory::changed);
    connect(&model_, &AppModel::isConvertingChanged, this, &EditHistory::changed);
}

EditState EditHistory::capture() const
{
    return {model_.clips(), model_.lutURL(), model_.watermark()};
}

void EditHistory::follow()
{
    if (restoring_ || gestures_ > 0)
        return;
    EditState now = capture();
    if (now.sameEdits(last_)) {
        last_ = std::move(now);  // keeps the latest probe results for a restore
        return;
    }
    undo_.append(std::move(last_));
    if (undo_.size() > depth)
        undo_.removeFirst();
    redo_.clear();
    last_ = std::move(now);
    Q_EMIT changed();
}

bool EditHistory::canUndo() const { return !undo_.isEmpty() && !model_.isBatchRunning(); }

bool EditHistory::canRedo() const { return !redo_.isEmpty() && !model_.isBatchRunning(); }

void EditHistory::undo()
{
    if (!canUndo())
        return;
    follow();  // a change not yet taken in is a step of its own
    redo_.append(capture());
    restore(undo_.takeLast());
    Q_EMIT changed();
}

void EditHistory::redo()
{
    if (!canRedo())
        return;
    undo_.append(capture());
    restore(redo_.takeLast());
    Q_EMIT changed();
}

void EditHistory::clear()
{
    undo_.clear();
    redo_.clear();
    last_ = capture();
    Q_EMIT changed();
}

void EditHistory::beginGesture()
{
    if (gestures_++ == 0)
        follow();  // what came before the gesture is a step of its own
}

void EditHistory::endGesture()
{
    if (gestures_ > 0 && --gestures_ == 0)
        follow();
}

void EditHistory::restore(const EditState& state)
{
    restoring_ = true;
    model_.restoreEdits(state.clips, state.lut, state.watermark);
    restoring_ = false;
    last_ = capture();
}

}  // namespace tavrelune
