// The verbs of paths, `tavo trajectory VERB`: made from motion, with other keys for the same path, edited, told of.
// Like the verbs of verbs.h they throw a Failure, and write whole files or none.
//
// A path is named by its own name or path, or by that of an object: that stands for the paths that were made of its
// motion, and for the one that it follows. Lengths are metres and places are those of the scene; angles are degrees,
// times are frames of the scene's rate. Keys are counted along the path from 0; timing keys in time from 0.
#pragma once
#include "hosts/tavo/verbs.h"

namespace host {

// The path of each object's motion, with its timing curve. One that stands still has none.
struct GenerateTrajectoryVerb {
    Input input;
    std::vector<std::string> objects;  // names or patterns
    std::optional<double> from, to;    // frames; none: the scene's time range
    double by = 1;                     // frames from key to key
    bool connect = false;              // the object follows its path, in place of its own curves
    std::string output;
};

// Few keys with handles in place of dense ones. Either a tolerance.
struct FitTrajectoryVerb {
    Input input;
    std::vector<std::string> paths;
    std::optional<double> tolerance;  // metres
    std::optional<double> percent;    // of the path's length
    std::optional<int> maxKeys;       // more are a miss
    bool report = false, json = false;
    std::string output;
};

// Straight spans in place of the keys: so many keys, or as many as the bends need.
struct SampleTrajectoryVerb {
    Input input;
    std::vector<std::string> paths;
    std::optional<int> keys;
    std::optional<double> tolerance;  // metres
    std::optional<int> minSegments;
    std::string output;
};

struct EditTrajectoryVerb {
    Input input;
    std::string path;
    std::string move, scale, rotate, bend;  // one of them: "X,Y,Z", "S" or "S,S,S", "AXIS,DEG", "DEG" or "DEG,AXIS"
    std::string keys, ball;                 // one of them: "A", "A..B" and so on with commas, or "X,Y,Z,R"
    std::string centre;                     // of a scale or rotation, "X,Y,Z"; empty: that of what is named
    double range = 0, pinch = 1, bubble = 0;
    std::string keep;  // "feel", "constraints" or "none"; empty: as the path has it
    std::vector<int> guards, timeGuards;
    bool report = false, json = false;
    std::string output;
};

struct InfoTrajectoryVerb {
    Input input;
    std::vector<std::string> paths;  // none: all
    bool json = false;
};

void run(GenerateTrajectoryVerb const& verb);
void run(FitTrajectoryVerb const& verb);
void run(SampleTrajectoryVerb const& verb);
void run(EditTrajectoryVerb const& verb);
void run(InfoTrajectoryVerb const& verb);

}  // namespace host
