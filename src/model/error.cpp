#include "model/error.h"

namespace tavrelune {

const char* Error::what() const noexcept
{
    try {
        whatText_ = description().toStdString();
    } catch (...) {
        return "error";
    }
    return whatText_.c_str();
}

QString describe(const std::exception& error)
{
    if (const auto* ours = dynamic_cast<const Error*>(&error))
        return ours->description();
    return QString::fromLocal8Bit(error.what());
}

QString describe(std::exception_ptr error)
{
    try {
        if (error)
            std::rethrow_exception(error);
    } catch (const std::exception& caught) {
        return describe(caught);
    } catch (...) {
    }
    return QStringLiteral("Unknown error");
}

}  // namespace tavrelune
