#include "qel/db/xml_writer.h"

#include "qel/db/xml_text.h"
#include "qel/utils/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <type_traits>

namespace db {

namespace {

constexpr std::size_t bufferSize = 64 * 1024;
constexpr std::size_t portionSize = 1024;   // characters for which room is made at once
constexpr std::size_t widestCharacter = 7;  // bytes: an escape with its four digits
constexpr std::size_t widestNumber = 32;    // bytes: a double takes 24
constexpr std::size_t deepestIndentation =
    32;  // levels: without it deep documents would grow with the square of the depth

// ---- Characters

constexpr bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }
constexpr bool isNameCharacter(char c) { return isLetter(c) || (c >= '0' && c <= '9') || c == '.' || c == '-'; }

bool isName(std::string_view name) {
    return !name.empty() && isLetter(name[0]) && std::all_of(name.begin(), name.end(), isNameCharacter);
}

// ASCII characters that stand in a file as they are, between tags and between quotes.
constexpr std::array<bool, 128> plainTable = [] {
    std::array<bool, 128> plain{};
    for (int c = ' '; c < 127; ++c) plain[std::size_t(c)] = c != '&' && c != '<' && c != '>' && c != '"';
    return plain;
}();

bool isPlain(char32_t c) { return c < 128 && plainTable[c]; }

char* append(char* out, std::string_view bytes) { return std::copy(bytes.begin(), bytes.end(), out); }

char* appendUtf8(char* out, char32_t c) {
    auto follow = [](char32_t bits) { return char(0x80 | (bits & 0x3F)); };
    if (c < 0x80) {
        *out++ = char(c);
    } else if (c < 0x800) {
        *out++ = char(0xC0 | (c >> 6));
        *out++ = follow(c);
    } else if (c < 0x10000) {
        *out++ = char(0xE0 | (c >> 12));
        *out++ = follow(c >> 6);
        *out++ = follow(c);
    } else {
        *out++ = char(0xF0 | (c >> 18));
        *out++ = follow(c >> 12);
        *out++ = follow(c >> 6);
        *out++ = follow(c);
    }
    return out;
}

char* appendEscaped(char* out, char32_t c) {
    out = appendUtf8(out, char32_t(xmlEscape));
    for (int shift = 12; shift >= 0; shift -= 4) *out++ = "0123456789ABCDEF"[(c >> shift) & 15];
    return out;
}

bool needsEscape(char32_t c) {
    return c < 0x20 || (c >= 0xD800 && c < 0xE000) || c == 0xFFFE || c == 0xFFFF || c == char32_t(xmlEscape);
}

// Blanks other than the space are references, since a reader turns them into spaces or drops them.
char* appendCharacter(char* out, char32_t c) {
    switch (c) {
    case '&': return append(out, "&amp;");
    case '<': return append(out, "&lt;");
    case '>': return append(out, "&gt;");
    case '"': return append(out, "&quot;");
    case '\t': return append(out, "&#9;");
    case '\n': return append(out, "&#10;");
    case '\r': return append(out, "&#13;");
    }
    if (needsEscape(c)) return appendEscaped(out, c);
    return appendUtf8(out, c > 0x10FFFF ? 0xFFFD : c);
}

template<class T> char* appendNumber(char* out, T value) {
    if constexpr (std::is_floating_point_v<T>)
        if (std::isnan(value)) return append(out, "nan");  // the sign of a NaN means nothing
    return std::to_chars(out, out + widestNumber, value).ptr;
}

}  // namespace

XMLWriter::XMLWriter(OutputStream& stream) : stream_(stream), buffer_(new char[bufferSize]) {
    putRaw("<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
}

// ---- Elements

void XMLWriter::startElement(std::string_view name) {
    if (!ok()) return;
    if (!isName(name)) return void(fail(L"\"" + Qelutils::fromUtf8(name) + L"\" is no XML name"));
    if (starts_.empty() && hasRoot_) return void(fail(L"An XML document has one outermost element"));
    if (place_ == Place::Text) return void(fail(L"An XML element can't hold text and elements"));
    if (starts_.size() == xmlDepthLimit) return void(fail(L"XML elements are nested too deeply"));
    if (place_ == Place::StartTag) putRaw(">");
    putLine();
    putRaw("<");
    putRaw(name);
    starts_.push_back(names_.size());
    names_ += name;
    place_ = Place::StartTag;
    hasRoot_ = true;
}

void XMLWriter::endElement() {
    if (!ok()) return;
    if (starts_.empty()) return void(fail(L"No XML element is open"));
    std::size_t start = starts_.back();
    starts_.pop_back();
    if (place_ == Place::StartTag) {
        putRaw("/>");
    } else {
        if (place_ == Place::Elements) putLine();
        putRaw("</");
        putRaw(std::string_view(names_).substr(start));
        putRaw(">");
    }
    names_.resize(start);
    place_ = starts_.empty() ? Place::Outside : Place::Elements;
}

bool XMLWriter::finish() {
    if (ok() && (!hasRoot_ || !starts_.empty())) fail(L"The XML document isn't complete");
    putRaw("\n");
    flush();
    return ok();
}

bool XMLWriter::openAttribute(std::string_view name) {
    if (!ok()) return false;
    if (place_ != Place::StartTag) return fail(L"XML attributes come first in their element");
    if (!isName(name)) return fail(L"\"" + Qelutils::fromUtf8(name) + L"\" is no XML name");
    putRaw(" ");
    putRaw(name);
    putRaw("=\"");
    return true;
}

bool XMLWriter::openContent() {
    if (!ok()) return false;
    if (place_ != Place::StartTag && place_ != Place::Text)
        return fail(L"XML text stands in an element that holds no elements");
    if (place_ == Place::StartTag) putRaw(">");
    place_ = Place::Text;
    return true;
}

bool XMLWriter::openListItem() {
    bool first = place_ == Place::StartTag;
    if (!openContent()) return false;
    if (!first) putRaw(" ");
    return true;
}

// ---- Values

void XMLWriter::put(std::wstring_view text) { putCharacters(text); }

void XMLWriter::put(std::string_view utf8) {
    if (std::all_of(utf8.begin(), utf8.end(), [](char c) { return (c & 0x80) == 0; }))
        putCharacters(utf8);
    else
        put(Qelutils::fromUtf8(utf8));
}

void XMLWriter::put(int value) { putNumber(value); }
void XMLWriter::put(long long value) { putNumber(value); }
void XMLWriter::put(unsigned long long value) { putNumber(value); }
void XMLWriter::put(float value) { putNumber(value); }
void XMLWriter::put(double value) { putNumber(value); }

void XMLWriter::put(std::span<int const> list) { putList(list); }
void XMLWriter::put(std::span<float const> list) { putList(list); }
void XMLWriter::put(std::span<double const> list) { putList(list); }

void XMLWriter::values(std::span<int const> list) { putListItems(list); }
void XMLWriter::values(std::span<float const> list) { putListItems(list); }
void XMLWriter::values(std::span<double const> list) { putListItems(list); }

template<class Character> void XMLWriter::putCharacters(std::basic_string_view<Character> text) {
    while (!text.empty()) {
        auto portion = text.substr(0, portionSize);
        char* out = make(portion.size() * widestCharacter);
        for (Character c : portion)
            if (isPlain(char32_t(c)))
                *out++ = char(c);
            else
                out = appendCharacter(out, char32_t(c));
        take(out);
        text.remove_prefix(portion.size());
    }
}

template<class T> void XMLWriter::putNumber(T value) { take(appendNumber(make(widestNumber), value)); }

template<class T> void XMLWriter::putList(std::span<T const> list) {
    while (!list.empty()) {
        auto portion = list.first(std::min(list.size(), portionSize));
        char* out = make(portion.size() * (widestNumber + 1));
        for (T value : portion) {
            out = appendNumber(out, value);
            *out++ = ' ';
        }
        list = list.subspan(portion.size());
        take(list.empty() ? out - 1 : out);
    }
}

template<class T> void XMLWriter::putListItems(std::span<T const> list) {
    if (!list.empty() && openListItem()) putList(list);
}

void XMLWriter::putRaw(std::string_view bytes) {
    while (!bytes.empty()) {
        auto portion = bytes.substr(0, portionSize);
        take(append(make(portion.size()), portion));
        bytes.remove_prefix(portion.size());
    }
}

void XMLWriter::putLine() {
    constexpr auto blanks = [] {
        std::array<char, 2 * deepestIndentation + 1> line{};
        line.fill(' ');
        line[0] = '\n';
        return line;
    }();
    putRaw(std::string_view(blanks.data(), 1 + 2 * std::min(starts_.size(), deepestIndentation)));
}

// ---- The buffer

char* XMLWriter::make(std::size_t bytes) {
    if (bufferSize - used_ < bytes) flush();
    return buffer_.get() + used_;
}

void XMLWriter::take(char const* end) { used_ = std::size_t(end - buffer_.get()); }

void XMLWriter::flush() {
    if (ok() && !stream_.write(buffer_.get(), used_)) fail(stream_.error());
    used_ = 0;
}

bool XMLWriter::fail(std::wstring message) {
    if (ok()) error_ = message.empty() ? L"The stream failed" : std::move(message);
    return false;
}

}  // namespace db
