// Attributes as people read them: names with blanks, values in the units that the user chose.
#include "qel/utils/text.h"
#include "tavo/objects/attribute_kinds.h"
#include "tavo/objects/database.h"
#include <algorithm>

namespace Tavo {
namespace {

bool isLower(wchar_t c) { return c >= L'a' && c <= L'z'; }
bool isUpper(wchar_t c) { return c >= L'A' && c <= L'Z'; }

// Whether a word begins at `i`: "translate|X", "IK|Handle", and none inside "XYZ".
bool beginsWord(std::wstring const& text, std::size_t i) {
    if (text[i] == L'[') return true;
    if (i == 0 || !isUpper(text[i])) return false;
    return isLower(text[i - 1]) || (isUpper(text[i - 1]) && i + 1 < text.size() && isLower(text[i + 1]));
}

}  // namespace

// ---- names ----

std::wstring XAttribute::ConvertToDisplayName(std::wstring const& name) {
    if (name.size() < 2) return name;
    std::wstring result;
    for (std::size_t i = 0; i < name.size(); ++i) {
        if (beginsWord(name, i)) result += L' ';
        result += name[i] == L'.' ? L" > " : std::wstring(1, name[i]);
    }
    return Qelutils::trim(result);
}

std::wstring XAttribute::ConvertToInternalName(std::wstring const& name) {
    std::wstring result = name;
    if (name.size() >= 2) std::erase(result, L' ');
    return result;
}

std::wstring XAttribute::DisplayName() const { return ConvertToDisplayName(LocalPathName()); }
std::wstring XAttribute::ConciseDisplayName() const { return ConvertToDisplayName(Name()); }

// ---- units ----

template<class Value> Value XAttribute::converted(Value value, int direction) const {
    if (database()) database()->ConvertUnits(Units(), XUnitConversionType(direction), value);
    return value;
}

float XAttribute::DisplayFloat(int index) const { return converted(Float(index), ToExternalUnits); }
double XAttribute::DisplayDouble(int index) const { return converted(Double(index), ToExternalUnits); }
float XAttribute::AsDisplayFloat() const { return AsDisplayFloat(Float()); }
float XAttribute::AsDisplayFloat(float const& value) const { return converted(value, ToExternalUnits); }
float XAttribute::AsInternalFloat(float const& value) const { return converted(value, ToInternalUnits); }
XAttribute& XAttribute::SetDisplayFloat(float value, int index) {
    return SetFloat(converted(value, ToInternalUnits), index);
}
XAttribute& XAttribute::SetDisplayDouble(double value, int index) {
    return SetDouble(converted(value, ToInternalUnits), index);
}

// ---- values ----

namespace {

std::wstring decimalText(double value) {
    std::wstring text = Qelutils::format(L"%.*f", XAttribute::MaxNumericDecimalPlaces, value);
    std::size_t const point = text.find(L'.');
    if (point == std::wstring::npos) return text;
    std::size_t const least = point + 1 + std::size_t(XAttribute::MinNumericDecimalPlaces);
    text.erase(std::max(text.find_last_not_of(L'0') + 1, least));
    return text;
}

}  // namespace

std::wstring XAttribute::DisplayValue() const {
    if (IsInt()) return Qelutils::format(L"%d", Integer());
    if (IsBool()) return Boolean() ? TrueString : FalseString;
    if (IsEnum()) return EnumerationDisplayString();
    if (IsFloat()) return decimalText(DisplayFloat());
    if (IsDouble()) return decimalText(DisplayDouble());
    return IsString() ? String() : std::wstring();
}

}  // namespace Tavo
