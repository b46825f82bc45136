// Text: wide inside, UTF-8 at every edge. Numbers are written and read without regard to the locale.
#pragma once
#include <cstdarg>
#include <string>
#include <string_view>

namespace Qelutils {

// Malformed input never fails: each bad sequence or lone surrogate becomes U+FFFD.
std::string toUtf8(std::wstring_view text);
std::wstring fromUtf8(std::string_view text);

// printf-style formatting of wide text. %s takes wide text (wchar_t const*) on every platform, as does %ls; %hs takes
// UTF-8. The result is cut to at most `limit` characters.
std::wstring format(wchar_t const* format, ...);
std::wstring formatList(wchar_t const* format, std::va_list arguments, std::size_t limit = std::wstring::npos);

// The shortest text that reads back to the same bits.
std::string number(float value);
std::string number(double value);

// The whole text must be a number; otherwise false and `value` is left alone. A leading '+', surrounding blanks and a
// missing zero before the point (".5", "-.5") are accepted, as are "inf" and "nan".
bool parseNumber(std::string_view text, float& value);
bool parseNumber(std::string_view text, double& value);
bool parseNumber(std::string_view text, int& value);

// Upper and lower case of ASCII letters; other characters stay.
std::wstring toUpper(std::wstring text);
std::wstring toLower(std::wstring text);
std::wstring trim(std::wstring_view text);

// '*' stands for any run of characters, '?' for one; case-sensitive.
bool matchesWildcard(std::wstring_view text, std::wstring_view pattern);

// Of `candidates`, the nearest to `wanted` by edit distance (case aside), at most `count`, none that differ by more
// than a third of their length: what a message about a typo proposes.
std::wstring nearestNames(std::wstring const& wanted, std::wstring const* first, std::wstring const* last,
                          int count = 3);

}  // namespace Qelutils
