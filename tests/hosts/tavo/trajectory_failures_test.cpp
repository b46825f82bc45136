// What `tavo trajectory` says when something is wrong; that nothing is written then.
#include "tests/hosts/tavo/trajectory_host.h"

using namespace hosttest;

namespace {

class TrajectoryFailures : public TrajectoryHostTest {
protected:
    TrajectoryFailures() { makePath(); }

    void expectTold(int code, std::vector<std::pair<std::string, std::string>> const& cases) const {
        for (auto const& [call, told] : cases) {
            std::string const message = failure(code, "trajectory " + call);
            EXPECT_TRUE(has(message, told)) << call << "\n" << message;
        }
    }
};

constexpr int failed = 1, wrongCall = 2, badInput = 3;

}  // namespace

TEST_F(TrajectoryFailures, TyposAreToldWithTheNearestNames) {
    expectTold(wrongCall,
               {
                   {"edt path.tavo", "there is no verb \"trajectory edt\"; did you mean edit?"},
                   {"edit path.tavo Hips --bnd 3 -o x", "there is no option --bnd; did you mean --bend"},
                   {"edit path.tavo Hipz --bend 3 --keys 1 -o x", "no object matches \"Hipz\"; did you mean"},
                   {"fit path.tavo Hips_trajectry --percent 1 -o x", "did you mean Hips_trajectory"},
                   {"edit path.tavo Hips --bend 3 --keys 1 --keep fel -o x", "did you mean feel?"},
                   {"generate walk.bvh Hipz -o x", "no object matches \"Hipz\"; did you mean Hips?"},
               });
}

TEST_F(TrajectoryFailures, WrongCallsAreToldAndEndWithTwo) {
    std::string const edit = "edit path.tavo Hips -o x ";
    expectTold(wrongCall,
               {
                   {"", "which verb? `tavo trajectory --help` lists them"},
                   {"edit", "FILE is required"},
                   {"generate walk.bvh Hips", "--output is required"},
                   {"generate walk.bvh Hips -o x --by 0", "--by is a number of frames above 0"},
                   {"generate walk.bvh Hips -o x --by nan", "--by is a number of frames above 0"},
                   {"generate walk.bvh Hips -o x --by 1e-9", "too many keys"},
                   {"generate walk.bvh Hips -o x --from 60 --to 60", "there is no step from frame 60 to 60"},
                   {"generate walk.bvh Hips -o x --by 200", "there is no step from frame 0 to 119"},
                   {"generate walk.bvh Hips -o x --by 1e300", "there is no step from frame 0 to 119"},
                   {"generate walk.bvh Hips -o x --from nan", "there is no step from frame nan"},
                   {"generate walk.bvh Head -o x --connect", "only those directly below Scene can follow a path"},
                   {"generate walk.bvh SceneSettings -o x", "nothing that matches \"SceneSettings\" moves"},
                   {"fit path.tavo Hips -o x", "one of --tolerance and --percent"},
                   {"fit path.tavo Hips -o x --tolerance 1 --percent 1", "one of --tolerance and --percent"},
                   {"fit path.tavo Hips -o x --tolerance 0", "--tolerance is a number above 0"},
                   {"fit path.tavo Hips -o x --percent -1", "--percent is a number above 0"},
                   {"fit path.tavo Hips -o x --percent inf", "--percent is a number above 0"},
                   {"fit path.tavo Hips -o x --percent 1 --max-keys 1", "--max-keys is a number from 2 on"},
                   {"fit path.tavo Hips -o x --percent 1 --json", "--json requires --report"},
                   {"fit path.tavo Head -o x --percent 1", "\"Head\" has no trajectory; `tavo trajectory generate`"},
                   {"sample path.tavo Hips -o x", "one of --keys and --tolerance"},
                   {"sample path.tavo Hips -o x --keys 9 --tolerance 1", "one of --keys and --tolerance"},
                   {"sample path.tavo Hips -o x --keys 2", "--keys is a number from 3 to 1000001"},
                   {"sample path.tavo Hips -o x --keys 9 --min-segments 3", "--min-segments goes with --tolerance"},
                   {"sample path.tavo Hips -o x --tolerance 0", "--tolerance is a number above 0"},
                   {"sample path.tavo Hips -o x --tolerance 1e-300", "--tolerance is a number above 0"},
                   {"sample path.tavo Hips -o x --tolerance 1 --min-segments 0", "--min-segments is a number from 1"},
                   {edit + "--keys 3", "one of --move, --scale, --rotate and --bend"},
                   {edit + "--keys 3 --move 1,0,0 --bend 90", "one of --move, --scale, --rotate and --bend"},
                   {edit + "--move 1,0,0", "one of --keys and --ball"},
                   {edit + "--move 1,0,0 --keys 3 --ball 0,0,0,1", "one of --keys and --ball"},
                   {edit + "--move 1,0 --keys 3", "--move takes three numbers with commas, not \"1,0\""},
                   {edit + "--move 1,0,inf --keys 3", "--move takes three numbers"},
                   {edit + "--scale 1,2 --keys 3", "--scale takes a factor, or three with commas, not \"1,2\""},
                   {edit + "--scale big --keys 3", "--scale takes a factor"},
                   {edit + "--rotate 30 --keys 3", "--rotate takes an axis x, y or z and degrees"},
                   {edit + "--rotate w,30 --keys 3", "--rotate takes an axis x, y or z and degrees"},
                   {edit + "--bend far --keys 3", "--bend takes degrees"},
                   {edit + "--bend 90,y,2 --keys 3", "--bend takes degrees"},
                   {edit + "--bend 90 --keys 3,4", "--bend takes one corner"},
                   {edit + "--bend 90 --ball 0,0,0,1", "--bend takes one corner"},
                   {edit + "--bend 90 --keys 3 --centre 0,0,0", "--centre does not go with it"},
                   {edit + "--move 1,0,0 --keys 3..", "--keys takes keys as 3 or 3..7"},
                   {edit + "--move 1,0,0 --keys 7..3", "--keys takes keys as 3 or 3..7"},
                   {edit + "--move 1,0,0 --keys 3,,4", "--keys takes keys as 3 or 3..7"},
                   {edit + "--move 1,0,0 --keys 120", "has no key 120; it has 120 keys, from 0 on"},
                   {edit + "--move 1,0,0 --keys 3..2000000000", "has no key 2000000000"},
                   {edit + "--move 1,0,0 --keys 2147483647", "has no key 2147483647"},
                   {edit + "--move 1,0,0 --keys -1", "has no key -1"},
                   {edit + "--move 1,0,0 --ball 0,0,0", "--ball takes a centre and a radius"},
                   {edit + "--move 1,0,0 --ball 0,0,0,-1", "--ball takes a centre and a radius"},
                   {edit + "--move 1,0,0 --ball 9,9,9,1", "no key of Scene|Hips_trajectory would move"},
                   {edit + "--move 1,0,0 --keys 3 --guard 3", "would move: none is there, or guards hold all"},
                   {edit + "--move 1,0,0 --keys 3 --range -1", "--range is a length of at least 0"},
                   {edit + "--move 1,0,0 --keys 3 --range nan", "--range is a length of at least 0"},
                   {edit + "--move 1,0,0 --keys 3 --pinch inf", "--pinch and --bubble are numbers"},
                   {edit + "--scale 2 --keys 3 --centre 1", "--centre takes three numbers"},
                   {edit + "--move 1,0,0 --keys 3 --keep all", "--keep is feel, constraints or none"},
                   {edit + "--move 1,0,0 --keys 3 --guard 200", "--guard: Scene|Hips_trajectory has no key 200"},
                   {edit + "--move 1,0,0 --keys 3 --guard-time 120", "has no timing key 120; it has 120 timing keys"},
                   {edit + "--move 1,0,0 --keys 3 --guard-time -1", "has no timing key -1"},
                   {edit + "--move 1,0,0 --keys 3 --json", "--json requires --report"},
               });
}

TEST_F(TrajectoryFailures, OnePathIsEditedAtATime) {
    result("trajectory generate walk.bvh '*Foot' -o feet.tavo");
    expectTold(wrongCall, {{"edit feet.tavo '*Foot' --move 1,0,0 --keys 3 -o x",
                            "has 2 trajectories, and one is edited at a time: Scene|LeftFoot_trajectory, "
                            "Scene|RightFoot_trajectory"}});
}

TEST_F(TrajectoryFailures, ThreeFactorsAreRefusedWhereTheyWouldSpoilHandles) {
    result("trajectory fit path.tavo Hips -o few.tavo --tolerance 0.01");
    expectTold(wrongCall, {{"edit few.tavo Hips --scale 1,2,1 --keys 3 -o x", "--scale takes one factor there"}});
    EXPECT_EQ(tavo("trajectory edit few.tavo Hips --scale 2 --keys 3 --keep none -o even.tavo").code, 0);
}

TEST_F(TrajectoryFailures, WhatCannotBeDoneEndsWithOne) {
    result("trajectory fit path.tavo Hips -o few.tavo --tolerance 0.01");
    fs::create_directory(folder / "folder");
    writeClip("still.bvh", {1});
    expectTold(failed, {
                           {"generate walk.bvh Scene -o x", "nothing moves from frame 0 to 119"},
                           {"generate still.bvh a -o x", "there is no step from frame 0 to 0"},
                           {"fit few.tavo Hips -o x --tolerance 0.01", "is a spline already"},
                           {"generate walk.bvh Hips -o missing/x.tavo", "missing"},
                           {"generate walk.bvh Hips -o folder", "folder"},
                           {"fit path.tavo Hips --percent 1 -o missing/x.tavo", "missing"},
                           {"sample path.tavo Hips --keys 9 -o missing/x.tavo", "missing"},
                           {"edit path.tavo Hips --move 1,0,0 --keys 3 -o missing/x.tavo", "missing"},
                       });
}

TEST_F(TrajectoryFailures, BadFilesEndWithThree) {
    write(folder / "note.txt", "Dear diary");
    for (std::string file : {"missing.tavo", "note.txt"})
        for (std::string const& call : {"generate " + file + " Hips -o x", "fit " + file + " Hips --percent 1 -o x",
                                        "sample " + file + " Hips --keys 9 -o x", "info " + file,
                                        "edit " + file + " Hips --move 1,0,0 --keys 3 -o x"})
            expectTold(badInput, {{call, file}});
}

TEST_F(TrajectoryFailures, AnOlderOutputStaysUntouched) {
    write(folder / "old", "precious");
    failure(wrongCall, "trajectory generate walk.bvh Hipz -o old");
    failure(failed, "trajectory generate walk.bvh Scene -o old");
    failure(wrongCall, "trajectory edit path.tavo Hips --move 1,0,0 --keys 3,500 -o old");
    failure(wrongCall, "trajectory fit path.tavo Hips Head --percent 1 -o old");
    failure(wrongCall, "trajectory sample path.tavo Hips Head --keys 9 -o old");
    EXPECT_EQ(text("old"), "precious");
}

TEST_F(TrajectoryFailures, HelpBeginsWithExamplesAndEndsWithTheExitCodes) {
    for (char const* verb : {"", "generate ", "fit ", "sample ", "edit ", "info "}) {
        std::string const help = result(std::string("trajectory ") + verb + "--help");
        EXPECT_LT(help.find("Examples:\n  tavo trajectory "), help.find("Usage: tavo trajectory ")) << verb << help;
        EXPECT_TRUE(has(help, "4 an asked quality missed")) << verb;
    }
    EXPECT_TRUE(has(result("trajectory --help"), "\nVerbs:\n  generate    Make paths from motion."));
    EXPECT_TRUE(has(result("sample --help"), "tavo sample walk.tavo --objects")) << "the other verb of that name";
}
