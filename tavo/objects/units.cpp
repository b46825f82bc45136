#include "tavo/objects/units.h"
#include "tavo/objects/attribute.h"
#include "tavo/objects/scene.h"
#include <iterator>

namespace Tavo {
namespace {

template<std::size_t Count> XUnit const* unitAt(XUnit const (&table)[Count], XAttribute const& choice) {
    int const index = choice.Enumeration();
    return choice.IsValid() && index >= 0 && index < int(Count) ? &table[index] : nullptr;
}

// The units that the user chose; a null stands for a number that no unit has.
struct ChosenUnits {
    XUnit const *linear, *mass, *angular;

    explicit ChosenUnits(XSceneSettings const& settings) :
        linear(unitAt(LinearUnitTable, settings.LinearUnits())), mass(unitAt(MassUnitTable, settings.MassUnits())),
        angular(unitAt(AngularUnitTable, settings.AngularUnits())) {}
    bool areKnown() const { return linear && mass && angular; }
};

// `l`, `m` and `a` are the factors of length, mass and angle in the direction of the conversion; `frames` is frames per
// second towards the outside, and seconds per frame towards the inside.
double converted(int code, double value, double l, double m, double a, double frames) {
    switch (code) {
    case LengthUnit:
    case VelocityUnit:
    case AccelerationUnit:
    case TorqueUnit: return value * l;
    case VolumeUnit: return value * l * l * l;
    case AngleUnit:
    case AngularVelocityUnit:
    case AngularAccelerationUnit: return value * a;
    case FrameUnit: return value * frames;
    case MassUnit: return value * m;
    case DensityUnit: return value * m / (l * l * l);
    case StiffnessUnit:
    case DampingUnit: return value / l;
    case AngularStiffnessUnit:
    case AngularDampingUnit: return value * l / a;
    default: return value;
    }
}

std::wstring unitText(int code, ChosenUnits const& units) {
    std::wstring const l = units.linear->abbreviation, m = units.mass->abbreviation, a = units.angular->abbreviation,
                       n = ForceAbbreviation, s = TimeAbbreviation;
    switch (code) {
    case LengthUnit: return L" " + l;
    case VelocityUnit: return L" " + l + L"/" + s;
    case AccelerationUnit: return L" " + l + L"/" + s + L"2";
    case VolumeUnit: return L" " + l + L"3";
    case AngleUnit: return units.angular == &AngularUnitTable[0] ? DegreeSign.str() : L" " + a;
    case AngularVelocityUnit: return L" " + a + L"/" + s;
    case MassUnit: return L" " + m;
    case DensityUnit: return L" " + m + L"/" + l + L"3";
    case ForceUnit: return L" " + n;
    case TorqueUnit: return L" " + n + l;
    case StiffnessUnit: return L"  " + n + L"/" + l;  // two blanks here, and in three of these four, as they stand
    case DampingUnit: return L"  " + n + L"/" + l + L"/" + s;
    case AngularStiffnessUnit: return L" " + n + l + L"/" + a;
    case AngularDampingUnit: return L"  " + n + l + L"/" + a + L"/" + s;
    case FrameRateUnit: return L" " + FrameRateAbbreviation.str();
    default: return {};
    }
}

}  // namespace

template<class Value> void XScene::convertUnits(int code, XUnitConversionType direction, Value& value) const {
    ChosenUnits const units(_sceneSettings);
    double const rate = _sceneSettings.FrameRate().Integer();
    if (!units.areKnown() || !(rate > 0)) return;
    double XUnit::*const factor = direction == ToExternalUnits ? &XUnit::external : &XUnit::internal;
    double const frames = direction == ToExternalUnits ? rate : 1 / rate;
    value = Value(
        converted(code, double(value), units.linear->*factor, units.mass->*factor, units.angular->*factor, frames));
}

std::wstring XScene::Units(int code) {
    ChosenUnits const units(_sceneSettings);
    return units.areKnown() ? unitText(code, units) : std::wstring();
}

void XScene::ConvertUnits(int code, XUnitConversionType direction, float& value) {
    convertUnits(code, direction, value);
}

void XScene::ConvertUnits(int code, XUnitConversionType direction, double& value) {
    convertUnits(code, direction, value);
}

void XScene::ConvertUnits(sg::AttributeUnit unit, XUnitConversionType direction, float& value) {
    convertUnits(UnitCodeOf(unit), direction, value);
}

void XScene::ConvertUnits(sg::AttributeUnit unit, XUnitConversionType direction, XVector3& value) {
    float x = value.X(), y = value.Y(), z = value.Z();
    for (float* part : {&x, &y, &z}) convertUnits(UnitCodeOf(unit), direction, *part);
    value = XVector3(x, y, z);
}

void XScene::ConvertUnits(XUnitConversionType direction, Qelutils::Vector<float>& lengths) {
    for (float& length : lengths) convertUnits(LengthUnit, direction, length);
}

void XScene::ConvertUnits(XUnitConversionType direction, XMatrix& value) {
    XVector3 translation = value.Translation();
    ConvertUnits(sg::Linear, direction, translation);
    value.SetTranslation(translation);
}

}  // namespace Tavo
