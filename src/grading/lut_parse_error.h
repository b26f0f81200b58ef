// Why a `.cube` file could not be used as a look-up table.
//
// Thrown by value from `CubeLUT::load` and `CubeLUT::parse`; the text of
// `description()` is shown to the user as it is.
#pragma once

#include "model/error.h"

namespace tavrelune {

class LUTParseError : public Error {
public:
    enum class Kind { unreadable, missingSize, incomplete };

    explicit LUTParseError(Kind kind) : kind_(kind) {}

    static LUTParseError unreadable() { return LUTParseError(Kind::unreadable); }
    static LUTParseError missingSize() { return LUTParseError(Kind::missingSize); }
    static LUTParseError incomplete() { return LUTParseError(Kind::incomplete); }

    Kind kind() const { return kind_; }
    QString description() const override;

    bool operator==(const LUTParseError& other) const { return kind_ == other.kind_; }

private:
    Kind kind_;
};

}  // namespace tavrelune
