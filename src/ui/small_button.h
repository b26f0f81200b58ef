// A push button at the small control size: caption font and only as wide
// as its text needs (styles otherwise give every button a wide minimum).
//
// Main thread; a plain widget.
#pragma once

#include <QPushButton>

namespace tavrelune::ui {

class SmallButton : public QPushButton {
    Q_OBJECT
public:
    explicit SmallButton(const QString& text, QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }
};

}  // namespace tavrelune::ui
