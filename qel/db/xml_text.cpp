#include "qel/db/xml_text.h"

#include "qel/utils/text.h"

#include <charconv>

namespace db {

namespace {

constexpr std::string_view escapeUtf8 = "\xE2\x90\x9B";

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

char const* skipBlanks(char const* at, char const* end) {
    while (at != end && isBlank(*at)) ++at;
    return at;
}

int hexDigit(wchar_t c) {
    if (c >= L'0' && c <= L'9') return c - L'0';
    if (c >= L'A' && c <= L'F') return c - L'A' + 10;
    return -1;
}

// The value of the four digits at `at`, or -1.
int escapedValue(std::wstring const& text, std::size_t at) {
    if (at + 4 > text.size()) return -1;
    int value = 0;
    for (std::size_t i = at; i < at + 4; ++i) {
        int digit = hexDigit(text[i]);
        if (digit < 0) return -1;
        value = value * 16 + digit;
    }
    return value;
}

void unescape(std::wstring& text) {
    std::size_t to = 0;
    for (std::size_t from = 0; from < text.size(); ++from, ++to) {
        int value = text[from] == xmlEscape ? escapedValue(text, from + 1) : -1;
        text[to] = value < 0 ? text[from] : wchar_t(value);
        if (value >= 0) from += 4;
    }
    text.resize(to);
}

// A number that blanks or the end follow; the place after it, or null.
template<class T> char const* parseOne(char const* at, char const* end, T& value) {
    auto [next, code] = std::from_chars(at, end, value);
    return code == std::errc() && (next == end || isBlank(*next)) ? next : nullptr;
}

template<class T> bool parseList(std::string_view list, std::vector<T>& values) {
    std::size_t before = values.size();
    char const* end = list.data() + list.size();
    for (char const* at = skipBlanks(list.data(), end); at != end; at = skipBlanks(at, end)) {
        T value{};
        at = parseOne(at, end, value);
        if (!at) {
            values.resize(before);
            return false;
        }
        values.push_back(value);
    }
    return true;
}

template<class T> bool parseSingle(std::string_view text, T& value) {
    char const* end = text.data() + text.size();
    T parsed{};
    char const* at = parseOne(skipBlanks(text.data(), end), end, parsed);
    if (!at || skipBlanks(at, end) != end) return false;
    value = parsed;
    return true;
}

}  // namespace

std::wstring decodeXMLText(std::string_view utf8) {
    std::wstring text = Qelutils::fromUtf8(utf8);
    if (utf8.find(escapeUtf8) != std::string_view::npos) unescape(text);
    return text;
}

bool parseXMLNumbers(std::string_view list, std::vector<int>& values) { return parseList(list, values); }
bool parseXMLNumbers(std::string_view list, std::vector<float>& values) { return parseList(list, values); }
bool parseXMLNumbers(std::string_view list, std::vector<double>& values) { return parseList(list, values); }

bool parseXMLNumber(std::string_view text, int& value) { return parseSingle(text, value); }
bool parseXMLNumber(std::string_view text, float& value) { return parseSingle(text, value); }
bool parseXMLNumber(std::string_view text, double& value) { return parseSingle(text, value); }

bool parseXMLNumber(std::string_view text, bool& value) {
    if (text != "true" && text != "false" && text != "1" && text != "0") return false;
    value = text == "true" || text == "1";
    return true;
}

}  // namespace db
