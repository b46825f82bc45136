// Sliding and scaling the timing of a motion along its path, by the weights of handles.
#include "tavo/animation/timing_edits.h"
#include "tavo/app/application.h"
#include "tavo/trajectories/timing_curve.h"
#include "tavo/trajectories/trajectory_edit.h"

namespace Tavo {
namespace {

std::wstring const slideLabel = L"Slide Timing", scaleLabel = L"Scale Timing";

constexpr wchar_t const* curveNotSampled = L"The time curve needs to be sampled for this function to work.";

bool isConnected(XTrajectory const& trajectory) { return trajectory.InputValue().IsConnectedInput(); }

// `change` alters the keys, and says whether that stands.
void editTiming(XTrajectory const& trajectory, Qelutils::Vector<float> weights, auto const& change) {
    XTimingCurve const curve(trajectory);
    if (!curve.isSampled()) {
        XApplication::Instance().LogWarning(curveNotSampled);
        return;
    }
    int const handles = std::clamp(trajectory.TimingHandlesNum().Integer(), 0, sg::TrajectoryNode::mostTimingHandles);
    weights.resize(std::size_t(handles));
    XTimingKeys keys = curve.keys();
    XTimingWeights const spread{trajectory.TimingCurveFirstKeyTime().Float(),
                                trajectory.TimingCurveLastKeyTime().Float(), std::move(weights)};
    if (change(spread, keys)) curve.write(keys);
}

}  // namespace

// Never asks whether the fractions still rise: that is for drags.
XTrajectory& XTrajectory::SlideTimingOnTrajectory(int handleCount, IDs const& selected, XDropOff const& dropoff,
                                                  float amount) {
    XTrajectoryEdit const edit(*this, slideLabel);
    if (!edit || !isConnected(*this)) return *this;
    TimingHandlesNum().SetInteger(handleCount);
    Floats weights;
    computeDropoffWeights_time(selected, dropoff, weights);
    editTiming(*this, std::move(weights), [=](XTimingWeights const& handles, XTimingKeys& keys) {
        return SlideTiming(keys.outputs, handles, amount, false, keys);
    });
    return *this;
}

XTrajectory& XTrajectory::SlideTimingOnTrajectory_interactive(Floats const& originals, Floats const& handleWeights,
                                                              float amount) {
    XTrajectoryEdit const edit(*this, slideLabel);
    if (!edit || !isConnected(*this)) return *this;
    bool const monotonic = TimingEnforceMonotonic().Boolean();
    editTiming(*this, handleWeights, [&](XTimingWeights const& handles, XTimingKeys& keys) {
        return SlideTiming(originals, handles, amount, monotonic, keys);
    });
    return *this;
}

XTrajectory& XTrajectory::ScaleTimingOnTrajectory_interactive(Floats const&, Floats const& handleWeights, float pivot,
                                                              float factor) {
    XTrajectoryEdit const edit(*this, scaleLabel);
    if (!edit || !isConnected(*this)) return *this;
    bool const monotonic = TimingEnforceMonotonic().Boolean();
    editTiming(*this, handleWeights, [&](XTimingWeights const& handles, XTimingKeys& keys) {
        return ScaleTiming(handles, pivot, factor, monotonic, keys);
    });
    return *this;
}

}  // namespace Tavo
