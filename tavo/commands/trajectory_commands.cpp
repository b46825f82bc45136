#include "tavo/commands/trajectory_commands.h"
#include "tavo/commands/selected.h"
#include "tavo/objects/attribute_colour.h"
#include "tavo/trajectories/trajectories.h"

namespace Tavo {

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
    forEachSelected<XTrajectory>(Scene(), [&](XTrajectory& path) { path.UniformSampling(SegmentsNum().Integer()); });
}

void XSampleTrajectoryAdaptively::onRun() {
    forEachSelected<XTrajectory>(Scene(), [&](XTrajectory& path) {
        path.AdaptiveSampling(ErrorTolerance().Float(), MinSegmentsNum().Integer(), TestSamplesNum().Integer(),
                              RefinementIterationsNum().Integer());
    });
}

void XFitTrajectory::onRun() {
    forEachSelected<XTrajectory>(Scene(), [&](XTrajectory& path) {
        path.FitSampledCurveTranslation(PreprocessingNewSegmentsNum().Integer(), ErrorTolerance().Float(),
                                        MaxRefinementIterationsNum().Integer(), MaxSamplesNumberToFit().Integer(),
                                        RefinementsStepsNum().Integer());
    });
}

void XToSplineTrajectory::onRun() {
    forEachSelected<XTrajectory>(Scene(), [](XTrajectory& path) { path.ToSpline(); });
}

}  // namespace Tavo
