#include "tavo/trajectories/trajectories.h"
#include "tavo/app/application.h"
#include "tavo/objects/scene.h"
#include "tavo/trajectories/new_keys.h"
#include "tavo/trajectories/trajectory_edit.h"
#include <cmath>

namespace Tavo {
namespace {

std::wstring const generateLabel = L"Generate Trajectory";

XMatrix matrixOf(Qelp::Matrix34 const& value) { return XMatrix(value); }

XMatrix worldOf(XObject const& object) { return XTransform(object).WorldMatrix().Matrix(); }

// The frames between which something moves; none at all: first is -1.
struct MovingRange {
    int first = -1, last = -1;

    template<class Equal> MovingRange(int frames, Equal const& isSame) {
        for (int f = 1; f < frames && first < 0; ++f)
            if (!isSame(f, f - 1)) first = f - 1;
        for (int f = frames - 2; f >= 0 && last < 0; --f)
            if (!isSame(f, f + 1)) last = f + 1;
    }
};

}  // namespace

// A frame is missed by no rounding of the range or the rate: within a ten thousandth of it counts. No frames: there is
// nothing to play, or too much of it.
struct XTrajectories::Times {
    Times(XSceneSettings const& settings, float samplingFactor) : start(double(settings.StartTime().Float())) {
        double const rate = double(settings.FrameRate().Integer()) * (samplingFactor != 0 ? double(samplingFactor) : 1);
        double const count = (double(settings.EndTime().Float()) - start) * rate;
        if (!(rate > 0) || !(count >= 0 && count < mostFrames)) return;
        step = 1 / rate;
        frames = int(count + 1e-4) + 1;
    }
    float at(int frame) const { return float(start + frame * step); }

    static constexpr double mostFrames = 1e7;
    double start, step = 0;
    int frames = 0;
};

XTrajectories& XTrajectories::Instance() {
    static XTrajectories instance;
    return instance;
}

XScene& XTrajectories::Scene() const { return _scene ? *_scene : XApplication::Instance().ActiveScene(); }

void XTrajectories::SetSamplingFactor(float factor) {
    if (factor > 0) _samplingFactor = factor;
}

void XTrajectories::Generate(Objects const& sources, Objects& out) {
    initialize(XApplication::Instance().ActiveScene());
    setSourceTransforms(sources);
    generate(out);
}

void XTrajectories::Generate(XObject const& source, XTrajectory& out) {
    Objects results;
    Generate(Objects{source}, results);
    out = results.empty() ? XTrajectory() : XTrajectory(results.front());
}

void XTrajectories::generate(Objects& out) {
    XChangeBlock const block(Scene(), generateLabel);
    createTrajectories(0.0001F);
    out = _results;
    finalize();
}

void XTrajectories::initialize(XScene& scene) {
    _scene = &scene;
    _objects.clear();
    finalize();
    _scene = &scene;
    _parentFrame = Scene().RootObject();
}

void XTrajectories::identifySourceTransforms() {
    setSourceTransforms(_objects);
    _objects.clear();
    updateParentTransform();
}

void XTrajectories::setSourceTransforms(Objects const& sources) {
    for (XObject const& source : sources) setSourceTransform(source);
}

void XTrajectories::setSourceTransform(XObject const& source) {
    XTransform const transform(source);
    if (transform.IsValid() && &transform.Scene() == &Scene()) _sources.push_back(transform);
}

void XTrajectories::updateParentTransform() {
    if (_parentFrameMode != UserFrame || _sources.size() < 2) return;
    _parentFrame = XTransform(_sources.back());
    _sources.pop_back();
}

void XTrajectories::finalize() {
    _objects.insert(_objects.end(), _results.begin(), _results.end());
    _sources.clear();
    _results.clear();
    _timingCurves.clear();
    _parentFrame = XTransform();
    _scene = nullptr;
}

void XTrajectories::createTrajectories(float) {
    Times const times(Scene().SceneSettings(), _samplingFactor);
    if (times.frames == 0 || _sources.empty()) return;
    XAttribute time = Scene().SceneSettings().Time();
    float const before = time.Float();
    std::vector<Motion> const motions = recordMotions(times);
    time.SetFloat(times.at(0));
    for (std::size_t i = 0; i < _sources.size(); ++i) createTrajectory(XTransform(_sources[i]), motions[i], times);
    time.SetFloat(before);
    if (!_results.empty()) XSceneObject(_results.front()).Select();
}

// All sources of a frame, then the next frame, so that the scene is evaluated once a frame.
std::vector<XTrajectories::Motion> XTrajectories::recordMotions(Times const& times) {
    XAttribute time = Scene().SceneSettings().Time();
    time.SetFloat(times.at(0));
    std::vector<XMatrix> atStart;
    for (XObject const& source : _sources)
        atStart.push_back(XMatrix::MatrixTransformToLocalSpace(worldOf(source), worldOf(_parentFrame)));
    std::vector<Motion> motions(_sources.size());
    for (int f = 0; f < times.frames; ++f) {
        time.SetFloat(times.at(f));
        XMatrix const frame = worldOf(_parentFrame);
        for (std::size_t i = 0; i < _sources.size(); ++i) {
            XMatrix const rest = XMatrix::MatrixTransformToWorldSpace(atStart[i], frame);
            XMatrix const moved = XMatrix::MatrixTransformToLocalSpace(worldOf(_sources[i]), rest);
            motions[i].push_back(moved.AsMatrix());
        }
    }
    return motions;
}

// The rotation's own range has no say: a source that only turns gets no trajectory, a decision of this system.
void XTrajectories::createTrajectory(XTransform const& source, Motion const& motion, Times const& times) {
    auto const place = [&](int f) { return matrixOf(motion[std::size_t(f)]).Translation(); };
    MovingRange const moving(times.frames, [&](int a, int b) { return place(a).IsEqual(place(b)); });
    if (moving.first < 0) return;
    XTrajectory path = addTrajectory(source);
    XAnimation curve = addTimingCurve(source, path);
    XTrajectoryEdit const edit(path, generateLabel);
    if (!edit || !curve.IsValid()) return;
    for (int f = moving.first; f <= moving.last; ++f) {
        XMatrix const matrix = matrixOf(motion[std::size_t(f)]);
        XNewTranslationKey{matrix.Translation().AsVector(), {}}.addTo(edit.node(), f - moving.first);
        XNewRotationKey{matrix.RotationQuaternion().AsQuaternion(), {}}.addTo(edit.node(), float(f - moving.first));
    }
    for (int f = moving.first; f <= moving.last; ++f)
        curve.SetKeyframe(times.at(f), path.ArcLengthMap(float(f - moving.first)));
}

XTrajectory XTrajectories::addTrajectory(XTransform const& source) {
    XTrajectory path(Scene().CreateObject(XTrajectory::TypeID, _parentFrame));
    path.SetName(source.Name() + L"_" + std::wstring(XTrajectory::DefaultName));
    path.SetColour(_colour);
    path.Visible().SetBoolean(_visible);
    path.SetWorldMatrix(worldOf(source), XTransform::UpdateAll);
    path.IsTranslationCurveSampled().SetBoolean(true);
    path.IsRotationCurveSampled().SetBoolean(true);
    _results.push_back(path);
    return path;
}

XAnimation XTrajectories::addTimingCurve(XTransform const& source, XTrajectory const& path) {
    XAnimation curve(Scene().CreateNode(XAnimation::TypeID));
    curve.SetName(source.Name() + L"_" + std::wstring(XTrajectory::DefaultTimingName));
    Scene().SceneSettings().Time().ConnectOutputTo(curve.InputValue());
    curve.OutputValue().ConnectOutputTo(path.InputValue());
    curve.KeyframeMinX().ConnectOutputTo(path.TimingCurveFirstKeyTime());
    curve.KeyframeMaxX().ConnectOutputTo(path.TimingCurveLastKeyTime());
    curve.OutputValuesArray().ConnectOutputTo(path.TimingHandlesArcLengthsArray());
    path.TimingHandlesTimesArray().ConnectOutputTo(curve.InputValuesArray());
    curve.IsCurveSampled().SetBoolean(true);
    _timingCurves.push_back(curve);
    return curve;
}

}  // namespace Tavo
