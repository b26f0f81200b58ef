// The main viewer's keys for editors: frame and second steps, J/K/L
// shuttle, in and out points at the playhead, and jumps to them.
//
// L plays forward, and again doubles the speed (up to 8×); J runs backward
// through the clip the same way (by quick seeks: the player only decodes
// forward), K stops either. Steps and jumps pause first and keep inside the
// clip's in-to-out window; frames count at the clip's rate (24 when unknown).
//
// Main thread. Follows the controller, which must outlive it; drives its
// preview player and clock through the controller's operations.
#pragma once

#include <QObject>
#include <QTimer>

namespace tavrelune {

class AppModel;

class ViewerTransport : public QObject {
    Q_OBJECT
public:
    static constexpr double fastest = 8;

    explicit ViewerTransport(AppModel& model, QObject* parent = nullptr);

    void stepFrames(int frames);
    void stepSeconds(double seconds);
    void shuttleForward();   // L
    void shuttleBackward();  // J
    void stop();             // K
    void markIn();
    void markOut();
    void toInPoint();
    void toOutPoint();

    // Signed: 2 is forward at twice real time, -1 backward; 0 stopped.
    double speed() const { return speed_; }

Q_SIGNALS:
    void speedChanged();

private:
    void setSpeed(double speed);
    void stepBackward();
    void endBackward();
    // The playhead measured from the in point, for updatePreviewTime.
    void moveTo(double clipSeconds);

    AppModel& model_;
    QTimer backward_;
    double speed_ = 0;
};

}  // namespace tavrelune
