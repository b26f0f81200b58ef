#include "ui/clip_list_model.h"

#include "controller/app_model.h"
#include "ui/file_drop.h"

#include <QDataStream>
#include <QIODevice>
#include <QMimeData>

namespace tavrelune::ui {

ClipListModel::ClipListModel(AppModel& model, QObject* parent) : QAbstractListModel(parent), model_(model)
{
    for (const ClipItem& clip : model_.clips())
        rows_ << clip.id;
    connect(&model_, &AppModel::clipsChanged, this, &ClipListModel::followClips);
}

// Same clips in the same order: only values changed (progress, grade,
// status), which keeps the view's selection and scroll position. Anything
// else is a new list.
void ClipListModel::followClips()
{
    QList<QUuid> ids;
    for (const ClipItem& clip : model_.clips())
        ids << clip.id;
    if (ids == rows_) {
        if (!rows_.isEmpty())
            Q_EMIT dataChanged(index(0), index(static_cast<int>(rows_.size()) - 1));
        return;
    }
    beginResetModel();
    rows_ = std::move(ids);
    endResetModel();
}

int ClipListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant ClipListModel::data(const QModelIndex& index, int role) const
{
    const QList<ClipItem>& clips = model_.clips();
    if (!index.isValid() || index.row() >= clips.size() || clips[index.row()].id != rows_.value(index.row()))
        return {};
    const ClipItem& clip = clips[index.row()];
    switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole:
        return role == Qt::DisplayRole ? clip.name : clip.url.toLocalFile();
    case ClipRole:
        return QVariant::fromValue(clip);
    case IdRole:
        return clip.id;
    default:
        return {};
    }
}

Qt::ItemFlags ClipListModel::flags(const QModelIndex& index) const
{
    // Rows take no drops onto themselves: a drop lands between rows.
    if (!index.isValid())
        return Qt::ItemIsDropEnabled;
    return Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsDragEnabled;
}

QStringList ClipListModel::mimeTypes() const
{
    return {QString::fromLatin1(rowsMimeType), QStringLiteral("text/uri-list"), QStringLiteral("text/plain")};
}

QMimeData* ClipListModel::mimeData(const QModelIndexList& indexes) const
{
    QByteArray encoded;
    QDataStream stream(&encoded, QIODevice::WriteOnly);
    for (const QModelIndex& index : indexes)
        if (index.isValid())
            stream << index.row();
    auto* data = new QMimeData;
    data->setData(QString::fromLatin1(rowsMimeType), encoded);
    return data;
}

bool ClipListModel::canDropMimeData(const QMimeData* data, Qt::DropAction, int, int, const QModelIndex&) const
{
    return data && (data->hasFormat(QString::fromLatin1(rowsMimeType)) || FileDrop::carriesFiles(*data));
}

bool ClipListModel::dropMimeData(const QMimeData* data, Qt::DropAction, int row, int, const QModelIndex&)
{
    if (!data)
        return false;
    if (data->hasFormat(QString::fromLatin1(rowsMimeType))) {
        QList<int> moved;
        QDataStream stream(data->data(QString::fromLatin1(rowsMimeType)));
        while (!stream.atEnd()) {
            int each = -1;
            stream >> each;
            moved << each;
        }
        model_.moveClips(moved, row < 0 ? static_cast<int>(rows_.size()) : row);
        // The controller has moved the clips; telling the view the drop
        // failed keeps it from removing the dragged rows itself.
        return false;
    }
    model_.addURLs(FileDrop::urls(*data));
    return true;
}

Qt::DropActions ClipListModel::supportedDropActions() const { return Qt::MoveAction | Qt::CopyAction; }
Qt::DropActions ClipListModel::supportedDragActions() const { return Qt::MoveAction; }

int ClipListModel::rowOf(const QUuid& id) const
{
    return id.isNull() ? -1 : static_cast<int>(rows_.indexOf(id));
}

QUuid ClipListModel::idAt(int row) const { return rows_.value(row); }

}  // namespace tavrelune::ui
