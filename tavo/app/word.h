// A constant text of the system: type names, default names, labels, messages. It is a view of a literal, so it is ready
// before any static object is constructed, costs nothing, and serves wherever a text is read.
#pragma once
#include <string>
#include <string_view>

namespace Tavo {

class XWord : public std::wstring_view {
public:
    constexpr XWord() : std::wstring_view(L"") {}
    template<std::size_t Size> constexpr XWord(wchar_t const (&literal)[Size]) : std::wstring_view(literal, Size - 1) {}

    operator std::wstring() const { return std::wstring(begin(), end()); }
    std::wstring str() const { return *this; }
    constexpr wchar_t const* c_str() const { return data(); }  // ends in a zero, as the literal does
};

// Joins words and texts; the standard offers no sum of a text and a view.
inline std::wstring operator+(std::wstring left, XWord const& right) { return left.append(right); }
inline std::wstring operator+(XWord const& left, std::wstring const& right) { return left.str().append(right); }

}  // namespace Tavo
