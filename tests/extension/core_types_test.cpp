#include "tests/app/fixture.h"

namespace Tavo {
namespace {

using CoreTypes = StartedApplication;

TEST_F(CoreTypes, EverySceneKnowsAllOfThem) {
    application().AddScene();
    for (wchar_t const* type :
         {L"SceneObject",    L"SceneSettings",    L"Animation", L"AnimationLayers", L"Keyframe",     L"RenderObject",
          L"Transform",      L"BaseShape",        L"Grid",      L"Camera",          L"Light",        L"Joint",
          L"Null",           L"Trajectory",       L"Selection", L"ObjectGroup",     L"DisplayGroup", L"CollisionGroup",
          L"SelectionGroup", L"ViewportSettings", L"Tool",      L"SelectTool",      L"MoveTool",     L"RotateTool",
          L"ScaleTool",      L"TimingTool"})
        for (int i : {0, 1}) {
            XObjectDef* const definition = application().GetScene(i).ObjectDefinition(type);
            ASSERT_NE(definition, nullptr) << Qelutils::toUtf8(type);
            EXPECT_EQ(definition->ObjectType(), type);
        }
}

TEST_F(CoreTypes, TheSettingsKnowTheObjectThatTheyHold) {
    EXPECT_NE(application().Settings().ObjectDefinition(L"SceneSettings"), nullptr);
    EXPECT_EQ(application().Settings().ObjectDefinition(L"Joint"), nullptr);
}

TEST_F(CoreTypes, ObjectsWithANodeClassCanBeMadeAndKnowTheirType) {
    for (wchar_t const* type :
         {L"Animation", L"AnimationLayers", L"Transform", L"Grid", L"Camera", L"Light", L"Joint", L"Null",
          L"Trajectory", L"Selection", L"ObjectGroup", L"DisplayGroup", L"CollisionGroup", L"SelectionGroup",
          L"SceneSettings", L"ViewportSettings", L"MoveTool"}) {
        XObject const object = scene().CreateObject(type);
        ASSERT_TRUE(object.IsValid()) << Qelutils::toUtf8(type);
        EXPECT_EQ(object.ObjectType(), type);
    }
}

}  // namespace
}  // namespace Tavo
