// What the XML writer and reader agree on: how text and numbers stand in a file.
//
// Text. XML 1.0 can't hold most control characters, U+FFFE and U+FFFF, nor lone surrogates, not even as character
// references. Such a character is written as U+241B (the picture of the escape key) and four hexadecimal digits, and
// U+241B itself as U+241B 241B; all other text stands as it is. So every wide text of Unicode characters comes back as
// it was, lone surrogates included; a value above U+10FFFF becomes U+FFFD.
//
// Numbers. The shortest decimal text that reads back to the same bits; "inf", "-inf", and "nan" for every NaN. In a
// list they are parted by blanks.
#pragma once
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace db {

// How many elements may be open at once, for writer and reader alike: what can be written can be read.
inline constexpr int xmlDepthLimit = 10000;

inline constexpr wchar_t xmlEscape = 0x241B;

// The text behind UTF-8 that stands in a file. U+241B without four digits after it stands for itself.
std::wstring decodeXMLText(std::string_view utf8);

// Appends the numbers of a list to `values`, or nothing and false when any of it is no number, or is out of range.
bool parseXMLNumbers(std::string_view list, std::vector<int>& values);
bool parseXMLNumbers(std::string_view list, std::vector<float>& values);
bool parseXMLNumbers(std::string_view list, std::vector<double>& values);

// One number, or false and `value` left alone.
bool parseXMLNumber(std::string_view text, int& value);
bool parseXMLNumber(std::string_view text, float& value);
bool parseXMLNumber(std::string_view text, double& value);
// "true" or "false", also "1" or "0".
bool parseXMLNumber(std::string_view text, bool& value);

}  // namespace db
