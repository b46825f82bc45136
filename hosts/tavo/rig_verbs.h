// The verbs of rigs: a figure posed by its handles, and a figure that takes over the motion of another. Like the verbs
// of verbs.h they throw a Failure, and write whole files or none.
#pragma once
#include "hosts/tavo/verbs.h"

namespace host {

struct IkVerb {
    Input input;
    std::string root;                    // a name or path, as the following
    std::vector<std::string> effectors;  // "PATH=x,y,z" or "PATH=x,y,z,rx,ry,rz"
    std::vector<std::string> pins;       // effectors that stay where they are
    std::optional<double> at;            // seconds: the pose to begin with; none: that of the file
    bool noLimits = false;
    std::optional<double> maxError;  // millimetres: beyond it the pose is not good enough
    bool json = false;
    std::string output;  // empty: none
};

struct RetargetVerb {
    Input input;
    std::string to;                           // the figure that takes over: a clip or a scene
    std::string map, writeMap;                // files of matched names; empty: none
    std::optional<int> originFrame, toFrame;  // frames of either in which the figures stand alike; none: at rest
    bool noLimits = false;
    bool report = false, json = false;
    std::optional<double> maxSlide, maxPenetration;  // gates, in millimetres
    std::optional<double> minConfidence;             // from 0 to 1, on the mean
    std::string output;
};

void run(IkVerb const& verb);
void run(RetargetVerb const& verb);

}  // namespace host
