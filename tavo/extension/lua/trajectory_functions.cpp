#include "tavo/extension/lua/script_sets.h"
#include "tavo/trajectories/trajectory.h"

namespace Tavo {
namespace {

// In front of the value in the middle: given only where all three are.
struct InVector : std::optional<XVector3> {};

// In front of a value that is a table or so many numbers, and may be followed by `more`: a number is a drop-off unless
// it begins just these.
template<int components, int more = 0> struct FrontDropOff : std::optional<XDropOff> {};
using BeforeNumber = FrontDropOff<1>;
using BeforeVector = FrontDropOff<3>;
using BeforeQuaternion = FrontDropOff<4>;
using BeforeMatrix = FrontDropOff<16, 3>;  // and a vector

}  // namespace

template<> struct XScriptValue<InVector> {
    static XScriptType Type() { return {XScriptKind::Vector}; }
    static InVector Read(XScriptCall& call) {
        if (call.VectorsLeft() >= 3) return {XScriptValue<std::optional<XVector3>>::Read(call)};
        call.LeaveOut();
        return {};
    }
};

template<int components, int more> struct XScriptValue<FrontDropOff<components, more>> {
    static XScriptType Type() { return {XScriptKind::DropOff}; }
    static FrontDropOff<components, more> Read(XScriptCall& call) {
        int const numbers = call.NumbersInARow();
        bool const isNumber = numbers > 0 && numbers != components && numbers != components + more;
        if (!call.HasNext() || isNumber || call.IsNextDropOff())
            return {XScriptValue<std::optional<XDropOff>>::Read(call)};
        call.LeaveOut();
        return {};
    }
};

namespace {

using Path = XTrajectory;
using Keys = XTrajectory::IDs;       // key parameters
using Places = XTrajectory::Floats;  // attach points
using OutVector = std::optional<XVector3>;

// Scripts count from 1.
int placeOf(int index) { return index > 0 ? index - 1 : -1; }

void appendKey(Path& path, InVector const& in, XVector3 const& position, OutVector const& out) {
    if (in)
        path.AppendTranslationKeyframe(*in, position, out.value_or(XVector3()));
    else if (out)
        path.AppendTranslationKeyframe(position, *out);
    else
        path.AppendTranslationKeyframe(position);
}

void insertKey(Path& path, int key, InVector const& in, XVector3 const& position, OutVector const& out) {
    if (in)
        path.InsertTranslationKeyframe(key, *in, position, out.value_or(XVector3()));
    else if (out)
        path.InsertTranslationKeyframe(key, position, *out);
    else
        path.InsertTranslationKeyframe(key, position);
}

void attachKey(Path& path, float attach, InVector const& in, XQuaternion const& orientation, OutVector const& out) {
    if (in)
        path.AttachRotationKeyframe(attach, *in, orientation, out.value_or(XVector3()));
    else if (out)
        path.AttachRotationKeyframe(attach, orientation, *out);
    else
        path.AttachRotationKeyframe(attach, orientation);
}

// To scale by what is left out leaves everything as it is.
XVector3 factors(std::optional<XVector3> const& scale) { return scale.value_or(XVector3(1, 1, 1)); }

void slideTiming(Path& path, int handleCount, Qelutils::Vector<int> handles, XDropOff const& dropoff, float amount) {
    for (int& handle : handles) handle = placeOf(handle);
    path.SlideTimingOnTrajectory(handleCount, handles, dropoff, amount);
}

constexpr double duplicateEpsilon = 1e-5;

// Two numbers and up to one more, or five and up to one more.
bool fitSampled(XScriptCall& call, Path& path) {
    bool const isGlobal = call.ArgumentsLeft() <= 3;
    int const segments = call.TakeInteger();
    if (isGlobal) {
        int const window = call.TakeInteger();
        float const epsilon = call.HasNext() ? float(call.TakeNumber()) : float(duplicateEpsilon);
        return path.FitSampledCurveTranslation(segments, window, epsilon);
    }
    float const tolerance = float(call.TakeNumber());
    int const iterations = call.TakeInteger(), samples = call.TakeInteger(), steps = call.TakeInteger();
    return path.FitSampledCurveTranslation(segments, tolerance, iterations, samples, steps, float(call.TakeNumber()));
}

std::optional<float> closestParallel(Path const& path, XVector3 const& origin, XVector3 const& direction) {
    float fraction = 0;
    bool const isSeen = path.FindRayClosestPointOnCurveParallelProjection(origin, direction, fraction);
    return isSeen ? std::optional<float>(fraction) : std::nullopt;
}

std::optional<float> closestPerspective(Path const& path, XVector3 const& eye, XVector3 const& origin,
                                        XVector3 const& direction) {
    float fraction = 0;
    bool const isSeen = path.FindRayClosestPointOnCurvePerspectiveProjection(eye, origin, direction, fraction);
    return isSeen ? std::optional<float>(fraction) : std::nullopt;
}

std::vector<XScriptFunction> positionFunctions() {
    return {
        {"appendTranslationKeyframe",
         [](Path& path, InVector const& in, XVector3 const& position, OutVector const& out) {
             appendKey(path, in, position, out);
         },
         {"inHandle", "position", "outHandle"},
         "A key at the end: a position for a linear one; a position and an out handle for a spline, mirrored on the "
         "other side; all three for a broken spline. Points are in the path's own space, in metres."},
        {"editTranslationKeyframePosition",
         [](Path& path, Keys const& keys, BeforeVector const& dropoff, XVector3 const& delta) {
             dropoff ? path.EditTranslationKeyframePosition(keys, *dropoff, delta)
                     : path.EditTranslationKeyframePosition(keys, delta);
         },
         {"parameters", "dropoff", "delta"},
         "Moves keys, by a number or a list, by so much in metres; with a drop-off also those around them."},
        {"editTranslationKeyframePositionBallOfInfluence",
         &Path::EditTranslationKeyframePositionBallOfInfluence,
         {"centre", "radius", "dropoff", "delta"},
         "Moves the keys in a ball, and with a drop-off those around it, by so much in metres."},
        {"scaleTranslationKeyframePosition",
         [](Path& path, Keys const& keys, BeforeMatrix const& dropoff, XMatrix const& frame, OutVector const& scale) {
             dropoff ? path.ScaleTranslationKeyframePosition(keys, *dropoff, frame, factors(scale))
                     : path.ScaleTranslationKeyframePosition(keys, frame, factors(scale));
         },
         {"parameters", "dropoff", "frame", "scale"},
         "Scales keys, by a number or a list, along the axes of a frame about its origin."},
        {"scaleTranslationKeyframePositionBallOfInfluence",
         [](Path& path, XVector3 const& centre, float radius, XDropOff const& dropoff, XMatrix const& frame,
            OutVector const& scale) {
             path.ScaleTranslationKeyframePositionBallOfInfluence(centre, radius, dropoff, frame, factors(scale));
         },
         {"centre", "radius", "dropoff", "frame", "scale"},
         "Scales the keys in a ball, and those around it, along the axes of a frame about its origin."},
        {"rotateTranslationKeyframePosition",
         [](Path& path, Keys const& keys, BeforeMatrix const& dropoff, XMatrix const& frame, XVector3 const& rotation) {
             dropoff ? path.RotateTranslationKeyframePosition(keys, *dropoff, frame, rotation)
                     : path.RotateTranslationKeyframePosition(keys, frame, rotation);
         },
         {"parameters", "dropoff", "frame", "rotation"},
         "Turns keys, by a number or a list, in a frame by angles about x, y and z in radians."},
        {"rotateTranslationKeyframePositionBallOfInfluence",
         &Path::RotateTranslationKeyframePositionBallOfInfluence,
         {"centre", "radius", "dropoff", "frame", "rotation"},
         "Turns the keys in a ball, and those around it, in a frame by angles about x, y and z in radians."},
        {"bendTranslationKeyframePosition",
         &Path::BendTranslationKeyframePosition,
         {"parameters", "dropoff", "rotation", {"forward", true}},
         "Curls the path: each of these keys, and those around them, turns all that follow it by angles in radians; "
         "backwards those in front of it."},
    };
}

std::vector<XScriptFunction> translationKeyFunctions() {
    return {
        {"editTranslationKeyframeInputTangent",
         &Path::EditTranslationKeyframeInputTangent,
         {"parameter", "point"},
         "Moves a key's in handle to a point, and the out handle as the continuity says."},
        {"editTranslationKeyframeOutputTangent",
         &Path::EditTranslationKeyframeOutputTangent,
         {"parameter", "point"},
         "Moves a key's out handle to a point, and the in handle as the continuity says."},
        {"editTranslationKeyframeInterpolationType",
         [](Path& path, Keys const& keys, std::wstring const& type) {
             path.EditTranslationKeyframeInterpolationType(keys, type);
         },
         {"parameters", "type"},
         "Makes keys, by a number or a list, \"constant\", \"linear\", \"spline\" or \"external\"; any other word does "
         "nothing."},
        {"editTranslationKeyframeContinuityType",
         [](Path& path, Keys const& keys, std::wstring const& type) {
             path.EditTranslationKeyframeContinuityType(keys, type);
         },
         {"parameters", "type"},
         "Makes the handles of keys, by a number or a list, \"broken\", \"linear\" or \"linearCoupled\"; any other "
         "word "
         "does nothing."},
        {"insertTranslationKeyframe",
         [](Path& path, int key, InVector const& in, XVector3 const& position, OutVector const& out) {
             insertKey(path, key, in, position, out);
         },
         {"parameter", "inHandle", "position", "outHandle"},
         "A key in front of an existing one, with points as appendTranslationKeyframe takes them."},
        {"insertInBetweenTranslationKeyframe",
         &Path::InsertInBetweenTranslationKeyframe,
         {"first", "second"},
         "A key halfway between each two neighbours from one key to another; a spline keeps its shape."},
        {"deleteTranslationKeyframe",
         [](Path& path, Keys const& keys) { path.DeleteTranslationKeyframe(keys); },
         {"parameters"},
         "Deletes keys, by a number or a list; the others are numbered anew."},
    };
}

std::vector<XScriptFunction> rotationKeyFunctions() {
    return {
        {"attachRotationKeyframe",
         [](Path& path, float attach, InVector const& in, XQuaternion const& orientation, OutVector const& out) {
             attachKey(path, attach, in, orientation, out);
         },
         {"attach", "inTangent", "orientation", "outTangent"},
         "A rotation key at a place along the path: an orientation for a linear one; an orientation and a tangent for "
         "a spline; all three for a broken spline. An error is logged where there is one already."},
        {"editRotationKeyframeOrientation",
         [](Path& path, Places const& attach, BeforeQuaternion const& dropoff, XQuaternion const& rotation) {
             dropoff ? path.EditRotationKeyframeOrientation(attach, *dropoff, rotation)
                     : path.EditRotationKeyframeOrientation(attach, rotation);
         },
         {"attach", "dropoff", "rotation"},
         "Turns rotation keys, by a place or a list of places; with a drop-off also those around them."},
        {"editRotationKeyframeOrientationBallOfInfluence",
         &Path::EditRotationKeyframeOrientationBallOfInfluence,
         {"centre", "radius", "dropoff", "rotation"},
         "Turns the rotation keys in a ball, and those around it."},
        {"editRotationKeyframeAttachPoint",
         [](Path& path, Places const& attach, BeforeNumber const& dropoff, float delta) {
             dropoff ? path.EditRotationKeyframeAttachPoint(attach, *dropoff, delta)
                     : path.EditRotationKeyframeAttachPoint(attach, delta);
         },
         {"attach", "dropoff", "delta"},
         "Slides rotation keys, by a place or a list of places, along the path by so many translation keys."},
        {"editRotationKeyframeAttachPointBallOfInfluence",
         &Path::EditRotationKeyframeAttachPointBallOfInfluence,
         {"centre", "radius", "dropoff", "delta"},
         "Slides the rotation keys in a ball, and those around it, along the path by so many translation keys."},
        {"editRotationKeyframeInTangent",
         &Path::EditRotationKeyframeInTangent,
         {"attach", "tangent"},
         "Gives a rotation key another in tangent, and changes the out tangent as the continuity says."},
        {"editRotationKeyframeOutTangent",
         &Path::EditRotationKeyframeOutTangent,
         {"attach", "tangent"},
         "Gives a rotation key another out tangent, and changes the in tangent as the continuity says."},
        {"editRotationKeyframeInterpolationType",
         [](Path& path, Places const& attach, std::wstring const& type) {
             path.EditRotationKeyframeInterpolationType(attach, type);
         },
         {"attach", "type"},
         "Makes rotation keys, by a place or a list of places, \"constant\", \"linear\", \"spline\" or \"external\"; "
         "any "
         "other word does nothing."},
        {"editRotationKeyframeContinuityType",
         [](Path& path, Places const& attach, std::wstring const& type) {
             path.EditRotationKeyframeContinuityType(attach, type);
         },
         {"attach", "type"},
         "Makes the tangents of rotation keys, by a place or a list of places, \"broken\", \"linear\" or "
         "\"linearCoupled\"; any other word does nothing."},
        {"deleteRotationKeyframe",
         [](Path& path, Places const& attach) { path.DeleteRotationKeyframe(attach); },
         {"attach"},
         "Deletes rotation keys, by a place or a list of places."},
    };
}

std::vector<XScriptFunction> otherFunctions() {
    return {
        {"useSafeGuards",
         [](Path& path, bool use) { path.UseSafeGuards(use); },
         {{"use", true}},
         "Whether the safe guards hold keys."},
        {"addSafeGuard",
         &Path::AddSafeGuard,
         {"centre", "radius", "dropoff"},
         "A ball, in metres, in which edits with weights move no key, and ever less around it."},
        {"editSafeGuard",
         [](Path& path, int index, XVector3 const& centre, float radius, XDropOff const& dropoff) {
             path.EditSafeGuard(placeOf(index), centre, radius, dropoff);
         },
         {"index", "centre", "radius", "dropoff"},
         "Changes a safe guard; the first has index 1."},
        {"deleteSafeGuard",
         [](Path& path, int index) { path.DeleteSafeGuard(placeOf(index)); },
         {"index"},
         "Deletes a safe guard; the first has index 1."},
        {"slideTimingOnTrajectory",
         [](Path& path, int handleCount, Qelutils::Vector<int> const& handles, XDropOff const& dropoff, float amount) {
             slideTiming(path, handleCount, handles, dropoff, amount);
         },
         {"handleCount", "handles", "dropoff", "amount"},
         "Spreads so many handles evenly in time, and slides those of a list, the first being 1, along the path by a "
         "fraction of its length, with the timing around them."},
        {"fitSampledCurveTranslation",
         [](XScriptCall& call, Path& path) { return fitSampled(call, path); },
         {"resampleOrSegments",
          "toleranceOrWindow",
          "maxRefinementIterationsOrDuplicateEpsilon",
          "maxSamples",
          "refinementSteps",
          {"duplicateEpsilon", duplicateEpsilon}},
         "Turns a sampled path into few keys with handles; true if it could. With four numbers and more: how many even "
         "segments to take first, the tolerance in metres, refinement iterations, samples a segment, refinement steps "
         "and the distance in metres of keys that are one. With up to three: how many segments, the window that "
         "smooths their ends, and that distance."},
        {"findRayClosestPointOnCurveParallelProjection",
         [](Path const& path, XVector3 const& origin, XVector3 const& direction) {
             return closestParallel(path, origin, direction);
         },
         {"origin", "direction"},
         "The fraction of the path's length that lies nearest to a ray, seen along it; nil when none is seen."},
        {"findRayClosestPointOnCurvePerspectiveProjection",
         [](Path const& path, XVector3 const& eye, XVector3 const& origin, XVector3 const& direction) {
             return closestPerspective(path, eye, origin, direction);
         },
         {"eye", "origin", "direction"},
         "The fraction of the path's length that looks nearest to a ray from an eye; nil when none is seen."},
    };
}

std::vector<XScriptFunction> allFunctions() {
    std::vector<XScriptFunction> all;
    for (auto const& part : {positionFunctions(), translationKeyFunctions(), rotationKeyFunctions(), otherFunctions()})
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

}  // namespace

XScriptSet const& TrajectoryFunctions() {
    static XScriptSet const set{
        "Trajectory",
        "A path that an object follows. Translation keys are named by their key parameter: 0 is the first. Rotation "
        "keys are named by the place where they are attached, a key parameter that may lie between two keys. A "
        "drop-off is its range in metres, or a table with some of range, mode (\"CurveDropoff\", \"RadialDropoff\"), "
        "pinch and bubble.",
        allFunctions()};
    return set;
}

}  // namespace Tavo
