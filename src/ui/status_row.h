// The row under the panes: while converting, the batch's progress, a "Stop"
// button and the time left ("about 4 min left"); the controller's status
// message; and, at the right end, a summary of the batch ("3 clips ·
// Warm.cube").
//
// Main thread. Follows the controller, which must outlive it.
#pragma once

#include <QElapsedTimer>
#include <QUrl>
#include <QWidget>

class QLabel;
class QProgressBar;
class QPushButton;

namespace tavrelune {
class AppModel;
}

namespace tavrelune::ui {

class ElidedLabel;

class StatusRow : public QWidget {
    Q_OBJECT
public:
    explicit StatusRow(AppModel& model, QWidget* parent = nullptr);

    // "0 clips · no LUT", "1 clip · no LUT", "3 clips · Warm.cube".
    static QString summary(qsizetype clipCount, const QUrl& lut);

    QString summaryText() const;
    QString statusText() const { return status_; }
    bool showsProgress() const;
    QString timeLeftText() const;
    QProgressBar* progressBar() const { return progress_; }
    QPushButton* stopButton() const { return stop_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void followConversion();
    void followStatus();
    void followSummary();

    AppModel& model_;
    QProgressBar* progress_;
    QPushButton* stop_;
    ElidedLabel* message_;
    QLabel* summary_;
    QLabel* timeLeft_;
    QString status_;
    QElapsedTimer batchClock_;  // since the running batch started
};

}  // namespace tavrelune::ui
