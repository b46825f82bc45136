#include "tavo/animation/keyframe.h"
#include "tavo/extension/lua/script_sets.h"

namespace Tavo {
namespace {

std::optional<int> indexOf(XKeyframe const& key) {
    int const index = key.IsValid() ? key.Index() : -1;
    return index < 0 ? std::nullopt : std::optional<int>(index + 1);
}

// What is not there would have the labels of a zero.
std::wstring continuityOf(XKeyframe const& key) { return key.IsValid() ? key.Continuity() : std::wstring(); }
std::wstring interpolationOf(XKeyframe const& key) { return key.IsValid() ? key.Interpolation() : std::wstring(); }

// A number without a label is passed over, as a word that is none.
template<std::size_t count> bool isOneOf(XEnumerationWord const (&)[count], int number) {
    return number >= 0 && std::size_t(number) < count;
}

void setContinuity(XKeyframe& key, XScriptKey const& type) {
    if (!type.isNumber)
        key.SetContinuity(type.text);
    else if (isOneOf(ContinuityWords, type.number))
        key.SetContinuity(type.number);
}

void setInterpolation(XKeyframe& key, XScriptKey const& type) {
    if (!type.isNumber)
        key.SetInterpolation(type.text);
    else if (isOneOf(InterpolationWords, type.number))
        key.SetInterpolation(type.number);
}

}  // namespace

XScriptSet const& KeyframeFunctions() {
    static XScriptSet const set{
        "Keyframe",
        "A key of a curve. Numbers along x are in seconds, those along y in the units of what the curve drives. "
        "Handles are given from the key. A key that is gone has the numbers 0 and empty texts.",
        {
            {"index",
             [](XKeyframe const& key) { return indexOf(key); },
             {},
             "Its place in the curve's arrays, from 1: the first with its x; nil for a key that is gone."},
            {"x", &XKeyframe::InputValue, {}, "Where it is, in seconds."},
            {"y", &XKeyframe::OutputValue, {}, "Its value; 0 for a rotation."},
            {"continuity",
             [](XKeyframe const& key) { return continuityOf(key); },
             {},
             "How its handles go together: \"Broken\", \"Coupled\" or \"Linear Coupled\"."},
            {"interpolation",
             [](XKeyframe const& key) { return interpolationOf(key); },
             {},
             "How the curve goes on behind it: \"Constant\", \"Linear\", \"Spline\" or \"External\"."},
            {"inTangentX", &XKeyframe::InTangentX, {}, "The handle in front of it, along x."},
            {"inTangentY", &XKeyframe::InTangentY, {}, "The handle in front of it, along y."},
            {"outTangentX", &XKeyframe::OutTangentX, {}, "The handle behind it, along x."},
            {"outTangentY", &XKeyframe::OutTangentY, {}, "The handle behind it, along y."},
            {"setX", &XKeyframe::SetInputValue, {"value"}, "Moves it to another time, in seconds."},
            {"setY", &XKeyframe::SetOutputValue, {"value"}, "Gives it another value."},
            {"setContinuity",
             [](XKeyframe& key, XScriptKey const& type) { setContinuity(key, type); },
             {"type"},
             "Sets the continuity: \"broken\", \"linear\", \"linearCoupled\", their labels or their numbers from 0; "
             "any other does nothing."},
            {"setInterpolation",
             [](XKeyframe& key, XScriptKey const& type) { setInterpolation(key, type); },
             {"type"},
             "Sets the interpolation: \"constant\", \"linear\", \"spline\", \"external\", their labels or their "
             "numbers from 0; any other does nothing."},
            {"setInTangentX", &XKeyframe::SetInTangentX, {"value"}, "Moves the handle in front of it along x."},
            {"setInTangentY", &XKeyframe::SetInTangentY, {"value"}, "Moves the handle in front of it along y."},
            {"setOutTangentX", &XKeyframe::SetOutTangentX, {"value"}, "Moves the handle behind it along x."},
            {"setOutTangentY", &XKeyframe::SetOutTangentY, {"value"}, "Moves the handle behind it along y."},
            {"delete", &XKeyframe::Delete, {}, "Deletes it. Keys in later places of the curve move up by one."},
        }};
    return set;
}

}  // namespace Tavo
