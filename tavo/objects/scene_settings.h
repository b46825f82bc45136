// XSceneSettings: the object that holds a document's time line, frame rate, units, simulation parameters and script
// hooks. Time is in seconds; frames are a view of it.
#pragma once
#include "qel/sg/node_types.h"
#include "tavo/objects/scene_object.h"
#include "tavo/objects/units.h"

namespace Tavo {

class XSceneSettings : public XTyped<XSceneSettings, XSceneObject, sg::SceneSettingsNode> {
public:
    static constexpr XWord TypeID = L"SceneSettings", DefaultName = L"SceneSettings";
    static constexpr int DefaultLinearUnits = 2, DefaultMassUnits = 1, DefaultAngularUnits = 0, DefaultFrameRate = 24;
    static constexpr float DefaultTime = 0, DefaultStartTime = 0, DefaultEndTime = 3, DefaultStartPlaybackTime = 0,
                           DefaultEndPlaybackTime = 3, DefaultSimulationRate = 60;
    static constexpr int DefaultSolverAccuracy = 100, DefaultSolverSubsteps = 10;
    static constexpr bool DefaultContinuousCollisions = true, DefaultPlayDuringSimulation = true;
    static constexpr float DefaultGravityX = 0, DefaultGravityY = -9.81f, DefaultGravityZ = 0;
    static constexpr int DefaultScriptingLanguage = 0, DefaultActiveTool = 1;
    static constexpr float DefaultDensity = 1000, DefaultSkinWidth = 0.1f, DefaultStepHeight = 0.3f,
                           DefaultMaxPushForce = 100, DefaultMaxSlopeAngle = 50, DefaultRestitution = 0,
                           DefaultStaticFriction = 1, DefaultDynamicFriction = 1;
    using XTyped::XTyped;

    TAVO_ATTRIBUTE(LinearUnits, 8)
    TAVO_ATTRIBUTE(MassUnits, 9)
    TAVO_ATTRIBUTE(AngularUnits, 10)
    TAVO_ATTRIBUTE(FrameRate, 11)
    TAVO_ATTRIBUTE(Time, 12)
    TAVO_ATTRIBUTE(StartTime, 13)
    TAVO_ATTRIBUTE(EndTime, 14)
    TAVO_ATTRIBUTE(PlaybackStartTime, 15)
    TAVO_ATTRIBUTE(PlaybackEndTime, 16)
    TAVO_ATTRIBUTE(SimulationRate, 17)
    TAVO_ATTRIBUTE(SolverAccuracy, 18)
    TAVO_ATTRIBUTE(SolverSubsteps, 19)
    TAVO_ATTRIBUTE(ContinuousCollisions, 20)
    TAVO_ATTRIBUTE(PlayDuringSimulation, 21)
    TAVO_ATTRIBUTE_XYZ(Gravity, 22)
    TAVO_ATTRIBUTE(StartScript, 25)
    TAVO_ATTRIBUTE(UpdateScript, 26)
    TAVO_ATTRIBUTE(EndScript, 27)
    TAVO_ATTRIBUTE(ScriptingLanguage, 28)
    TAVO_ATTRIBUTE(PluginPaths, 29)
    TAVO_ATTRIBUTE(Plugins, 30)
    TAVO_ATTRIBUTE(ActiveTool, 31)

    // Time times frame rate. A setter does nothing while the rate is 0 or less; SetFrame keeps within start and end.
    float Frame() const { return asFrame(Time()); }
    float StartFrame() const { return asFrame(StartTime()); }
    float EndFrame() const { return asFrame(EndTime()); }
    float PlaybackStartFrame() const { return asFrame(PlaybackStartTime()); }
    float PlaybackEndFrame() const { return asFrame(PlaybackEndTime()); }
    XSceneSettings& SetFrame(float frame);
    XSceneSettings& SetStartFrame(float frame) { return setFrame(StartTime(), frame); }
    XSceneSettings& SetEndFrame(float frame) { return setFrame(EndTime(), frame); }
    XSceneSettings& SetPlaybackStartFrame(float frame) { return setFrame(PlaybackStartTime(), frame); }
    XSceneSettings& SetPlaybackEndFrame(float frame) { return setFrame(PlaybackEndTime(), frame); }
    float SimulationTimeStep() const;  // seconds; a sixtieth when the rate is 0 or less

    // False for a scene's own settings object, true for any other, that of the application's settings included.
    bool supportsDeletion() const override { return !isSystemSettings(); }
    bool supportsRenaming() const override { return !isSystemSettings(); }
    void onInitialize() override;

private:
    bool isSystemSettings() const;
    float asFrame(XAttribute const& time) const;
    XSceneSettings& setFrame(XAttribute time, float frame);
};
using XSceneSettingsDef = XTypedDef<XSceneSettings>;

}  // namespace Tavo
