// Finding the machine's video encoders in the background, so the window can
// name the encoder an export will use before the first conversion starts.
#include "controller/app_model.h"

namespace tavrelune {

void AppModel::startEncoderDetection()
{
    if (detectingEncoders_)
        return;
    detectEncodersInBackground();  // runs on; the destructor waits for it
}

QCoro::Task<void> AppModel::detectEncodersInBackground()
{
    QPointer<AppModel> self(this);
    detectingEncoders_ = true;
    try {
        co_await ffmpeg_.detectEncoders(lifetime_.get_token());
    } catch (...) {
        // Only a stop ends detection early; the software encoders stay.
    }
    if (!self)
        co_return;
    detectingEncoders_ = false;
    Q_EMIT encodersChanged();
}

QString AppModel::encoderLabel() const
{
    return ffmpeg_.encoder(settings_.codec).label;
}

}  // namespace tavrelune
