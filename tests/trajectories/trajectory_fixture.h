// A trajectory in a new scene, short ways to look at its keys through the public interface, and a timing curve for it.
#pragma once
#include "tests/app/fixture.h"
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

namespace Tavo {

struct TrajectoryTest : StartedApplication {
    using Floats = Qelutils::Vector<float>;
    using IDs = Qelutils::Vector<int>;

    TrajectoryTest() { path = scene().CreateObject(XTrajectory::TypeID); }

    // ---- keys ----
    void append(std::vector<XVector3> const& points) {
        for (XVector3 const& p : points) path.AppendTranslationKeyframe(p);
    }
    void sample() { path.IsTranslationCurveSampled().SetBoolean(true); }
    int count() const { return path.TranslationKeyframesArray().AttributeCount(); }
    XAttribute slot(int i) const { return path.TranslationKeyframesArray().Attribute(i); }
    XAttribute key(int parameter) const { return slot(path.ParameterIndex(float(parameter))); }
    XVector3 in(int parameter) const { return key(parameter).Attribute(1).Vector(); }
    XVector3 at(int parameter) const { return key(parameter).Attribute(2).Vector(); }
    XVector3 out(int parameter) const { return key(parameter).Attribute(3).Vector(); }
    int interpolation(int parameter) const { return key(parameter).Attribute(4).Enumeration(); }
    int continuity(int parameter) const { return key(parameter).Attribute(5).Enumeration(); }
    std::vector<int> numbers() const {  // by slot
        std::vector<int> found;
        for (int i = 0; i < count(); ++i) found.push_back(slot(i).Attribute(0).Integer());
        return found;
    }
    std::vector<float> xs() const {  // by parameter
        std::vector<float> found;
        for (int i = 0; i < count(); ++i) found.push_back(at(i).X());
        return found;
    }

    // ---- rotation keys, by slot ----
    int rotationCount() const { return path.RotationKeyframesArray().AttributeCount(); }
    XAttribute rotation(int i) const { return path.RotationKeyframesArray().Attribute(i); }
    float attach(int i) const { return rotation(i).Attribute(0).Float(); }
    XQuaternion orientation(int i) const {
        XQuaternion found;
        XTrajectory::QuaternionFromAttribute(rotation(i), 2, found);
        return found;
    }

    // ---- timing ----
    XAnimation connectTiming(std::vector<float> const& times, std::vector<float> const& fractions) {
        curve = scene().CreateObject(XAnimation::TypeID);
        for (std::size_t i = 0; i < times.size(); ++i) curve.SetKeyframe(times[i], fractions[i]);
        curve.IsCurveSampled().SetBoolean(true);
        path.InputValue().ConnectInputTo(curve.OutputValue());
        if (!times.empty()) {
            path.TimingCurveFirstKeyTime().SetFloat(times.front());
            path.TimingCurveLastKeyTime().SetFloat(times.back());
        }
        return curve;
    }
    Floats times() const {
        Floats found;
        curve.KeyframeInputValues().Floats(found);
        return found;
    }
    Floats fractions() const {
        Floats found;
        curve.KeyframeOutputValues().Floats(found);
        return found;
    }

    // ---- all that an edit may change, bit by bit ----
    using State = std::vector<std::uint32_t>;
    static void add(State& state, XAttribute const& a) {
        auto const put = [&](float value) {
            std::uint32_t bits;
            std::memcpy(&bits, &value, sizeof bits);
            state.push_back(bits);
        };
        if (a.IsInt()) state.push_back(std::uint32_t(a.Integer()));
        if (a.IsEnum()) state.push_back(std::uint32_t(a.Enumeration()));
        if (a.IsBool()) state.push_back(a.Boolean());
        if (a.IsFloat()) put(a.Float());
        if (a.IsVector()) put(a.Vector().X()), put(a.Vector().Y()), put(a.Vector().Z());
        if (a.IsCompositeAttribute() || a.IsAttributeArray())
            for (int i = 0; i < a.AttributeCount(); ++i) add(state, a.Attribute(i));
        Floats values;
        if (a.IsFloatArray()) a.Floats(values);
        for (float value : values) put(value);
    }
    static State stateOf(XAttribute const& a) {
        State found;
        add(found, a);
        return found;
    }
    State state() const {
        State found;
        for (int number : {56, 58, 60, 62, 63, 66}) add(found, path.Attribute(number));
        if (curve.IsValid())
            for (XAttribute const& array : {curve.KeyframeInputValues(), curve.KeyframeOutputValues()})
                add(found, array);
        return found;
    }

    // ---- random ----
    float number(float from, float to) { return std::uniform_real_distribution<float>(from, to)(random); }
    XVector3 point(float limit) { return {number(-limit, limit), number(-limit, limit), number(-limit, limit)}; }

    static constexpr unsigned seed = 20411;
    std::mt19937 random{seed};
    XTrajectory path;
    XAnimation curve;
};

inline bool isAt(XVector3 const& p, float x, float y, float z, float tolerance = 1e-5F) {
    return std::abs(p.X() - x) <= tolerance && std::abs(p.Y() - y) <= tolerance && std::abs(p.Z() - z) <= tolerance;
}
#define EXPECT_POINT(p, x, y, z) EXPECT_TRUE(isAt(p, x, y, z)) << (p).X() << " " << (p).Y() << " " << (p).Z()

using testing::ElementsAre;
using testing::IsEmpty;

}  // namespace Tavo
