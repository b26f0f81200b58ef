#include "ui/error_alert.h"

#include "controller/app_model.h"
#include "ui/icons.h"

#include <QMessageBox>
#include <QPushButton>

namespace tavrelune::ui {

ErrorAlert::ErrorAlert(AppModel& model, QWidget& window) : QObject(&window), model_(model), window_(window)
{
    connect(&model_, &AppModel::errorMessageChanged, this, &ErrorAlert::follow);
    follow();
}

void ErrorAlert::follow()
{
    const QString message = model_.errorMessage();
    if (message.isEmpty()) {
        if (box_)
            box_->done(QMessageBox::Ok);
        return;
    }
    if (!box_) {
        box_ = new QMessageBox(QMessageBox::Warning, QStringLiteral("Error"), message, QMessageBox::Ok, &window_);
        box_->setObjectName(QStringLiteral("errorAlert"));
        box_->setWindowModality(Qt::WindowModal);
        box_->setIconPixmap(icons::colored(QStringLiteral("tavrelune-failed")).pixmap(40, 40));
        box_->button(QMessageBox::Ok)->setIcon(QIcon());
        connect(box_, &QMessageBox::finished, this, [this] {
            // Gone from here on: a message arriving meanwhile gets a new alert.
            box_->deleteLater();
            box_.clear();
            if (!model_.errorMessage().isEmpty())
                model_.setErrorMessage(QString());
        });
        box_->open();
    }
    box_->setText(message);
}

}  // namespace tavrelune::ui
