#include "tavo/objects/scene_settings.h"
#include "tavo/objects/scene.h"
#include <algorithm>

namespace Tavo {

XSceneSettings& XSceneSettings::SetFrame(float frame) {
    return setFrame(Time(), std::max(StartFrame(), std::min(frame, EndFrame())));
}

float XSceneSettings::SimulationTimeStep() const {
    float const rate = SimulationRate().Float();
    return rate > 0 ? 1 / rate : 0.016666668f;
}

void XSceneSettings::onInitialize() {
    XSceneObject::onInitialize();
    LinearUnits().SetEnumeration(DefaultLinearUnits);
    MassUnits().SetEnumeration(DefaultMassUnits);
    AngularUnits().SetEnumeration(DefaultAngularUnits);
    FrameRate().SetInteger(DefaultFrameRate);
    Time().SetFloat(DefaultTime);
    StartTime().SetFloat(DefaultStartTime);
    EndTime().SetFloat(DefaultEndTime);
    PlaybackStartTime().SetFloat(DefaultStartPlaybackTime);
    PlaybackEndTime().SetFloat(DefaultEndPlaybackTime);
    SimulationRate().SetFloat(DefaultSimulationRate);
    SolverAccuracy().SetInteger(DefaultSolverAccuracy);
    SolverSubsteps().SetInteger(DefaultSolverSubsteps);
    ContinuousCollisions().SetBoolean(DefaultContinuousCollisions);
    PlayDuringSimulation().SetBoolean(DefaultPlayDuringSimulation);
    GravityX().SetFloat(DefaultGravityX);
    GravityY().SetFloat(DefaultGravityY);
    GravityZ().SetFloat(DefaultGravityZ);
    for (XAttribute script : {StartScript(), UpdateScript(), EndScript()}) script.SetString(L"");
    ScriptingLanguage().SetEnumeration(DefaultScriptingLanguage);
    ActiveTool().SetInteger(DefaultActiveTool);
}

bool XSceneSettings::isSystemSettings() const { return *this == Scene().SceneSettings(); }

float XSceneSettings::asFrame(XAttribute const& time) const { return time.Float() * float(FrameRate().Integer()); }

XSceneSettings& XSceneSettings::setFrame(XAttribute time, float frame) {
    int const rate = FrameRate().Integer();
    if (rate > 0) time.SetFloat(frame / float(rate));
    return *this;
}

}  // namespace Tavo
