#include "tavo/commands/trajectory_commands.h"
#include "tavo/interaction/selection.h"
#include "tavo/objects/scene.h"
#include "tavo/trajectories/trajectories.h"

namespace Tavo {
namespace {

void forEachSelectedTrajectory(XScene& scene, auto const& edit) {
    Qelutils::Vector<XObject> selected;
    for (XObject const& object : scene.Selection().Objects(selected))
        if (XTrajectory trajectory(object); trajectory.IsValid()) edit(trajectory);
}

XColour colourOf(XAttribute const& rows) {
    return {rows.Attribute(0).Float(), rows.Attribute(1).Float(), rows.Attribute(2).Float(), rows.Attribute(3).Float()};
}

}  // namespace

void XTrajectories::Generate(XGenerateTrajectory const& command, Objects& out) {
    initialize(command.Scene());
    _parentFrameMode = unsigned(command.ParentFrame().Enumeration());
    SetSamplingFactor(command.SamplingFactor().Float());
    _visible = command.Visible().Boolean();
    _colour = colourOf(command.Colour());
    Scene().Selection().Objects(_objects);
    identifySourceTransforms();
    generate(out);
}

void XGenerateTrajectory::onRun() {
    Qelutils::Vector<XObject> paths;
    XTrajectories::Instance().Generate(*this, paths);
    XTrajectories::Instance().Results(paths);
    for (XObject const& path : paths) addResult(path);
}

void XSampleTrajectoryUniformly::onRun() {
    forEachSelectedTrajectory(Scene(), [&](XTrajectory& path) { path.UniformSampling(SegmentsNum().Integer()); });
}

void XSampleTrajectoryAdaptively::onRun() {
    forEachSelectedTrajectory(Scene(), [&](XTrajectory& path) {
        path.AdaptiveSampling(ErrorTolerance().Float(), MinSegmentsNum().Integer(), TestSamplesNum().Integer(),
                              RefinementIterationsNum().Integer());
    });
}

void XFitTrajectory::onRun() {
    forEachSelectedTrajectory(Scene(), [&](XTrajectory& path) {
        path.FitSampledCurveTranslation(PreprocessingNewSegmentsNum().Integer(), ErrorTolerance().Float(),
                                        MaxRefinementIterationsNum().Integer(), MaxSamplesNumberToFit().Integer(),
                                        RefinementsStepsNum().Integer());
    });
}

void XToSplineTrajectory::onRun() {
    forEachSelectedTrajectory(Scene(), [](XTrajectory& path) { path.ToSpline(); });
}

}  // namespace Tavo
