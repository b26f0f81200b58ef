// The trim window's plain view of its player: frames as decoded, without
// any grade, fitted and centred on black.
//
// Threading: main thread only. Ownership: holds the player weakly.
#pragma once

#include "ui/preview/video_frame_view.h"

namespace tavrelune {

class PlayerLayerView : public VideoFrameView {
    Q_OBJECT

public:
    explicit PlayerLayerView(ClipPreviewPlayer* player = nullptr, QWidget* parent = nullptr);

protected:
    void frameArrived(std::shared_ptr<const VideoFrame> frame) override;
};

}  // namespace tavrelune
