// Base of every error this system shows to a user.
//
// Errors are thrown as values and caught by the controller, which shows
// `description()`. Platform failures (a child that cannot start, a file that
// cannot be written) are `PlatformError`s carrying the platform's own text.
#pragma once

#include <QString>
#include <exception>
#include <string>

namespace tavrelune {

class Error : public std::exception {
public:
    virtual QString description() const = 0;
    const char* what() const noexcept override;

private:
    mutable std::string whatText_;
};

class PlatformError : public Error {
public:
    explicit PlatformError(QString message) : message_(std::move(message)) {}
    QString description() const override { return message_; }

private:
    QString message_;
};

// The user-facing text of any exception: `description()` for ours, `what()`
// for anything else.
QString describe(const std::exception& error);
QString describe(std::exception_ptr error);

}  // namespace tavrelune
