#include "preview/mpv_tracks.h"

#include <mpv/client.h>

namespace tavrelune {

QVariant mpvNodeToVariant(const mpv_node& node)
{
    switch (node.format) {
    case MPV_FORMAT_STRING:
        return QString::fromUtf8(node.u.string);
    case MPV_FORMAT_FLAG:
        return node.u.flag != 0;
    case MPV_FORMAT_INT64:
        return static_cast<qlonglong>(node.u.int64);
    case MPV_FORMAT_DOUBLE:
        return node.u.double_;
    case MPV_FORMAT_NODE_ARRAY: {
        QVariantList list;
        for (int i = 0; i < node.u.list->num; ++i)
            list << mpvNodeToVariant(node.u.list->values[i]);
        return list;
    }
    case MPV_FORMAT_NODE_MAP: {
        QVariantMap map;
        for (int i = 0; i < node.u.list->num; ++i)
            map.insert(QString::fromUtf8(node.u.list->keys[i]), mpvNodeToVariant(node.u.list->values[i]));
        return map;
    }
    default:
        return {};
    }
}

QVariantList mpvTrackList(mpv_handle* mpv)
{
    mpv_node node{};
    if (mpv_get_property(mpv, "track-list", MPV_FORMAT_NODE, &node) < 0)
        return {};
    const QVariantList tracks = mpvNodeToVariant(node).toList();
    mpv_free_node_contents(&node);
    return tracks;
}

bool isMovingPicture(const QVariantMap& track)
{
    return track.value("type").toString() == QLatin1String("video") && !track.value("albumart").toBool()
        && !track.value("image").toBool();
}

// The track mpv's automatic choice would take: the default one, else the first.
std::optional<QVariantMap> chosenVideoTrack(const QVariantList& tracks)
{
    std::optional<QVariantMap> first;
    for (const QVariant& entry : tracks) {
        const QVariantMap track = entry.toMap();
        if (!isMovingPicture(track))
            continue;
        if (track.value("default").toBool())
            return track;
        if (!first)
            first = track;
    }
    return first;
}

}  // namespace tavrelune
