#include "tests/trajectories/trajectory_fixture.h"

namespace Tavo {
namespace {

struct SafeGuards : TrajectoryTest {
    int guardCount() const { return path.SafeGuardsArray().AttributeCount(); }
    std::vector<float> guard(int i) const {
        XAttribute const g = path.SafeGuardsArray().Attribute(i);
        XVector3 const c = g.Attribute(0).Vector();
        std::vector<float> found{c.X(), c.Y(), c.Z()};
        for (int part = 1; part < 5; ++part) found.push_back(g.Attribute(part).Float());
        return found;
    }
    XDropOff const dropoff{4, XDropOff::RadialDropoff, 0.5F, 0.25F};
};

TEST_F(SafeGuards, HoldASphereAndADropoffWithoutItsMode) {
    path.AddSafeGuard({1, 2, 3}, 7, dropoff);
    EXPECT_THAT(guard(0), ElementsAre(1, 2, 3, 7, 4, 0.5F, 0.25F));
}

TEST_F(SafeGuards, TwoAtOneCentreAreTwo) {
    path.AddSafeGuard({1, 2, 3}, 7, dropoff).AddSafeGuard({1, 2, 3}, 7, dropoff);
    EXPECT_EQ(guardCount(), 2);
}

TEST_F(SafeGuards, AreEditedByIndexAndNotOutOfRange) {
    path.AddSafeGuard({1, 2, 3}, 7, dropoff).AddSafeGuard({4, 5, 6}, 1, dropoff);
    path.EditSafeGuard(1, {0, 0, 0}, 2, XDropOff(3));
    EXPECT_THAT(guard(1), ElementsAre(0, 0, 0, 2, 3, 1, 0));
    State const before = state();
    path.EditSafeGuard(2, {9, 9, 9}, 9, dropoff).EditSafeGuard(-1, {9, 9, 9}, 9, dropoff);
    EXPECT_EQ(state(), before);
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(SafeGuards, AreDeletedByIndexAndNotOutOfRange) {
    path.AddSafeGuard({1, 2, 3}, 7, dropoff).AddSafeGuard({4, 5, 6}, 1, dropoff);
    path.DeleteSafeGuard(2).DeleteSafeGuard(-1);
    EXPECT_EQ(guardCount(), 2);
    path.DeleteSafeGuard(0);
    EXPECT_EQ(guardCount(), 1);
    EXPECT_EQ(guard(0)[0], 4);
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(SafeGuards, AreSwitchedOnAndOff) {
    path.UseSafeGuards(true);
    EXPECT_TRUE(path.UseSafeGuards().Boolean());
    path.UseSafeGuards(false);
    EXPECT_FALSE(path.UseSafeGuards().Boolean());
}

TEST_F(SafeGuards, EachOperationIsOneStep) {
    State const before = state();
    int const steps = undoCount();
    path.AddSafeGuard({1, 2, 3}, 7, dropoff).UseSafeGuards(true).EditSafeGuard(0, {}, 1, dropoff).DeleteSafeGuard(0);
    EXPECT_EQ(undoCount(), steps + 4);
    for (int i = 0; i < 4; ++i) scene().Undo();
    EXPECT_EQ(state(), before);
}

}  // namespace
}  // namespace Tavo
