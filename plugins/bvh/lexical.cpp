#include "plugins/bvh/lexical.h"

#include <algorithm>

namespace bvh {
namespace {

// from_chars says only "out of range": a negative exponent, or without one a zero before the point, means too small.
bool isTiny(char const* p, char const* end) {
    for (char const* q = p; q != end; ++q) {
        if ((*q | 0x20) == 'e') return q + 1 != end && q[1] == '-';
    }
    while (p != end && *p == '0') ++p;
    return p == end || *p == '.';
}

}  // namespace

bool sameWord(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return lower(x) == lower(y); });
}

char const* parseAny(char const* p, char const* end, double& value) {
    bool const negative = p != end && *p == '-';
    if (p != end && (*p == '-' || *p == '+')) ++p;
    if (p == end || !(isDigit(*p) || *p == '.')) return nullptr;  // a second sign, nan, inf
    double magnitude = 0;
    auto const [next, problem] = std::from_chars(p, end, magnitude);
    if (problem == std::errc::invalid_argument) return nullptr;
    if (problem == std::errc::result_out_of_range) {
        if (!isTiny(p, next)) return nullptr;
        magnitude = 0;
    }
    value = negative ? -magnitude : magnitude;
    return next;
}

}  // namespace bvh
