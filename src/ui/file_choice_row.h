// The row that shows one chosen file of the batch (the LUT, the watermark):
// a symbol or thumbnail, the file's name or "None", "Choose…" and, while a
// file is chosen, "Clear".
//
// Main thread; a plain widget that reports the two buttons.
#pragma once

#include <QIcon>
#include <QImage>
#include <QUrl>
#include <QWidget>

class QLabel;
class QPushButton;

namespace tavrelune::ui {

class ElidedLabel;

class FileChoiceRow : public QWidget {
    Q_OBJECT
public:
    FileChoiceRow(const QIcon& symbol, QWidget* parent = nullptr);

    // An empty url shows "None"; a thumbnail, when given, replaces the symbol.
    void setFile(const QUrl& url, const QImage& thumbnail = {});
    QString shownName() const;
    bool canClear() const;

Q_SIGNALS:
    void chooseClicked();
    void clearClicked();

private:
    QIcon symbol_;
    QLabel* image_;
    ElidedLabel* name_;
    QPushButton* clear_;
};

}  // namespace tavrelune::ui
