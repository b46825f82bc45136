// XTrajectories: trajectories made from motion that exists. The scene is played over its time range once, for all
// sources together; the world matrices that it gives become sampled trajectories with timing curves.
//
// What is recorded is how each source moves from where it stands at the start, within the parent frame. A path begins a
// frame before its source first moves and ends a frame after it last does; a source that only turns, or stands still,
// gets none. Each trajectory hangs below the parent frame, where the source stands at the start, and bears the name of
// the source; a curve feeds it the fraction of its length from the scene's time. The first one is selected.
//
// A generation is one change block and leaves the scene's time as it was. It does nothing where the scene ends before
// it starts, or has no frames to play. Main thread only: it drives the time.
#pragma once
#include "tavo/trajectories/trajectory.h"

namespace Tavo {

class XGenerateTrajectory;

class XTrajectories {
public:
    enum ParentFrameMode : unsigned { WorldFrame = 0, ObjectFrame = 1, UserFrame = 2 };
    using Objects = Qelutils::Vector<XObject>;

    static XTrajectories& Instance();
    virtual ~XTrajectories() = default;

    XScene& Scene() const;                                    // the one generated in; the active one otherwise
    float SamplingFactor() const { return _samplingFactor; }  // samples a frame
    void SetSamplingFactor(float factor);                     // one that is not above 0 is ignored
    void Results(Objects& out) const { out = _objects; }      // of the last generation

    // From what is selected, with the command's parameters. In the mode "User" the last of several transforms is the
    // parent frame; otherwise the scene's root is. "Object" does as "World". Defined on the commands floor.
    void Generate(XGenerateTrajectory const& command, Objects& out);
    // From those of the objects that are transforms of the active scene.
    void Generate(Objects const& sources, Objects& out);
    void Generate(XObject const& source, XTrajectory& out);  // invalid when there is none

private:
    struct Times;
    using Motion = std::vector<Qelp::Matrix34>;  // by frame

    void generate(Objects& out);
    void initialize(XScene& scene);
    void identifySourceTransforms();
    void setSourceTransforms(Objects const& sources);
    void setSourceTransform(XObject const& source);
    void createTrajectories(float);  // the argument has no effect
    void finalize();
    void updateParentTransform();

    std::vector<Motion> recordMotions(Times const& times);
    void createTrajectory(XTransform const& source, Motion const& motion, Times const& times);
    XTrajectory addTrajectory(XTransform const& source);
    XAnimation addTimingCurve(XTransform const& source, XTrajectory const& path);

    Objects _objects;  // at first what is selected, in the end the results
    unsigned _parentFrameMode = WorldFrame;
    float _samplingFactor = 1;
    XColour _colour = XTrajectory::DefaultColour;
    bool _visible = true;
    XTransform _parentFrame;
    Objects _sources, _results;
    Qelutils::Vector<XAnimation> _timingCurves;
    XScene* _scene = nullptr;  // while it generates
};

}  // namespace Tavo
