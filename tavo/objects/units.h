// Units at the edge. Values in a database are in metres, kilograms, radians and seconds; these are the words and
// factors of the units that a user may choose, and the codes by which values are converted.
#pragma once
#include "qel/sg/units.h"
#include "tavo/app/word.h"

namespace Tavo {

enum XUnitConversionType : int { ToInternalUnits = 0, ToExternalUnits = 1 };

// A value in internal units times `external` is the value in this unit; times `internal` it comes back.
struct XUnit {
    XWord word;
    XWord abbreviation;
    double external;
    double internal;
};

inline constexpr XUnit LinearUnitTable[] = {
    {L"Millimetres", L"mm", 1000, 0.001}, {L"Centimetres", L"cm", 100, 0.01}, {L"Metres", L"m", 1, 1},
    {L"Inches", L"in", 39.37008, 0.0254}, {L"Feet", L"ft", 3.28084, 0.3048},  {L"Yards", L"yd", 1.0936133, 0.9144},
};
inline constexpr XUnit MassUnitTable[] = {
    {L"Grams", L"g", 1000, 0.001},
    {L"Kilograms", L"kg", 1, 1},
    {L"Tonnes", L"T", 0.001, 1000},
    {L"Pounds", L"lb", 2.2046225, 0.45359236},
    {L"Stones", L"st", 0.15747304, 6.3502932},
};
inline constexpr XUnit AngularUnitTable[] = {
    {L"Degrees", L"deg", 57.29578, 0.017453292},
    {L"Radians", L"rad", 1, 1},
};
inline constexpr XWord DegreeSign = L"\u00b0", FrameRateWord = L"frames per second", FrameRateAbbreviation = L"fps",
                       TimeWord = L"second", TimeAbbreviation = L"s", ForceWord = L"Newton", ForceAbbreviation = L"N";

// What XDatabase::Units and ConvertUnits take as numbers.
enum XUnitCode : int {
    LengthUnit = 5,
    VelocityUnit = 6,
    AccelerationUnit = 7,
    VolumeUnit = 8,
    AngleUnit = 9,
    AngularVelocityUnit = 10,
    AngularAccelerationUnit = 11,
    FrameUnit = 12,
    MassUnit = 13,
    DensityUnit = 14,
    ForceUnit = 15,
    TorqueUnit = 16,
    StiffnessUnit = 17,
    DampingUnit = 18,
    AngularStiffnessUnit = 19,
    AngularDampingUnit = 20,
    FrameRateUnit = 21,
};

// The code by which a value of an attribute with that unit is converted; 0, which converts nothing, for the rest.
constexpr int UnitCodeOf(sg::AttributeUnit unit) {
    if (unit >= sg::Linear && unit <= sg::Acceleration) return LengthUnit + (unit - sg::Linear);
    if (unit >= sg::Angular && unit <= sg::Framerate) return AngleUnit + (unit - sg::Angular);
    return 0;
}
static_assert(UnitCodeOf(sg::Linear) == LengthUnit && UnitCodeOf(sg::Acceleration) == AccelerationUnit);
static_assert(UnitCodeOf(sg::Angular) == AngleUnit && UnitCodeOf(sg::Time) == FrameUnit);
static_assert(UnitCodeOf(sg::Framerate) == FrameRateUnit && UnitCodeOf(sg::Filename) == 0);

}  // namespace Tavo
