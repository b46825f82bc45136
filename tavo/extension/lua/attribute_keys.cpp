#include "tavo/extension/lua/attribute_keys.h"
#include "qel/utils/text.h"
#include "tavo/animation/animation.h"
#include "tavo/extension/lua/attribute_values.h"
#include "tavo/extension/lua/script_tables.h"
#include <cmath>
#include <lua.hpp>
#include <span>

namespace Tavo {
namespace {

using Words = std::span<XEnumerationWord const>;

// ---- the curve ----

// Each function looks for it once.
XAnimation editableCurve(XAttribute const& attribute) {
    return attribute.IsEditable() ? attribute.Animation() : XAnimation();
}

XAnimation curveForKeys(XAttribute attribute) {
    XAnimation const curve = editableCurve(attribute);
    return curve.IsValid() || !attribute.IsAnimatable() ? curve : attribute.CreateAnimation();
}

template<class Edit> void edit(XAttribute const& attribute, Edit const& action) {
    if (XAnimation curve = editableCurve(attribute); curve.IsValid()) action(curve);
}

// ---- arguments ----

bool isGiven(XScriptKey const& key) { return key.isNumber || !key.text.empty(); }

// The value that a number, a word for scripts or a word for people means.
int valueOf(XScriptCall const& call, Words words, XScriptKey const& key, int otherwise) {
    if (!isGiven(key)) return otherwise;
    if (key.isNumber && key.number >= 0 && std::size_t(key.number) < words.size()) return key.number;
    std::string all;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (!key.isNumber && (words[i].key == key.text || words[i].label == key.text)) return int(i);
        all += (i ? ", " : "") + Qelutils::toUtf8(words[i].key);
    }
    call.Fail((key.isNumber ? std::to_string(key.number) : "\"" + Qelutils::toUtf8(key.text) + "\"") + " is none of " +
              all + ", nor a number from 0 to " + std::to_string(words.size() - 1));
}

// So that no key gets a place or a value that is no number.
void requireFinite(XScriptCall const& call, std::initializer_list<float> values) {
    for (float value : values)
        if (!std::isfinite(value)) call.Fail("its numbers must be finite");
}

void requireAtMost(XScriptCall const& call, char const* name, int value, int most) {
    if (value > most) call.Fail(name + (" must be at most " + std::to_string(most)));
}

// ---- making keys ----

// What the curve gives back for a key that it made is not valid yet; the new one is the last.
XKeyframe madeKey(XAnimation const& curve, int countBefore, XKeyframe const& key) {
    bool const isNew = !key.IsValid() && curve.KeyframeCount() > countBefore;
    return isNew ? curve.KeyframeByAttributeIndex(countBefore) : key;
}

XKeyframe createKey(XScriptCall& call, XAttribute const& attribute, float x, float y, XScriptKey const& interpolation,
                    XScriptKey const& continuity) {
    requireFinite(call, {x, y});
    int const kind = valueOf(call, InterpolationWords, interpolation, 0);
    int const handles = valueOf(call, ContinuityWords, continuity, 0);
    XAnimation curve = curveForKeys(attribute);
    if (!curve.IsValid()) return {};
    int const count = curve.KeyframeCount();
    return madeKey(curve, count,
                   isGiven(continuity)      ? curve.CreateKeyframe(x, y, kind, handles)
                   : isGiven(interpolation) ? curve.CreateKeyframe(x, y, kind)
                                            : curve.CreateKeyframe(x, y));
}

XKeyframe keyNow(XAttribute attribute) {
    XAnimation const before = attribute.Animation();
    int const count = before.IsValid() ? before.KeyframeCount() : 0;
    XKeyframe const key = attribute.SetKeyframe();
    XAnimation const curve = attribute.Animation();
    return curve.IsValid() ? madeKey(curve, count, key) : key;
}

XKeyframe setKey(XScriptCall& call, XAttribute const& attribute, float x, float y, XScriptKey const& interpolation,
                 XScriptKey const& continuity) {
    if (!isArgumentGiven(call, 1) && !isArgumentGiven(call, 2)) return keyNow(attribute);
    requireFinite(call, {x, y});
    int const kind = valueOf(call, InterpolationWords, interpolation, LinearInterpolation);
    int const handles = valueOf(call, ContinuityWords, continuity, CoupledContinuity);
    XAnimation curve = curveForKeys(attribute);
    if (!curve.IsValid()) return {};
    int const count = curve.KeyframeCount();
    return madeKey(curve, count, curve.SetKeyframe(x, y, kind, handles));
}

XKeyframe editKeyAtIndex(XScriptCall& call, XAttribute const& attribute, int index, float x, float y,
                         XScriptKey const& interpolation, XScriptKey const& continuity) {
    requireFinite(call, {x, y});
    int const kind = valueOf(call, InterpolationWords, interpolation, LinearInterpolation);
    int const handles = valueOf(call, ContinuityWords, continuity, CoupledContinuity);
    XAnimation curve = editableCurve(attribute);
    return curve.IsValid() ? curve.EditKeyframeByAttributeIndex(fromScriptIndex(index), x, y, kind, handles)
                           : XKeyframe();
}

XKeyframe keyAtIndex(XAttribute const& attribute, int index) {
    XAnimation const curve = attribute.Animation();
    return curve.IsValid() ? curve.KeyframeByAttributeIndex(fromScriptIndex(index)) : XKeyframe();
}

// ---- the curve as a whole ----

std::wstring extrapolation(XAttribute const& attribute, XAttribute (XAnimation::*side)() const) {
    XAnimation const curve = attribute.Animation();
    return curve.IsValid() ? (curve.*side)().EnumerationString() : std::wstring();
}

void setExtrapolation(XScriptCall& call, XAttribute const& attribute, XScriptKey const& mode,
                      XAttribute (XAnimation::*side)() const) {
    int const value = valueOf(call, ExtrapolationWords, mode, XAnimation::DefaultExtrapolationType);
    edit(attribute, [&](XAnimation& curve) { (curve.*side)().SetEnumeration(value); });
}

bool fitSampledCurve(XScriptCall& call, XAttribute const& attribute, int resample, float tolerance, int attempts,
                     int mostSamples, int steps, float duplicateEpsilon) {
    requireFinite(call, {tolerance, duplicateEpsilon});
    requireAtMost(call, "resample", resample, 1 << 20);
    requireAtMost(call, "refinementSteps", steps, 1000);
    XAnimation curve = editableCurve(attribute);
    return curve.IsValid() &&
           curve.FitSampledCurve(resample, tolerance, attempts, mostSamples, steps, duplicateEpsilon);
}

bool uniformCurveSampling(XScriptCall& call, XAttribute const& attribute, int segments) {
    requireAtMost(call, "segments", segments, 1 << 20);
    XAnimation curve = editableCurve(attribute);
    return curve.IsValid() && curve.UniformSampling(segments);
}

void pushPoint(lua_State* state, XAnimation::Point const& point) {
    lua_createtable(state, 0, 2);
    lua_pushnumber(state, double(point.x));
    lua_setfield(state, -2, "x");
    lua_pushnumber(state, double(point.y));
    lua_setfield(state, -2, "y");
}

XScriptPushed curvePoints(XScriptCall& call, XAttribute const& attribute, float from, float to) {
    XAnimation const curve = attribute.Animation();
    Qelutils::Vector<XAnimation::Point> points;
    if (curve.IsValid()) {
        if (!isArgumentGiven(call, 1)) from = curve.KeyframeMinX().Float();
        if (!isArgumentGiven(call, 2)) to = curve.KeyframeMaxX().Float();
        curve.CurvePoints(points, from, to);
    }
    lua_createtable(call.State(), int(points.size()), 0);
    for (std::size_t i = 0; i < points.size(); ++i) {
        pushPoint(call.State(), points[i]);
        lua_rawseti(call.State(), -2, lua_Integer(i + 1));
    }
    return {1};
}

// ---- the rows ----

using Attribute = XAttribute const&;
using Key = XScriptKey const&;

std::vector<XScriptFunction> extrapolationRows() {
    return {
        {"preExtrapolation",
         [](Attribute a) { return extrapolation(a, &XAnimation::PreExtrapolation); },
         {},
         "How the curve goes on before its first key: constant, linear, cyclic, reverseCyclic or offsetCyclic; empty "
         "without a curve."},
        {"postExtrapolation",
         [](Attribute a) { return extrapolation(a, &XAnimation::PostExtrapolation); },
         {},
         "How the curve goes on after its last key."},
        {"setPostExtrapolation",
         [](XScriptCall& call, Attribute a, Key mode) {
             setExtrapolation(call, a, mode, &XAnimation::PostExtrapolation);
         },
         {"mode"},
         "How the curve is to go on after its last key: constant, linear, cyclic, reverseCyclic, offsetCyclic, or "
         "their numbers from 0."},
        {"setPreExtrapolation",
         [](XScriptCall& call, Attribute a, Key mode) {
             setExtrapolation(call, a, mode, &XAnimation::PreExtrapolation);
         },
         {"mode"},
         "How the curve is to go on before its first key."},
    };
}

std::vector<XScriptFunction> keyRows() {
    return {
        {"keyCount",
         [](Attribute a) {
             XAnimation const curve = a.Animation();
             return curve.IsValid() ? curve.KeyframeCount() : 0;
         },
         {},
         "The number of keys of its curve."},
        {"clearKeys",
         [](Attribute a) { edit(a, [](XAnimation& curve) { curve.ClearAnimation(); }); },
         {},
         "Deletes all keys; the curve stays, and gives 0."},
        {"createKey",
         &createKey,
         {"x", "y", "interpolation", "continuity"},
         "A new key at time x, in seconds, and with the value y if the continuity is told; otherwise its value is x: "
         "see setKey. A key that is there already is given back as it is. Interpolations are constant, linear, spline "
         "and external, continuities broken, linear and linearCoupled, or their numbers from 0, which is what is taken "
         "if none is told."},
        {"setKey",
         &setKey,
         {"x", "y", "interpolation", "continuity"},
         "Gives the key at time x, in seconds, the value y, and makes it if it is not there. Without arguments it is "
         "the "
         "current value at the current time. Unless told otherwise interpolation and continuity are linear."},
        {"editKeyAtIndex",
         &editKeyAtIndex,
         {"index", "x", "y", "interpolation", "continuity"},
         "Moves the key at that index, from 1, to time x and value y. Unless told otherwise interpolation and "
         "continuity become linear."},
        {"fitSampledCurve",
         &fitSampledCurve,
         {{"resample", 0},
          {"tolerance", 0.001},
          {"maxRefinementIterations", 20},
          {"maxSamples", 200},
          {"refinementSteps", 2},
          {"duplicateEpsilon", 1e-5}},
         "Replaces the keys of a sampled curve by few with handles that stay within the tolerance, after taking so "
         "many "
         "even samples first if that is 2 or more; whether it did."},
        {"uniformCurveSampling",
         &uniformCurveSampling,
         {"segments"},
         "Replaces the keys by samples at even distances, one more than the segments, of which there are 2 at least; "
         "whether it did."},
    };
}

std::vector<XScriptFunction> deletionRows() {
    return {
        {"deleteKey",
         [](Attribute a, float x) { edit(a, [=](XAnimation& curve) { curve.DeleteKeyframe(x); }); },
         {"x"},
         "Deletes the key at exactly that time."},
        {"deleteKeyAtIndex",
         [](Attribute a, int index) {
             edit(a, [=](XAnimation& curve) { curve.DeleteKeyframeByAttributeIndex(fromScriptIndex(index)); });
         },
         {"index"},
         "Deletes the key at that index, from 1; those behind it move up."},
        {"deleteKeys",
         [](Attribute a, float from, float to) {
             edit(a, [=](XAnimation& curve) { curve.DeleteKeyframes(from, to); });
         },
         {"from", "to"},
         "Deletes the keys that lie neither before the one time nor before the other: all from the later one on."},
        {"deleteKeysAtIndex",
         [](Attribute a, int from, int to) {
             edit(a, [=](XAnimation& curve) {
                 curve.DeleteKeyframesByAttributeIndex(fromScriptIndex(from), fromScriptIndex(to));
             });
         },
         {"from", "to"},
         "Deletes the keys from the one index to the other, both included, from 1."},
        {"keyAtIndex", &keyAtIndex, {"index"}, "The key at that index, from 1; nil if there is none."},
    };
}

std::vector<XScriptFunction> rangeRows() {
    return {
        {"moveKeys",
         [](XScriptCall& call, Attribute a, float from, float to, float dx, float dy) {
             requireFinite(call, {dx, dy});
             edit(a, [=](XAnimation& curve) { curve.MoveKeyframes(from, to, dx, dy); });
         },
         {"from", "to", "dx", "dy"},
         "Moves the keys from the one time to the other, both included, by dx seconds and dy."},
        {"moveKeysAtIndex",
         [](XScriptCall& call, Attribute a, int from, int to, float dx, float dy) {
             requireFinite(call, {dx, dy});
             edit(a, [=](XAnimation& curve) {
                 curve.MoveKeyframesByAttributeIndex(fromScriptIndex(from), fromScriptIndex(to), dx, dy);
             });
         },
         {"from", "to", "dx", "dy"},
         "Moves the keys from the one index to the other, from 1."},
        {"scaleKeys",
         [](XScriptCall& call, Attribute a, float from, float to, float sx, float sy, float px, float py) {
             requireFinite(call, {sx, sy, px, py});
             edit(a, [=](XAnimation& curve) { curve.ScaleKeyframes(from, to, sx, sy, px, py); });
         },
         {"from", "to", {"sx", 1}, {"sy", 1}, "px", "py"},
         "Scales the keys from the one time to the other, both included: times by sx about px, values by sy about py."},
        {"scaleKeysAtIndex",
         [](XScriptCall& call, Attribute a, int from, int to, float sx, float sy, float px, float py) {
             requireFinite(call, {sx, sy, px, py});
             edit(a, [=](XAnimation& curve) {
                 curve.ScaleKeyframesByAttributeIndex(fromScriptIndex(from), fromScriptIndex(to), sx, sy, px, py);
             });
         },
         {"from", "to", {"sx", 1}, {"sy", 1}, "px", "py"},
         "Scales the keys from the one index to the other, from 1."},
        {"snapKeys",
         [](Attribute a, float from, float to) { edit(a, [=](XAnimation& curve) { curve.SnapKeyframes(from, to); }); },
         {"from", "to"},
         "Moves the keys from the one time to the other to the nearest whole second each."},
        {"snapKeysAtIndex",
         [](Attribute a, int from, int to) {
             edit(a, [=](XAnimation& curve) {
                 curve.SnapKeyframesByAttributeIndex(fromScriptIndex(from), fromScriptIndex(to));
             });
         },
         {"from", "to"},
         "Moves the keys from the one index to the other, from 1, to the nearest whole second each."},
        {"curvePoints",
         &curvePoints,
         {"from", "to"},
         "The curve between two times for drawing: a list of points with the fields x, in seconds, and y. Without a "
         "time it begins at the first or ends at the last key."},
    };
}

}  // namespace

std::vector<XScriptFunction> attributeKeyFunctions() {
    std::vector<XScriptFunction> rows;
    for (auto const& part : {extrapolationRows(), keyRows(), deletionRows(), rangeRows()})
        rows.insert(rows.end(), part.begin(), part.end());
    return rows;
}

}  // namespace Tavo
