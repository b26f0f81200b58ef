// The lexical rules of `.cube` text: UTF-8 validity, line breaks, horizontal
// white space and the number syntaxes. Used by the parser only.
//
// Pure functions on byte ranges of text already checked to be UTF-8; none
// allocates, so the parser's per-line loop stays allocation-free.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace tavrelune::cubetext {

// True when the bytes are well-formed UTF-8 (no overlong forms, surrogates or
// code points past U+10FFFF).
bool isValidUtf8(std::string_view bytes);

namespace detail {
inline unsigned byteAt(const char* at) { return static_cast<unsigned char>(*at); }
}  // namespace detail

// Length in bytes of the line break starting at `at` (LF, VT, FF, CR, NEL,
// LINE SEPARATOR, PARAGRAPH SEPARATOR), or 0. Inline: it runs per byte.
inline int lineBreakLength(const char* at, const char* end)
{
    const unsigned c = detail::byteAt(at);
    if (c >= 0x0A && c <= 0x0D)
        return 1;
    if (c < 0xC2)
        return 0;
    if (c == 0xC2)
        return end - at >= 2 && detail::byteAt(at + 1) == 0x85 ? 2 : 0;
    if (c == 0xE2 && end - at >= 3 && detail::byteAt(at + 1) == 0x80
        && (detail::byteAt(at + 2) == 0xA8 || detail::byteAt(at + 2) == 0xA9))
        return 3;
    return 0;
}

// Length in bytes of the horizontal space starting at `at` (tab or any
// Unicode space separator), or 0. Inline: it runs per byte.
inline int horizontalSpaceLength(const char* at, const char* end)
{
    const unsigned c = detail::byteAt(at);
    if (c == ' ' || c == '\t')
        return 1;
    if (c < 0xC2)
        return 0;
    const std::ptrdiff_t left = end - at;
    if (c == 0xC2)  // U+00A0
        return left >= 2 && detail::byteAt(at + 1) == 0xA0 ? 2 : 0;
    if (left < 3)
        return 0;
    const unsigned second = detail::byteAt(at + 1);
    const unsigned third = detail::byteAt(at + 2);
    switch (c) {
    case 0xE1:  // U+1680
        return second == 0x9A && third == 0x80 ? 3 : 0;
    case 0xE2:  // U+2000…U+200A, U+202F, U+205F
        if (second == 0x80 && (third <= 0x8A || third == 0xAF))
            return 3;
        return second == 0x81 && third == 0x9F ? 3 : 0;
    case 0xE3:  // U+3000
        return second == 0x80 && third == 0x80 ? 3 : 0;
    default:
        return 0;
    }
}

// `line` without horizontal space at either end.
std::string_view trimmed(std::string_view line);

// The piece of `text` from `offset` up to the next separator (horizontal
// space, or also ',' when `commaSeparates`), after skipping separators;
// `offset` moves past the piece. Empty when the text has no more pieces.
std::string_view nextPiece(std::string_view text, std::size_t& offset, bool commaSeparates);

// An optional '+' or '-' then ASCII digits, nothing else, within int64.
std::optional<std::int64_t> parseInteger(std::string_view piece);

// A decimal or exponent float (also "inf" and "nan"), optional sign, the whole
// piece. Beyond the float range it gives ±infinity or a signed zero, as C's
// strtof does.
std::optional<float> parseFloat(std::string_view piece);

// True when `line` upper-cased begins with `keyword` (upper-case ASCII).
// Non-ASCII letters are upper-cased by Unicode's rules, so that for example a
// dotless ı counts as I.
bool startsWithKeyword(std::string_view line, std::string_view keyword);

}  // namespace tavrelune::cubetext
