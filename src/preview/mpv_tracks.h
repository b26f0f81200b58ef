// Reading mpv's answers: its data nodes as Qt values, and the video tracks
// of the file it holds.
//
// Main thread (wherever the mpv handle is used); no state.
#pragma once

#include <QVariant>
#include <optional>

struct mpv_handle;
struct mpv_node;

namespace tavrelune {

QVariant mpvNodeToVariant(const mpv_node& node);
// mpv's "track-list": one map per track; empty when it cannot be read.
QVariantList mpvTrackList(mpv_handle* mpv);
// A video track that moves: neither cover art nor a still image.
bool isMovingPicture(const QVariantMap& track);
// The video track mpv's automatic choice would take: the default one, else
// the first.
std::optional<QVariantMap> chosenVideoTrack(const QVariantList& tracks);

}  // namespace tavrelune
