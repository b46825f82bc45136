// A float curve and a quaternion curve in a new scene, and short ways to look at them.
#pragma once
#include "tests/app/fixture.h"

namespace Tavo {

struct CurveTest : StartedApplication {
    CurveTest() {
        curve = scene().CreateObject(XAnimation::TypeID);
        rotation = scene().CreateObject(XAnimation::TypeID);
        rotation.OutputMode().SetEnumeration(XAnimation::RotationOutputMode);
    }
    void keys(std::vector<float> const& inputs) {
        for (float x : inputs) curve.SetKeyframe(x, 10 * x);
    }
    static std::vector<float> inputs(XAnimation const& c) {
        std::vector<float> out;
        c.KeyframeInputValues().Floats(out);
        return out;
    }
    std::vector<float> inputs() const { return inputs(curve); }
    std::vector<float> outputs() const {
        std::vector<float> out;
        curve.KeyframeOutputValues().Floats(out);
        return out;
    }
    // The sizes of the eight arrays of float mode, then that of the quaternions.
    static std::vector<int> sizes(XAnimation const& c) {
        std::vector<int> out;
        for (int row : {26, 27, 33, 34, 29, 30, 31, 32, 28}) out.push_back(c.Attribute(row).ArraySize());
        return out;
    }
    static std::vector<int> sizes(int floatKeys, int quaternionKeys) {
        std::vector<int> out(8, floatKeys);
        out.push_back(quaternionKeys);
        return out;
    }

    XAnimation curve, rotation;
};

using testing::ElementsAre;
using testing::IsEmpty;

}  // namespace Tavo
