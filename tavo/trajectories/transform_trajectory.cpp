// The path of one object, as a trajectory without timing.
#include "tavo/objects/scene.h"
#include "tavo/trajectories/trajectory.h"

namespace Tavo {

XTrajectory XTransform::CreateTrajectory() const {
    XTrajectory path(Scene().CreateObject(XTrajectory::TypeID));
    if (!path.IsValid()) return path;
    path.Unparent();
    XSceneSettings const settings = Scene().SceneSettings();
    double const start = double(settings.StartTime().Float()), end = double(settings.EndTime().Float());
    double const rate = 2 * double(settings.FrameRate().Integer());  // samples a second
    if (!(rate > 0) || !(start < end) || (end - start) * rate > XTrajectory::MostSegments) return path;
    XAttribute time = settings.Time();
    float const before = time.Float();
    time.SetFloat(float(start));
    XVector3 const origin = WorldTranslation();
    path.SetWorldTranslation(origin);
    for (int i = 0; start + i / rate < end; ++i) {
        time.SetFloat(float(start + i / rate));
        path.AppendTranslationKeyframe(XVector3().Subtract(WorldTranslation(), origin));
    }
    time.SetFloat(before);
    return path;
}

}  // namespace Tavo
