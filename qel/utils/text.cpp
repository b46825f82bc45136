#include "qel/utils/text.h"
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <system_error>
#include <vector>

namespace Qelutils {
namespace {

constexpr char32_t replacement = 0xFFFD;

bool isHighSurrogate(char32_t c) { return c >= 0xD800 && c < 0xDC00; }
bool isLowSurrogate(char32_t c) { return c >= 0xDC00 && c < 0xE000; }
bool isScalarValue(char32_t c) { return c < 0xD800 || (c >= 0xE000 && c < 0x110000); }

// The character at `i`, which moves behind it.
char32_t decodeWide(std::wstring_view text, std::size_t& i) {
    auto const c = static_cast<char32_t>(text[i++]);
    if (isHighSurrogate(c) && i < text.size()) {
        auto const low = static_cast<char32_t>(text[i]);
        if (isLowSurrogate(low)) return ++i, 0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00);
    }
    return isScalarValue(c) ? c : replacement;
}

void appendUtf8(std::string& out, char32_t c) {
    auto const tail = [c](int shift) { return static_cast<char>(0x80 | ((c >> shift) & 0x3F)); };
    if (c < 0x80)
        out += static_cast<char>(c);
    else if (c < 0x800)
        out += {static_cast<char>(0xC0 | (c >> 6)), tail(0)};
    else if (c < 0x10000)
        out += {static_cast<char>(0xE0 | (c >> 12)), tail(6), tail(0)};
    else
        out += {static_cast<char>(0xF0 | (c >> 18)), tail(12), tail(6), tail(0)};
}

void appendWide(std::wstring& out, char32_t c) {
    if constexpr (sizeof(wchar_t) == 2) {
        if (c >= 0x10000) {
            out += static_cast<wchar_t>(0xD800 + ((c - 0x10000) >> 10));
            c = 0xDC00 + ((c - 0x10000) & 0x3FF);
        }
    }
    out += static_cast<wchar_t>(c);
}

// What a leading byte announces: how many bytes follow and which range the first of them is confined to, which keeps
// out overlong forms, surrogates and what lies beyond U+10FFFF (The Unicode Standard, table 3-7).
struct Lead {
    int tails = 0;
    unsigned char low = 0x80, high = 0xBF;
};

Lead leadOf(unsigned char byte) {
    if (byte >= 0xC2 && byte <= 0xDF) return {1};
    if (byte >= 0xE0 && byte <= 0xEF)
        return {2, static_cast<unsigned char>(byte == 0xE0 ? 0xA0 : 0x80),
                static_cast<unsigned char>(byte == 0xED ? 0x9F : 0xBF)};
    if (byte >= 0xF0 && byte <= 0xF4)
        return {3, static_cast<unsigned char>(byte == 0xF0 ? 0x90 : 0x80),
                static_cast<unsigned char>(byte == 0xF4 ? 0x8F : 0xBF)};
    return {};
}

char32_t decodeUtf8(std::string_view text, std::size_t& i) {
    auto const first = static_cast<unsigned char>(text[i++]);
    if (first < 0x80) return first;
    Lead lead = leadOf(first);
    if (lead.tails == 0) return replacement;
    char32_t c = first & (0x3F >> lead.tails);
    for (; lead.tails > 0; --lead.tails, lead.low = 0x80, lead.high = 0xBF) {
        if (i == text.size()) return replacement;
        auto const byte = static_cast<unsigned char>(text[i]);
        if (byte < lead.low || byte > lead.high) return replacement;
        c = (c << 6) | (byte & 0x3F);
        ++i;
    }
    return c;
}

bool isBlank(wchar_t c) { return c == L' ' || (c >= L'\t' && c <= L'\r'); }

template<class Float> std::string shortest(Float value) {
    std::array<char, 64> buffer;
    auto const end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
    return {buffer.data(), end};
}

// The number between the blanks, without the '+' that std::from_chars does not know; empty if another sign follows it.
std::string_view numeral(std::string_view text) {
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    if (text.empty() || text.front() != '+') return text;
    text.remove_prefix(1);
    return !text.empty() && text.front() == '-' ? std::string_view() : text;
}

template<class Number> std::errc read(std::string_view text, Number& value) {
    auto const end = text.data() + text.size();
    auto const [stop, error] = std::from_chars(text.data(), end, value);
    return stop == end ? error : std::errc::invalid_argument;
}

// std::from_chars reports a number out of range without saying at which end; the wider type tells.
template<class Float> bool parseFloat(std::string_view text, Float& value) {
    std::string_view const digits = numeral(text);
    Float result = 0;
    std::errc error = read(digits, result);
    long double wide = 0;
    if (error == std::errc::result_out_of_range) {
        error = read(digits, wide);
        result = static_cast<Float>(std::copysign(0.0L, wide));
        if (std::abs(wide) > 1) return false;
    }
    if (error != std::errc()) return false;
    value = result;
    return true;
}

wchar_t upperOf(wchar_t c) { return c >= L'a' && c <= L'z' ? static_cast<wchar_t>(c - L'a' + L'A') : c; }
wchar_t lowerOf(wchar_t c) { return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c - L'A' + L'a') : c; }

// Optimal string alignment: insertions, deletions, substitutions and exchanges of neighbours, each at cost 1.
int editDistance(std::wstring const& a, std::wstring const& b) {
    std::vector<int> before(b.size() + 1), above(b.size() + 1), row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j) above[j] = static_cast<int>(j);
    for (std::size_t i = 1; i <= a.size(); ++i) {
        row[0] = static_cast<int>(i);
        for (std::size_t j = 1; j <= b.size(); ++j) {
            row[j] = std::min({above[j] + 1, row[j - 1] + 1, above[j - 1] + (a[i - 1] != b[j - 1])});
            bool const exchanged = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
            if (exchanged) row[j] = std::min(row[j], before[j - 2] + 1);
        }
        before.swap(above);
        above.swap(row);
    }
    return above[b.size()];
}

}  // namespace

std::string toUtf8(std::wstring_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) appendUtf8(out, decodeWide(text, i));
    return out;
}

std::wstring fromUtf8(std::string_view text) {
    std::wstring out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) appendWide(out, decodeUtf8(text, i));
    return out;
}

std::string number(float value) { return shortest(value); }
std::string number(double value) { return shortest(value); }

bool parseNumber(std::string_view text, float& value) { return parseFloat(text, value); }
bool parseNumber(std::string_view text, double& value) { return parseFloat(text, value); }

bool parseNumber(std::string_view text, int& value) {
    int result = 0;
    if (read(numeral(text), result) != std::errc()) return false;
    value = result;
    return true;
}

std::wstring toUpper(std::wstring text) {
    std::transform(text.begin(), text.end(), text.begin(), upperOf);
    return text;
}

std::wstring toLower(std::wstring text) {
    std::transform(text.begin(), text.end(), text.begin(), lowerOf);
    return text;
}

std::wstring trim(std::wstring_view text) {
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    return std::wstring(text);
}

// Only the last '*' is ever tried again: what an earlier one could take more, the last one can take as well.
bool matchesWildcard(std::wstring_view text, std::wstring_view pattern) {
    std::size_t t = 0, p = 0, star = std::wstring_view::npos, resume = 0;
    while (t < text.size()) {
        if (p < pattern.size() && pattern[p] == L'*') {
            star = p++;
            resume = t;
        } else if (p < pattern.size() && (pattern[p] == L'?' || pattern[p] == text[t])) {
            ++p;
            ++t;
        } else if (star != std::wstring_view::npos) {
            p = star + 1;
            t = ++resume;
        } else
            return false;
    }
    return pattern.find_first_not_of(L'*', p) == std::wstring_view::npos;
}

namespace {

struct Near {
    int distance;
    std::wstring const* name;
};

// Those whose distance is at most a third of what is compared.
template<class Distance>
std::vector<Near> namesWithin(std::wstring const* first, std::wstring const* last, Distance const& distanceOf) {
    std::vector<Near> near;
    for (auto name = first; name != last; ++name)
        if (int const distance = distanceOf(toLower(*name)); distance >= 0) near.push_back({distance, name});
    return near;
}

int unlessFar(int distance, std::size_t length) { return distance * 3 <= static_cast<int>(length) ? distance : -1; }

// Of the beginnings of about its length.
int distanceToBeginning(std::wstring const& typed, std::wstring const& name) {
    int nearest = -1;
    for (std::size_t length = typed.size() - 1; length <= typed.size() + 1 && length < name.size(); ++length)
        if (int const d = unlessFar(editDistance(typed, name.substr(0, length)), typed.size()); d >= 0)
            nearest = nearest < 0 ? d : std::min(nearest, d);
    return nearest;
}

}  // namespace

std::wstring nearestNames(std::wstring const& wanted, std::wstring const* first, std::wstring const* last, int count) {
    std::wstring const key = toLower(wanted);
    std::vector<Near> near = namesWithin(
        first, last, [&](std::wstring const& name) { return unlessFar(editDistance(key, name), name.size()); });
    if (near.empty() && key.size() >= 3)
        near = namesWithin(first, last, [&](std::wstring const& name) { return distanceToBeginning(key, name); });
    std::stable_sort(near.begin(), near.end(), [](Near a, Near b) { return a.distance < b.distance; });
    near.resize(std::min(near.size(), static_cast<std::size_t>(std::max(count, 0))));
    std::wstring out;
    for (Near const& one : near) out += (out.empty() ? L"" : L", ") + *one.name;
    return out;
}

}  // namespace Qelutils
