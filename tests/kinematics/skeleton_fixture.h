// A skeleton in a new scene: hips > (spine > chest, leg), turned and away from the origin; and what holds of the graph.
#pragma once
#include "tests/kinematics/transform_fixture.h"
#include <algorithm>

namespace Tavo {

struct SkeletonTest : TransformTest {
    SkeletonTest() {
        hips = make(L"hips", scene().RootObject(), {0.5F, 1, -0.25F});
        spine = make(L"spine", hips, {0, 0.5F, 0.125F});
        chest = make(L"chest", spine, {0.25F, 0.25F, 0});
        leg = make(L"leg", hips, {0.25F, -0.5F, 0});
        hips.SetRotationEulerAngles(0.3F, -0.4F, 0.5F);
        spine.SetRotationEulerAngles(-0.2F, 0.1F, 0.7F);
    }

    static XJoint make(std::wstring const& name, XObject const& above, XVector3 const& at) {
        XJoint made(scene().CreateObject(XJoint::TypeID, above));
        made.SetName(name);
        made.SetTranslation(at);
        return made;
    }
    static XMatrix world(XTransform const& t) { return t.WorldMatrix().Matrix(); }
    static int objectCount() {
        std::vector<sg::Node*> nodes;
        scene().SceneGraph()->Nodes(nodes);
        return int(std::count_if(nodes.begin(), nodes.end(), [](sg::Node* node) { return !node->isNotAnObject(); }));
    }
    // What the edit changed, as one undo step.
    template<class Edit> static void inBlock(Edit const& edit) {
        static std::wstring const label = L"Edit";
        scene().CommitTransient();
        XChangeBlock const block(scene(), label);
        edit();
    }
    // `target` has three attributes in a row from `first` on, fed by those of `source`.
    static testing::AssertionResult feeds(XObject const& source, int sourceFirst, XObject const& target, int first) {
        for (int axis = 0; axis < 3; ++axis)
            if (target.Attribute(first + axis).InputAttribute() != source.Attribute(sourceFirst + axis))
                return testing::AssertionFailure() << Qelutils::toUtf8(target.Attribute(first + axis).Path());
        return testing::AssertionSuccess();
    }
    static bool isFree(XObject const& target, int first) {
        for (int axis = 0; axis < 3; ++axis)
            if (target.Attribute(first + axis).HasInput()) return false;
        return true;
    }

    static constexpr int Translation = 21, Rotation = 24, PreTranslation = 36, PreRotation = 39, PostRotation = 42;
    XJoint hips, spine, chest, leg;
};

}  // namespace Tavo
