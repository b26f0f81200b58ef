// How the window shows times: as a clock with tenths ("1:05.3") or as
// timecode at the clip's frame rate ("00:01:05:08"), the choice of
// Preview ▸ Show Timecode. TimeStyle is the value the texts are made with;
// TimeDisplay holds the window's current choice and says when it changes.
//
// Main thread. The window owns its TimeDisplay; views keep a pointer to it
// (none: clock).
#pragma once

#include <QObject>
#include <QString>
#include <optional>

namespace tavrelune::ui {

struct TimeStyle {
    bool timecode = false;

    // Timecode needs the clip's rate; without one the clock is shown.
    QString text(double seconds, std::optional<double> fps) const;
};

class TimeDisplay : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    TimeStyle style() const { return style_; }
    void setTimecode(bool on);

Q_SIGNALS:
    void changed();

private:
    TimeStyle style_;
};

inline TimeStyle styleOf(const TimeDisplay* display) { return display ? display->style() : TimeStyle{}; }

}  // namespace tavrelune::ui
