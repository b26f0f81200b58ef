#include "grading/lut_parse_error.h"

namespace tavrelune {

QString LUTParseError::description() const
{
    switch (kind_) {
    case Kind::unreadable:
        return QStringLiteral("The LUT file could not be read.");
    case Kind::missingSize:
        return QStringLiteral("The LUT has no valid 3D size.");
    case Kind::incomplete:
        return QStringLiteral("The LUT data is incomplete.");
    }
    return {};
}

}  // namespace tavrelune
