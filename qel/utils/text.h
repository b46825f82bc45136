// Text: wide inside, UTF-8 at every edge. Numbers are written and read without regard to the locale. Nothing here
// fails: malformed text is repaired, a malformed format directive stands in the result as it was written.
#pragma once
#include <cstdarg>
#include <cstddef>
#include <string>
#include <string_view>

namespace Qelutils {

// Malformed input never fails: each bad sequence or lone surrogate becomes U+FFFD. A surrogate pair is one character,
// also where wchar_t is wide enough to do without.
std::string toUtf8(std::wstring_view text);
std::wstring fromUtf8(std::string_view text);

// printf-style formatting of wide text; the conversions d i u o x X c s p f F e E g G a A with their flags, widths,
// precisions and length modifiers. The differences from the C library, the same on every platform:
// - %s takes wide text (wchar_t const*), as does %ls; %hs takes UTF-8, and its precision counts bytes. A null pointer
//   gives "(null)". Text with a precision need not be terminated.
// - %c takes a wide character, as does %lc; %hc takes an ASCII one.
// - The decimal point is '.', whatever the locale; a field is at most 65536 characters wide or precise.
// - %n writes nothing, and positional arguments ("%1$d") are not known.
// The result is cut to at most `limit` characters.
std::wstring format(wchar_t const* format, ...);
std::wstring formatList(wchar_t const* format, std::va_list arguments, std::size_t limit = std::wstring::npos);

// The shortest text that reads back to the same bits.
std::string number(float value);
std::string number(double value);

// The whole text must be a number; otherwise false and `value` is left alone. A leading '+', surrounding blanks and a
// missing zero before the point (".5", "-.5") are accepted, as are "inf" and "nan". A number too small for the type
// reads as zero, one too large is refused.
bool parseNumber(std::string_view text, float& value);
bool parseNumber(std::string_view text, double& value);
bool parseNumber(std::string_view text, int& value);

// Upper and lower case of ASCII letters; other characters stay.
std::wstring toUpper(std::wstring text);
std::wstring toLower(std::wstring text);

// Without the ASCII blanks at both ends.
std::wstring trim(std::wstring_view text);

// '*' stands for any run of characters, '?' for one; case-sensitive.
bool matchesWildcard(std::wstring_view text, std::wstring_view pattern);

// Of the candidates [first, last), the nearest to `wanted` by edit distance (case aside, two neighbours exchanged count
// as one edit), at most `count`, none that differ by more than a third of their length; where there are none, those
// that begin like it. What a message about a typo proposes. Nearest first, in the candidates' order among equals,
// separated by ", "; empty when nothing is near.
std::wstring nearestNames(std::wstring const& wanted, std::wstring const* first, std::wstring const* last,
                          int count = 3);

}  // namespace Qelutils
