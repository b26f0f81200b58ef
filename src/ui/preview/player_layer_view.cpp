#include "ui/preview/player_layer_view.h"

namespace tavrelune {

PlayerLayerView::PlayerLayerView(ClipPreviewPlayer* player, QWidget* parent) : VideoFrameView(parent)
{
    setPlayer(player);
}

void PlayerLayerView::frameArrived(std::shared_ptr<const VideoFrame> frame)
{
    present(std::move(frame));
}

}  // namespace tavrelune
