// A file path shown as selectable text that wraps anywhere (paths have few
// word breaks) and grows to at most three lines; the full path is also its
// tooltip. Copying gives the path exactly.
//
// Main thread; a plain widget.
#pragma once

#include <QTextEdit>

namespace tavrelune::ui {

class PathLabel : public QTextEdit {
    Q_OBJECT
public:
    explicit PathLabel(QWidget* parent = nullptr);

    void setPath(const QString& path);
    QString path() const { return toPlainText(); }

    static constexpr int maximumLines = 3;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void fitHeight();
};

}  // namespace tavrelune::ui
