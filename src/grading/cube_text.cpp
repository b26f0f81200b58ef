#include "grading/cube_text.h"

#include <QString>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

namespace tavrelune::cubetext {

namespace {

inline bool isContinuation(unsigned byte) { return (byte & 0xC0) == 0x80; }

bool isSeparator(const char* at, const char* end, bool commaSeparates, int& length)
{
    if (commaSeparates && *at == ',') {
        length = 1;
        return true;
    }
    length = horizontalSpaceLength(at, end);
    return length > 0;
}

}  // namespace

bool isValidUtf8(std::string_view bytes)
{
    const auto* p = reinterpret_cast<const unsigned char*>(bytes.data());
    const auto* end = p + bytes.size();
    while (p < end) {
        // Most of a table is ASCII digits: skip eight bytes at a time.
        while (end - p >= 8) {
            std::uint64_t word;
            std::memcpy(&word, p, 8);
            if (word & 0x8080808080808080ULL)
                break;
            p += 8;
        }
        if (p >= end)
            break;
        const unsigned lead = *p;
        if (lead < 0x80) {
            ++p;
            continue;
        }
        int length;
        unsigned lowest;  // smallest second byte allowed after this lead
        unsigned highest;
        if (lead >= 0xC2 && lead <= 0xDF) {
            length = 2, lowest = 0x80, highest = 0xBF;
        } else if (lead >= 0xE0 && lead <= 0xEF) {
            length = 3;
            lowest = lead == 0xE0 ? 0xA0 : 0x80;   // overlong
            highest = lead == 0xED ? 0x9F : 0xBF;  // surrogates
        } else if (lead >= 0xF0 && lead <= 0xF4) {
            length = 4;
            lowest = lead == 0xF0 ? 0x90 : 0x80;   // overlong
            highest = lead == 0xF4 ? 0x8F : 0xBF;  // past U+10FFFF
        } else {
            return false;
        }
        if (end - p < length || p[1] < lowest || p[1] > highest)
            return false;
        for (int i = 2; i < length; ++i)
            if (!isContinuation(p[i]))
                return false;
        p += length;
    }
    return true;
}



std::string_view trimmed(std::string_view line)
{
    const char* begin = line.data();
    const char* end = begin + line.size();
    while (begin < end) {
        const int length = horizontalSpaceLength(begin, end);
        if (length == 0)
            break;
        begin += length;
    }
    // Trailing space: a space's first byte is never a continuation byte, so
    // trying each possible length only ever matches whole characters.
    while (begin < end) {
        int length = 0;
        for (int back = 1; back <= 3 && back <= end - begin; ++back) {
            if (horizontalSpaceLength(end - back, end) == back) {
                length = back;
                break;
            }
        }
        if (length == 0)
            break;
        end -= length;
    }
    return {begin, static_cast<std::size_t>(end - begin)};
}

std::string_view nextPiece(std::string_view text, std::size_t& offset, bool commaSeparates)
{
    const char* const end = text.data() + text.size();
    const char* at = text.data() + offset;
    int length = 0;
    while (at < end && isSeparator(at, end, commaSeparates, length))
        at += length;
    const char* start = at;
    while (at < end && !isSeparator(at, end, commaSeparates, length))
        ++at;
    offset = static_cast<std::size_t>(at - text.data());
    return {start, static_cast<std::size_t>(at - start)};
}

std::optional<std::int64_t> parseInteger(std::string_view piece)
{
    if (!piece.empty() && piece.front() == '+') {
        piece.remove_prefix(1);
        if (piece.empty() || piece.front() == '-')
            return std::nullopt;
    }
    std::int64_t value = 0;
    const char* end = piece.data() + piece.size();
    const auto [stop, error] = std::from_chars(piece.data(), end, value);
    if (error != std::errc() || stop != end)
        return std::nullopt;
    return value;
}

namespace {

// Plain decimals of up to 7 significant digits and 10 decimals, the way
// tables are usually written: the digits and the power of ten are both exact
// floats, so one division gives the correctly rounded value, the same that
// from_chars gives, at a fraction of its cost.
std::optional<float> parseShortDecimal(std::string_view piece)
{
    static constexpr float powersOfTen[] = {1e0f, 1e1f, 1e2f, 1e3f, 1e4f, 1e5f,
                                            1e6f, 1e7f, 1e8f, 1e9f, 1e10f};
    const char* at = piece.data();
    const char* const end = at + piece.size();
    const bool negative = at < end && *at == '-';
    at += negative;
    std::uint32_t digits = 0;
    int significant = 0;
    int decimals = 0;
    bool point = false;
    bool any = false;
    for (; at < end; ++at) {
        const char c = *at;
        if (c == '.' && !point) {
            point = true;
            continue;
        }
        if (c < '0' || c > '9')
            return std::nullopt;
        any = true;
        digits = digits * 10 + static_cast<std::uint32_t>(c - '0');
        significant += digits != 0;
        decimals += point;
        if (significant > 7 || decimals > 10)
            return std::nullopt;
    }
    if (!any)
        return std::nullopt;
    const float value = static_cast<float>(digits) / powersOfTen[decimals];
    return negative ? -value : value;
}

}  // namespace

std::optional<float> parseFloat(std::string_view piece)
{
    if (const auto quick = parseShortDecimal(piece))
        return quick;
    if (!piece.empty() && piece.front() == '+') {
        piece.remove_prefix(1);
        if (piece.empty() || piece.front() == '-')
            return std::nullopt;
    }
    const char* end = piece.data() + piece.size();
    float value = 0;
    const auto [stop, error] = std::from_chars(piece.data(), end, value);
    if (stop != end)
        return std::nullopt;
    if (error == std::errc())
        return value;
    if (error != std::errc::result_out_of_range)
        return std::nullopt;
    // Well-formed but outside the float range: overflow becomes infinity and
    // underflow zero, keeping the sign.
    const bool negative = piece.front() == '-';
    double wide = 0;
    const auto [wideStop, wideError] = std::from_chars(piece.data(), end, wide);
    bool overflow;
    if (wideError == std::errc() && wideStop == end) {
        overflow = std::fabs(wide) > static_cast<double>(std::numeric_limits<float>::max());
    } else {
        const std::size_t exponent = piece.find_first_of("eE");
        overflow = exponent == std::string_view::npos || exponent + 1 >= piece.size()
            || piece[exponent + 1] != '-';
    }
    const float magnitude = overflow ? std::numeric_limits<float>::infinity() : 0.0f;
    return negative ? -magnitude : magnitude;
}

bool startsWithKeyword(std::string_view line, std::string_view keyword)
{
    for (std::size_t i = 0; i < keyword.size(); ++i) {
        if (i >= line.size())
            return false;
        const unsigned c = detail::byteAt(line.data() + i);
        if (c >= 0x80) {
            // Rare: let Qt apply Unicode's full upper-case mapping. Each
            // character upper-cases to one or more, so the keyword's length
            // in characters (at most 4 bytes each) is all that can matter.
            const auto head = static_cast<qsizetype>(std::min(line.size(), 4 * keyword.size()));
            const QByteArray upper = QString::fromUtf8(line.data(), head).toUpper().toUtf8();
            return upper.startsWith(QByteArrayView(keyword.data(), static_cast<qsizetype>(keyword.size())));
        }
        const unsigned upper = (c >= 'a' && c <= 'z') ? c - ('a' - 'A') : c;
        if (upper != static_cast<unsigned char>(keyword[i]))
            return false;
    }
    return true;
}

}  // namespace tavrelune::cubetext
