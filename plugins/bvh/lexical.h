// The letters of the format: blanks, words without regard to case, and the numbers of a motion block, which are plain
// decimals, millions of them. Inside this folder only.
#pragma once
#include <array>
#include <charconv>
#include <cstdint>
#include <string_view>
#include <system_error>

namespace bvh {

constexpr bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
constexpr char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; }
constexpr bool isDigit(char c) { return static_cast<unsigned char>(c - '0') < 10; }

// Equal but for the case of ASCII letters.
bool sameWord(std::string_view a, std::string_view b);

// Frame times outside are taken for damage: their inverse is no frame rate.
inline constexpr double shortestFrameTime = 1e-6;
inline constexpr double longestFrameTime = 1e6;

// A decimal without exponent and with at most 15 digits, from `p` on: both the digits and the power of ten are exact
// doubles, so one division rounds correctly (W. D. Clinger, How to Read Floating Point Numbers Accurately, 1990). Null
// if the text is anything else; then std::from_chars decides.
inline char const* parsePlain(char const* p, char const* end, double& value) {
    static constexpr std::array<double, 16> powers{1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                   1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    bool const negative = p != end && *p == '-';
    if (p != end && (*p == '-' || *p == '+')) ++p;
    std::uint64_t digits = 0;
    char const* const whole = p;
    for (; p != end && isDigit(*p); ++p) digits = digits * 10 + static_cast<unsigned char>(*p - '0');
    auto count = p - whole;
    std::ptrdiff_t decimals = 0;
    if (p != end && *p == '.') {
        char const* const fraction = ++p;
        for (; p != end && isDigit(*p); ++p) digits = digits * 10 + static_cast<unsigned char>(*p - '0');
        decimals = p - fraction;
        count += decimals;
    }
    if (count == 0 || count > 15 || (p != end && (*p | 0x20) == 'e')) return nullptr;
    double const magnitude = static_cast<double>(digits) / powers[static_cast<std::size_t>(decimals)];
    value = negative ? -magnitude : magnitude;
    return p;
}

// Any decimal number, with or without exponent; no nan, no infinity. A number too small for a double is zero. Gives
// the end of the number, or null if there is none here or it is too large.
char const* parseAny(char const* p, char const* end, double& value);

inline char const* parseNumber(char const* p, char const* end, double& value) {
    char const* const next = parsePlain(p, end, value);
    return next ? next : parseAny(p, end, value);
}

}  // namespace bvh
