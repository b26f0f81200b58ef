// The controller's clip list as a Qt item model for the list view: one row
// per clip, in the controller's order. It keeps only the row identities the
// view was last told about; every value is read from the controller when the
// view asks. Dragging rows within the list moves the clips in the controller
// (which ignores moves while converting); dropping files adds them.
//
// Main thread. Does not own the controller, which must outlive it.
#pragma once

#include <QAbstractListModel>
#include <QUuid>

namespace tavrelune {
class AppModel;
}

namespace tavrelune::ui {

class ClipListModel : public QAbstractListModel {
    Q_OBJECT
public:
    enum Role { ClipRole = Qt::UserRole + 1, IdRole };
    static constexpr const char* rowsMimeType = "application/x-tavrelune-clip-rows";

    explicit ClipListModel(AppModel& model, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    bool canDropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                         const QModelIndex& parent) const override;
    bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                      const QModelIndex& parent) override;
    Qt::DropActions supportedDropActions() const override;
    Qt::DropActions supportedDragActions() const override;

    // Row of a clip, or -1.
    int rowOf(const QUuid& id) const;
    QUuid idAt(int row) const;

private:
    void followClips();

    AppModel& model_;
    QList<QUuid> rows_;
};

}  // namespace tavrelune::ui
