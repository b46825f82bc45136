#include "hosts/tavo/rig_options.h"

#include "hosts/tavo/options.h"

namespace host {

char const* const ikExamples = R"(Examples:
  tavo ik walk.bvh --root Hips --effector LeftHand=0.6,1.2,0.3 -o posed.tavo
  tavo ik walk.tavo --at 0.5 --root Hips --effector LeftFoot=0.1,0.2,0.4,0,30,0 --pin RightFoot -o posed.tavo
  tavo ik walk.tavo --root LeftUpLeg --effector LeftFoot=0,0.5,0.5 --max-error 1 --json

The figure from the root down to the effectors gets a rig, whose handles move to the targets: x, y, z in metres, and
three angles in degrees where the effector is to stand so too, which turn about x, then y, then z. Both are those of the
world. A pinned effector stays where it is. A root below another joint only turns; the topmost one of a figure moves too,
unless it is pinned. A target out of reach gives the nearest pose. The rig stays in the scene that is written. The
report tells how far each effector is from its target. Beyond --max-error the report is all that comes of it.)";

char const* const retargetExamples = R"(Examples:
  tavo retarget walk.bvh --to figure.bvh -o figure_walks.bvh
  tavo retarget walk.bvh --to figure.tavo -o figure_walks.tavo --report
  tavo retarget walk.bvh --to figure.bvh --write-map names.txt -o out.bvh      to look at what was matched, and edit it
  tavo retarget walk.bvh --to figure.bvh --map names.txt -o out.bvh --report --json
  tavo retarget walk.bvh --to figure.bvh -o out.bvh --max-slide 20 --max-penetration 10

The figure of --to takes over the motion of CLIP, as far as the two have joints that correspond; its own motion goes. Both
are thought to stand alike at rest; where they do not, --origin-frame and --to-origin-frame name frames in which they do.
A map has a line for each pair: the joint of CLIP, a tab, the joint of the figure, and maybe more after another tab. Joints
that a map does not name are matched by themselves; a line with nothing before the tab leaves that joint alone. Lines that
begin with # are remarks: so --write-map tells what no pair can say, a joint that follows a mix of two.

The report tells the matches with how sure they are (1 is certain), joints without one, and of the result: how far the
feet slide while they stand, how deep a joint goes below the ground, limits that were hit. A gate that is missed writes
nothing and exits with 4.)";

void addOptions(CLI::App& app, IkVerb& verb) {
    auto const addMany = [&](char const* name, std::vector<std::string>& values, char const* what, char const* type) {
        app.add_option(name, values, what)->take_all()->expected(1)->allow_extra_args(false)->type_name(type);
    };
    app.add_option("--root", verb.root, "the topmost joint that may move")->required()->type_name("PATH");
    addMany("--effector", verb.effectors, "a joint below it, and where it is to be", "PATH=x,y,z[,rx,ry,rz]");
    addMany("--pin", verb.pins, "a joint below it that stays where it is", "PATH");
    app.add_option("--at", verb.at, "the moment whose pose is changed, in seconds (the file's)")->type_name("TIME");
    app.add_flag("--no-limits", verb.noLimits, "joints may turn beyond their limits");
    app.add_option("--max-error", verb.maxError, "exit with 4 if an effector is farther from its target")
        ->type_name("MM");
    app.add_flag("--json", verb.json, "for machines");
    app.add_option("-o,--output", verb.output, "the scene to write, or a clip if it ends in .bvh (none)")
        ->type_name("OUT");
}

void addOptions(CLI::App& app, RetargetVerb& verb) {
    app.add_option("--to", verb.to, "the figure that takes over: a clip or a scene")->required()->type_name("FIGURE");
    app.add_option("--map", verb.map, "pairs of joints that correspond")->type_name("MAP");
    app.add_option("--write-map", verb.writeMap, "write the pairs that were used")->type_name("MAP");
    app.add_option("--origin-frame", verb.originFrame, "the frame in which CLIP stands as the figure does (at rest)")
        ->type_name("N");
    app.add_option("--to-origin-frame", verb.toFrame, "the frame in which the figure stands so (at rest)")
        ->type_name("N");
    app.add_flag("--no-limits", verb.noLimits, "joints may turn beyond their limits");
    CLI::Option* const report = app.add_flag("--report", verb.report, "tell how good the result is");
    app.add_flag("--json", verb.json, "the report for machines")->needs(report);
    app.add_option("--max-slide", verb.maxSlide, "of a foot while it stands, in millimetres")->type_name("MM");
    app.add_option("--max-penetration", verb.maxPenetration, "of the ground, in millimetres")->type_name("MM");
    app.add_option("--min-confidence", verb.minConfidence, "of the matches, on the mean, from 0 to 1")->type_name("C");
    addOutput(app, verb.output, "the scene to write, or a clip if it ends in .bvh");
}

}  // namespace host
