// printf-style formatting with its own reading of the directives: the C library's %s means different things in wide
// formats on different platforms, its %hs depends on the locale, and so does its decimal point. Each number is still
// printed by snprintf, one directive at a time.
#include "qel/utils/text.h"
#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdio>

namespace Qelutils {
namespace {

constexpr int widest = 65536;

// In a struct, because va_list may be an array type, which functions cannot take by reference alike everywhere.
struct Arguments {
    std::va_list list;
};

// One directive: % flags width precision length conversion.
struct Directive {
    std::string flags;
    int width = 0;
    int precision = -1;  // none
    std::string length;  // "", "hh", "h", "l", "ll", "j", "z", "t" or "L"
    wchar_t conversion = 0;

    bool leftAligned() const { return flags.find('-') != std::string::npos; }
};

bool isOneOf(wchar_t c, wchar_t const* set) { return c && std::wstring_view(set).find(c) != std::wstring_view::npos; }

int parseCount(wchar_t const*& at, Arguments& arguments) {
    if (*at == L'*') return ++at, va_arg(arguments.list, int);
    int count = 0;
    for (; *at >= L'0' && *at <= L'9'; ++at) count = std::min(count * 10 + static_cast<int>(*at - L'0'), widest);
    return count;
}

// Reads the directive behind '%'; `at` moves behind it.
Directive parseDirective(wchar_t const*& at, Arguments& arguments) {
    Directive d;
    for (; isOneOf(*at, L"-+ #0"); ++at) d.flags += static_cast<char>(*at);
    int const width = parseCount(at, arguments);
    if (width < 0) d.flags += '-';
    d.width = width < -widest || width > widest ? widest : std::abs(width);
    if (*at == L'.') d.precision = std::max(parseCount(++at, arguments), -1);
    for (; isOneOf(*at, L"hljztL") && d.length.size() < 2; ++at) d.length += static_cast<char>(*at);
    if (*at) d.conversion = *at++;
    return d;
}

std::intmax_t signedArgument(std::string const& length, Arguments& arguments) {
    if (length == "hh") return static_cast<signed char>(va_arg(arguments.list, int));
    if (length == "h") return static_cast<short>(va_arg(arguments.list, int));
    if (length == "l") return va_arg(arguments.list, long);
    if (length == "ll") return va_arg(arguments.list, long long);
    if (length == "j") return va_arg(arguments.list, std::intmax_t);
    if (length == "z" || length == "t") return va_arg(arguments.list, std::ptrdiff_t);
    return va_arg(arguments.list, int);
}

std::uintmax_t unsignedArgument(std::string const& length, Arguments& arguments) {
    if (length == "hh") return static_cast<unsigned char>(va_arg(arguments.list, unsigned));
    if (length == "h") return static_cast<unsigned short>(va_arg(arguments.list, unsigned));
    if (length == "l") return va_arg(arguments.list, unsigned long);
    if (length == "ll") return va_arg(arguments.list, unsigned long long);
    if (length == "j") return va_arg(arguments.list, std::uintmax_t);
    if (length == "z" || length == "t") return va_arg(arguments.list, std::size_t);
    return va_arg(arguments.list, unsigned);
}

template<class Value> std::string print(Directive const& d, char const* length, Value value) {
    int const precision = std::min(d.precision, widest);
    std::string const format = "%" + d.flags + "*.*" + length + static_cast<char>(d.conversion);
    std::string out(
        static_cast<std::size_t>(std::max(std::snprintf(nullptr, 0, format.c_str(), d.width, precision, value), 0)),
        ' ');
    std::snprintf(out.data(), out.size() + 1, format.c_str(), d.width, precision, value);
    return out;
}

// Apart from the decimal point, which is what the locale says, a printed number has only these characters.
std::string withPoint(std::string text) {
    auto const isForeign = [](char c) {
        bool const letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
        return !letter && !(c >= '0' && c <= '9') && c != '+' && c != '-' && c != ' ';
    };
    auto const first = std::find_if(text.begin(), text.end(), isForeign);
    auto const last = std::find_if_not(first, text.end(), isForeign);
    if (first != last) text.replace(first, last, ".");
    return text;
}

std::string printFloat(Directive const& d, Arguments& arguments) {
    if (d.length == "L") return withPoint(print(d, "L", va_arg(arguments.list, long double)));
    return withPoint(print(d, "", va_arg(arguments.list, double)));
}

template<class Char> std::basic_string_view<Char> bounded(Char const* text, int precision) {
    std::size_t const most = precision < 0 ? INT_MAX : static_cast<std::size_t>(precision);
    std::size_t size = 0;
    while (size < most && text[size]) ++size;
    return {text, size};
}

std::wstring padded(std::wstring text, Directive const& d) {
    auto const width = static_cast<std::size_t>(d.width);
    if (text.size() < width) text.insert(d.leftAligned() ? text.size() : 0, width - text.size(), L' ');
    return text;
}

std::wstring textArgument(Directive const& d, Arguments& arguments) {
    if (d.length == "h") {
        auto const text = va_arg(arguments.list, char const*);
        return fromUtf8(bounded(text ? text : "(null)", d.precision));
    }
    auto const text = va_arg(arguments.list, wchar_t const*);
    return std::wstring(bounded(text ? text : L"(null)", d.precision));
}

// Both promote to a type of int's size wherever wchar_t has 16 or 32 bits.
std::wstring characterArgument(Directive const& d, Arguments& arguments) {
    auto const c = va_arg(arguments.list, int);
    if (d.length == "h") return fromUtf8(std::string(1, static_cast<char>(c)));
    return std::wstring(1, static_cast<wchar_t>(c));
}

// False if the conversion is unknown: its directive then stands for itself.
bool appendConverted(std::wstring& out, Directive const& d, Arguments& arguments) {
    if (isOneOf(d.conversion, L"di"))
        out += fromUtf8(print(d, "j", signedArgument(d.length, arguments)));
    else if (isOneOf(d.conversion, L"uoxX"))
        out += fromUtf8(print(d, "j", unsignedArgument(d.length, arguments)));
    else if (isOneOf(d.conversion, L"fFeEgGaA"))
        out += fromUtf8(printFloat(d, arguments));
    else if (d.conversion == L's')
        out += padded(textArgument(d, arguments), d);
    else if (d.conversion == L'c')
        out += padded(characterArgument(d, arguments), d);
    else if (d.conversion == L'p')
        out += fromUtf8(print(d, "", va_arg(arguments.list, void*)));
    else if (d.conversion == L'n')
        static_cast<void>(va_arg(arguments.list, void*));
    else if (d.conversion == L'%')
        out += L'%';
    else
        return false;
    return true;
}

}  // namespace

std::wstring formatList(wchar_t const* format, std::va_list list, std::size_t limit) {
    Arguments arguments;
    va_copy(arguments.list, list);
    std::wstring out;
    for (wchar_t const* at = format; *at && out.size() <= limit;) {
        if (*at != L'%') {
            out += *at++;
            continue;
        }
        wchar_t const* const start = at++;
        Directive const directive = parseDirective(at, arguments);
        if (!appendConverted(out, directive, arguments)) out.append(start, at);
    }
    va_end(arguments.list);
    if (out.size() > limit) out.resize(limit);
    return out;
}

std::wstring format(wchar_t const* format, ...) {
    std::va_list list;
    va_start(list, format);
    std::wstring const out = formatList(format, list);
    va_end(list);
    return out;
}

}  // namespace Qelutils
