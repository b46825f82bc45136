#include "hosts/tavo/trajectory_options.h"

#include "hosts/tavo/options.h"

namespace host {

char const* const trajectoryExamples = R"(Examples:
  tavo trajectory generate walk.bvh Hips -o path.tavo --connect
  tavo trajectory edit path.tavo Hips --bend 90 --keys 60 --range 1 --keep feel -o turned.tavo
  tavo trajectory info turned.tavo

A path is named by its own name, or by that of an object: its path is the one that was made of its motion, or that it
follows. Lengths are metres and places are those of the scene; angles are degrees, times are frames. Keys are counted
along the path from 0. `tavo trajectory VERB --help` tells more.)";

char const* const generateExamples = R"(Examples:
  tavo trajectory generate walk.bvh Hips -o path.tavo
  tavo trajectory generate walk.bvh Hips -o path.tavo --connect      and Hips follows its path, not its curves
  tavo trajectory generate walk.bvh '*Foot' -o feet.tavo --from 30 --to 90 --by 2

Each object that moves gets a trajectory named after it, with a key for its place and one for its rotation at each frame,
and a timing curve. A path begins when its object first moves and ends when it last does; one that only turns gets none.
Frames are those of the scene's frame rate, and need not be whole.

With --connect the object's own curves of translation and rotation are deleted, and the path's matrix drives it through
the graph: an edit of the path moves the object. Only an object directly below the scene's origin can follow a path.)";

char const* const fitExamples = R"(Examples:
  tavo trajectory fit path.tavo Hips -o few.tavo --tolerance 0.01
  tavo trajectory fit path.tavo Hips -o few.tavo --percent 0.1 --report
  tavo trajectory fit path.tavo '*' -o few.tavo --percent 1 --report --json
  tavo trajectory fit path.tavo Hips -o few.tavo --percent 0.1 --max-keys 20 || echo 'too winding'

The path becomes a spline: few keys with handles. The report tells the keys before and after, how far the keys before lie
from the path after, at most and on the mean, and how long the fit took. When that is farther than the tolerance, or there
are more keys than --max-keys allows, nothing is written and the exit code is 4. Rotation keys stay at their places along
the path.)";

char const* const samplePathExamples = R"(Examples:
  tavo trajectory sample few.tavo Hips -o dense.tavo --keys 100
  tavo trajectory sample few.tavo Hips -o dense.tavo --tolerance 0.005 --min-segments 20

Keys at even distances, or as many as the path's bends need: between two of them the path lies no farther than the
tolerance from a straight line. The path is sampled afterwards, as smart editing needs it. Rotation keys stay at their
places along the path.)";

char const* const editExamples = R"(Examples:
  tavo trajectory edit path.tavo Hips -o out.tavo --move 0,0,0.5 --keys 40..60 --range 1
  tavo trajectory edit path.tavo Hips -o out.tavo --bend 90 --keys 60 --range 1.5 --keep feel --report
  tavo trajectory edit path.tavo Hips -o out.tavo --rotate y,30 --ball 0,1,2,0.5 --range 1 --keep constraints
  tavo trajectory edit path.tavo Hips -o out.tavo --scale 1,0.5,1 --keys 0..118 --guard 30 --guard 90
  tavo trajectory edit path.tavo Hips -o out.tavo --bend -45 --keys 60 --keep feel --guard-time 0 --guard-time 118

What is named moves by the edit. --keys: the keys, and their neighbours by the dropoff of the distance along the path;
--ball: what lies in the ball, and around it by the distance in space. Without --range there are no neighbours. The
dropoff is a cubic Bezier curve over 1, pinch, bubble and 0, from distance 0 to the range.

--bend: the path up to the key stays. After it each key turns about the corner by the angle times a weight that rises from
0 at the corner to 1 at the range (1 less the dropoff), so that all beyond turns by the whole angle. The corner is soft
over the range; without one it is sharp. --rotate and --bend turn rotation keys with the path.

--keep feel: the speed along the path stays and times move, from the time 0 on. --keep constraints: each timing key stays
at its place of the path, and no time changes. --keep none: the timing is not touched. The path keeps this setting.

--guard: the key stays where it is, and around it movement returns over the range; it stays in the file as a safe guard.
--guard-time: the timing key stays when it is; between two of them speeds change evenly, elsewhere they stay.)";

char const* const infoPathExamples = R"(Examples:
  tavo trajectory info path.tavo                        all paths
  tavo trajectory info path.tavo Hips --json)";

namespace {

void addPaths(CLI::App& app, std::vector<std::string>& paths, char const* what) {
    app.add_option("PATH", paths, what)->type_name("...");
}

void addReport(CLI::App& app, bool& report, bool& json, char const* what) {
    CLI::Option* const flag = app.add_flag("--report", report, what);
    app.add_flag("--json", json, "the report for machines")->needs(flag);
}

void addKeys(CLI::App& app, std::string const& name, std::vector<int>& keys, char const* what) {
    app.add_option(name, keys, what)->take_all()->expected(1)->allow_extra_args(false)->type_name("KEY");
}

void addDropoff(CLI::App& app, EditTrajectoryVerb& verb) {
    app.add_option("--range", verb.range, "how far around neighbours move too, in metres (0)")->type_name("R");
    app.add_option("--pinch", verb.pinch, "of the dropoff: 0 drops at once, 1 leaves softly (1)")->type_name("P");
    app.add_option("--bubble", verb.bubble, "of the dropoff: 0 arrives softly (0)")->type_name("B");
}

}  // namespace

void addOptions(CLI::App& app, GenerateTrajectoryVerb& verb) {
    app.add_option("OBJECT", verb.objects, "whose motion: names or paths with * and ?")->required()->type_name("...");
    app.add_option("--from", verb.from, "the first frame (the scene's start)")->type_name("F");
    app.add_option("--to", verb.to, "the last (the scene's end)")->type_name("F");
    app.add_option("--by", verb.by, "frames from key to key (1)")->type_name("FRAMES");
    app.add_flag("--connect", verb.connect, "the object follows its path");
    addOutput(app, verb.output, "the scene to write, or a clip if it ends in .bvh");
}

void addOptions(CLI::App& app, FitTrajectoryVerb& verb) {
    addPaths(app, verb.paths, "trajectories, or objects that have one");
    app.get_option("PATH")->required();
    app.add_option("--tolerance", verb.tolerance, "how far a key may lie from the new path, in metres")
        ->type_name("LENGTH");
    app.add_option("--percent", verb.percent, "the same, in percent of the path's length")->type_name("P");
    app.add_option("--max-keys", verb.maxKeys, "no more keys may be left (any number)")->type_name("N");
    addReport(app, verb.report, verb.json, "tell the errors and the time it took");
    addOutput(app, verb.output, "the scene to write");
}

void addOptions(CLI::App& app, SampleTrajectoryVerb& verb) {
    addPaths(app, verb.paths, "trajectories, or objects that have one");
    app.get_option("PATH")->required();
    app.add_option("--keys", verb.keys, "so many, at even distances; at least 3")->type_name("N");
    app.add_option("--tolerance", verb.tolerance, "how far the path may lie from a straight span, in metres")
        ->type_name("T");
    app.add_option("--min-segments", verb.minSegments, "no span is longer than an even one of so many (10)")
        ->type_name("N");
    addOutput(app, verb.output, "the scene to write");
}

void addOptions(CLI::App& app, EditTrajectoryVerb& verb) {
    app.add_option("PATH", verb.path, "a trajectory, or an object that has one")->required()->type_name("");
    app.add_option("--move", verb.move, "by so many metres")->type_name("X,Y,Z");
    app.add_option("--scale", verb.scale, "by a factor, or one for each axis")->type_name("S[,S,S]");
    app.add_option("--rotate", verb.rotate, "about x, y or z, in degrees")->type_name("AXIS,DEG");
    app.add_option("--bend", verb.bend, "turn all after a key about y, or another axis")->type_name("DEG[,AXIS]");
    app.add_option("--keys", verb.keys, "which keys")->type_name("A[..B][,...]");
    app.add_option("--ball", verb.ball, "which place: a centre and a radius")->type_name("X,Y,Z,R");
    app.add_option("--centre", verb.centre, "of a scale or rotation (that of the keys or the ball)")
        ->type_name("X,Y,Z");
    addDropoff(app, verb);
    app.add_option("--keep", verb.keep, "feel, constraints or none (as the path has it)")->type_name("WHAT");
    addKeys(app, "--guard", verb.guards, "a key that stays where it is");
    addKeys(app, "--guard-time", verb.timeGuards, "a timing key that stays when it is");
    addReport(app, verb.report, verb.json, "tell what the edit did to the motion");
    addOutput(app, verb.output, "the scene to write, or a clip if it ends in .bvh");
}

void addOptions(CLI::App& app, InfoTrajectoryVerb& verb) {
    addPaths(app, verb.paths, "trajectories, or objects that have one (all)");
    app.add_flag("--json", verb.json, "for machines");
}

}  // namespace host
