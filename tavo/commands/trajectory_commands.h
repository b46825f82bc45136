// Trajectories from motion, and other keys for the selected trajectories. Objects that are none are passed over.
#pragma once
#include "tavo/commands/command_pattern.h"
#include "tavo/trajectories/trajectory.h"

namespace Tavo {

class XGenerateTrajectory : public XCommandType<XGenerateTrajectory> {
    static constexpr wchar_t const* frames[] = {L"World", L"Object", L"User"};
    static constexpr auto colour = parameter_kinds::colourRows(XTrajectory::DefaultColour);

public:
    static constexpr XWord TypeID = L"GenerateTrajectory";
    static constexpr wchar_t const* Help =
        L"Creates the path, with its timing, along which each selected transform moves over the scene's time.";
    using XTyped::XTyped;

    TAVO_PARAMETER(8, ParentFrame,
                   L"Motion is recorded in the scene's frame or, by User, in that of the last selected.", enumeration,
                   frames)
    TAVO_PARAMETER(9, SamplingFactor, L"Samples a frame; one not above 0 leaves the last one used.", real, 1)
    TAVO_PARAMETER(10, Visible, L"Whether the path is drawn.", boolean, true)
    TAVO_PARAMETER(11, Colour, L"Red, green, blue, alpha.", compound, colour)

    void onRun() override;
};
using XGenerateTrajectoryDef = XTypedDef<XGenerateTrajectory>;

class XSampleTrajectoryUniformly : public XCommandType<XSampleTrajectoryUniformly> {
public:
    static constexpr XWord TypeID = L"SampleTrajectoryUniformly";
    static constexpr wchar_t const* Help = L"Gives each selected trajectory keys at even distances.";
    using XTyped::XTyped;

    TAVO_PARAMETER(8, SegmentsNum, L"Between keys; at least 2.", integer, 100)

    void onRun() override;
};
using XSampleTrajectoryUniformlyDef = XTypedDef<XSampleTrajectoryUniformly>;

class XSampleTrajectoryAdaptively : public XCommandType<XSampleTrajectoryAdaptively> {
public:
    static constexpr XWord TypeID = L"SampleTrajectoryAdaptively";
    static constexpr wchar_t const* Help = L"Gives each selected trajectory keys that lie closer where it bends.";
    using XTyped::XTyped;

    TAVO_PARAMETER(8, ErrorTolerance, L"How far the path may lie from the line between two keys.", length, 0.001f)
    TAVO_PARAMETER(9, MinSegmentsNum, L"No segment is longer than an even one of so many.", integer, 10)
    TAVO_PARAMETER(10, TestSamplesNum, L"Places within a segment at which it is tested.", integer, 5)
    TAVO_PARAMETER(11, RefinementIterationsNum, L"Attempts to find a longer segment that is good.", integer, 10)

    void onRun() override;
};
using XSampleTrajectoryAdaptivelyDef = XTypedDef<XSampleTrajectoryAdaptively>;

class XFitTrajectory : public XCommandType<XFitTrajectory> {
public:
    static constexpr XWord TypeID = L"FitTrajectory";
    static constexpr wchar_t const* Help =
        L"Gives each selected trajectory, if sampled, few keys with handles instead.";
    using XTyped::XTyped;

    TAVO_PARAMETER(8, PreprocessingNewSegmentsNum, L"First takes so many even segments; below 2 the keys as they are.",
                   integer)
    TAVO_PARAMETER(9, ErrorTolerance, L"How far a key may lie from the new path.", length, 0.001f)
    TAVO_PARAMETER(10, MaxRefinementIterationsNum, L"Attempts to find a longer segment that is good.", integer, 20)
    TAVO_PARAMETER(11, MaxSamplesNumberToFit, L"The most keys that one segment replaces.", integer, 200)
    TAVO_PARAMETER(12, RefinementsStepsNum, L"Rounds in which keys find their places on a segment.", integer, 2)

    void onRun() override;
};
using XFitTrajectoryDef = XTypedDef<XFitTrajectory>;

TAVO_COMMAND(XToSplineTrajectory, L"ToSplineTrajectory",
             L"Makes a spline through its keys of each selected trajectory that is sampled.")

}  // namespace Tavo
