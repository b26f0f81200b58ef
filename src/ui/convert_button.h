// The large button at the end of the inspector: "Convert all", or "Export
// one video" when two or more clips are to be combined; a spinner and
// "Working…" while a batch runs. Enabled only when the controller can
// convert.
//
// Main thread. Follows the controller, which must outlive it.
#pragma once

#include <QElapsedTimer>
#include <QPushButton>
#include <optional>

class QTimer;

namespace tavrelune {
class AppModel;
struct EncodeSettings;
}

namespace tavrelune::ui {

class ConvertButton : public QPushButton {
    Q_OBJECT
public:
    explicit ConvertButton(AppModel& model, QWidget* parent = nullptr);

    // `remaining`: how many clips Convert would make when some others are
    // already converted and unchanged ("Convert 2 remaining").
    static QString title(const EncodeSettings& settings, qsizetype clipCount, bool converting,
                         std::optional<qsizetype> remaining = std::nullopt);

private:
    void follow();
    void showSpinnerFrame();

    AppModel& model_;
    QTimer* spinnerTimer_;
    QElapsedTimer spinnerClock_;
};

}  // namespace tavrelune::ui
