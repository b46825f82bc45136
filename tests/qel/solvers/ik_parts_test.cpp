// The parts of the inverse kinematics against what defines them: derivatives against differences, the linear step
// against its normal equations.
#include "qel/solvers/ik_borders.h"
#include "qel/solvers/ik_linear.h"
#include "tests/qel/solvers/ik_rig.h"

namespace sg::ik {
namespace {

constexpr double h = 1e-6;

struct Random {
    std::mt19937 engine{7};
    double between(double a, double b) { return a + (b - a) * double(engine()) / 4294967296.0; }
    Vec3 vector(double size) { return {between(-size, size), between(-size, size), between(-size, size)}; }
    Mat3 turn() { return exponential(vector(2)); }
};

// A tree of joints with any turns; some are scaled, one is mirrored if that is asked for.
std::vector<Matrix34> bentPose(Random& random, std::size_t count, double scale, bool isMirrored) {
    std::vector<Matrix34> pose(count);
    for (std::size_t i = 0; i < count; ++i) {
        Mat3 turn = random.turn();
        double const s = 1 + random.between(0, scale);
        if (isMirrored && i == 1) turn.row[2] = -turn.row[2];
        Vec3 const place = random.vector(0.5);
        for (int k = 0; k < 3; ++k) {
            for (int r = 0; r < 3; ++r) pose[i].m[r][k] = float(s * turn.row[r][k]);
            pose[i].m[3][k] = float(place[k]);
        }
    }
    return pose;
}

std::vector<int> const tree = {-1, 0, 1, 2, 1, 4};

struct TasksTest : ::testing::Test {
    Random random;
    Skeleton skeleton;
    Tasks tasks;

    void setUp(double scale, bool isMirrored) {
        tasks = {};
        skeleton.setUp(bentPose(random, tree.size(), scale, isMirrored), tree);
        skeleton.place();
        tasks.effectors = {{3, random.vector(1), random.turn(), 0.7, 0.4, false},
                           {5, random.vector(1), {}, 1.3, 0, false}};
        tasks.poles = {{1, 3, random.vector(1), random.vector(0.3), 0.8, 1}};
        tasks.blocks = {{0, true, {0.5, 0.4, 0.3}}};
        for (int i = 0; i < int(tree.size()); ++i) tasks.blocks.push_back({i, false, {1, 0.5, 2}});
        tasks.setUp(skeleton, 0.8);
        tasks.evaluate(skeleton);
    }
    // Differences of the residuals by one unknown; of the orientation by how far it has turned.
    std::vector<double> difference(std::size_t block, int axis) {
        std::vector<double> sides[2];
        Mat3 turned[2];
        Pose pose;
        skeleton.keep(pose);
        for (int side : {0, 1}) {
            Vec3 move;
            move[axis] = (side ? h : -h) * tasks.blocks[block].scale[axis];
            if (tasks.blocks[block].isTranslation)
                skeleton.joints[0].place += move;
            else
                skeleton.turnBy(tasks.blocks[block].joint, move);
            skeleton.place();
            tasks.evaluate(skeleton);
            sides[side] = tasks.residual;
            turned[side] = skeleton.joints[3].orientation();
            skeleton.restore(pose);
        }
        skeleton.place();
        tasks.evaluate(skeleton);
        for (std::size_t i = 0; i < sides[1].size(); ++i) sides[1][i] = (sides[1][i] - sides[0][i]) / (2 * h);
        Vec3 const rotation = logarithm(transposed(turned[0]) * turned[1]) * (std::sqrt(0.4) / (2 * h));
        for (int k = 0; k < 3; ++k) sides[1][std::size_t(3 + k)] = rotation[k];
        return sides[1];
    }
    void expectDerivatives() {
        tasks.linearise(skeleton);
        for (std::size_t b = 0; b < tasks.blocks.size(); ++b)
            for (int axis = 0; axis < 3; ++axis) {
                std::vector<double> unknowns(std::size_t(tasks.columnCount())), column(tasks.residual.size());
                unknowns[3 * b + std::size_t(axis)] = 1;
                addProduct(tasks, unknowns, column);
                std::vector<double> const expected = difference(b, axis);
                for (std::size_t r = 0; r < column.size(); ++r)
                    EXPECT_NEAR(column[r], expected[r], 1e-5) << "row " << r << ", block " << b << ", axis " << axis;
            }
    }
};

TEST_F(TasksTest, HaveAJacobianThatIsTheLimitOfDifferences) {
    for (int i = 0; i < 20; ++i) setUp(0, false), expectDerivatives();
}
TEST_F(TasksTest, HaveARightJacobianBelowScaledJoints) {
    for (int i = 0; i < 20; ++i) setUp(1.5, false), expectDerivatives();
}
TEST_F(TasksTest, HaveARightJacobianBelowAMirroredJoint) {
    for (int i = 0; i < 20; ++i) setUp(0.5, true), expectDerivatives();
}

TEST_F(TasksTest, GiveTheLinearStepThatSolvesItsNormalEquations) {
    for (bool isWide : {true, false}) {
        setUp(0, false);
        if (!isWide) tasks.blocks.resize(3), tasks.setUp(skeleton, 0.8), tasks.evaluate(skeleton);
        tasks.linearise(skeleton);
        LinearStep linear;
        linear.setUp(tasks);
        linear.form(tasks);
        std::size_t const n = std::size_t(tasks.columnCount());
        std::vector<double> pull(n), step(n), normal(n), left = tasks.residual;
        for (double& p : pull) p = random.between(-1, 1);
        linear.solve(tasks, tasks.residual, 0.01, pull, step);
        addProduct(tasks, step, left);
        addTransposed(tasks, left, normal);
        for (std::size_t i = 0; i < n; ++i) EXPECT_NEAR(normal[i] + 0.01 * (step[i] - pull[i]), 0, 1e-10);
    }
}

// The second derivative of the cost along any move of all joints at once.
TEST_F(TasksTest, BendByTheCurvatureAsTheDifferencesOfTheCostDo) {
    for (bool isMirrored : {false, true}) {
        setUp(0, isMirrored);
        tasks.poles.clear();
        tasks.effectors[0].orientationWeight = 0;
        tasks.setUp(skeleton, 0.8);
        Pose pose;
        skeleton.keep(pose);
        std::vector<double> x(std::size_t(tasks.columnCount())), flat;
        for (double& v : x) v = random.between(-1, 1);
        auto const costAt = [&](double t) {
            for (std::size_t b = 0; b < tasks.blocks.size(); ++b) {
                Block const& block = tasks.blocks[b];
                Vec3 move{x[3 * b] * block.scale.x, x[3 * b + 1] * block.scale.y, x[3 * b + 2] * block.scale.z};
                if (block.isTranslation)
                    skeleton.joints[0].place += move * t;
                else
                    skeleton.turnBy(block.joint, move * t);
            }
            skeleton.place();
            tasks.evaluate(skeleton);
            skeleton.restore(pose);
            return tasks.cost;
        };
        double const d = 1e-4, ahead = costAt(d), back = costAt(-d), here = costAt(0);
        tasks.linearise(skeleton);
        flat.assign(tasks.residual.size(), 0);
        addProduct(tasks, x, flat);
        Curvature curvature;
        curvature.form(tasks, skeleton);
        double bend = curvature.along(x);
        for (double v : flat) bend += v * v;
        EXPECT_NEAR(bend, (ahead - 2 * here + back) / (d * d), 1e-4 * std::abs(bend)) << isMirrored;
    }
}

TEST_F(TasksTest, FindNoStepWhereTheCurvatureBendsDownMoreThanTheDamping) {
    setUp(0, false);
    tasks.linearise(skeleton);
    Curvature down;
    down.form(tasks, skeleton);
    for (std::size_t b = 0; b < tasks.blocks.size(); ++b) down.addRound(b, {-100, -100, -100});
    LinearStep linear;
    linear.setUp(tasks);
    linear.form(tasks, &down);
    std::vector<double> pull(std::size_t(tasks.columnCount())), step;
    EXPECT_FALSE(linear.solve(tasks, tasks.residual, 0.01, pull, step));
    EXPECT_TRUE(linear.solve(tasks, tasks.residual, 1000, pull, step));
    linear.form(tasks);
    EXPECT_TRUE(linear.solve(tasks, tasks.residual, 0.01, pull, step));
}

TEST(Borders, KnowHowTurnsChangeTheAnglesOfALimit) {
    Random random;
    for (int i = 0; i < 200; ++i) {
        JointLimit limit;
        limit.fixedFrame = Qelutils::rotation::toQuaternion(toRotation(random.turn()));
        limit.movingOffset = Qelutils::rotation::toQuaternion(toRotation(random.turn()));
        Skeleton skeleton;
        int const parents[] = {-1};
        Matrix34 const locals[] = {{}};
        skeleton.setUp(locals, parents);
        double const far = i < 10 ? 1e-6 : 1.2;  // also close to no swing at all
        skeleton.joints[0].turn = fromRotation(Qelutils::rotation::fromQuaternion(
            jointRotationAt(limit, {random.between(-2, 2), random.between(-far, far), random.between(-far, far)})));
        Borders borders;
        JointLimit const* const limits[] = {&limit};
        borders.setUp(limits);
        LimitState const state = borders.measure(skeleton, 0);
        Mat3 const turn = skeleton.joints[0].turn;
        for (int axis = 0; axis < 3; ++axis) {
            JointLimitAngles at[2];
            for (int side : {0, 1}) {
                Vec3 move;
                move[axis] = side ? h : -h;
                skeleton.turnBy(0, move);
                at[side] = borders.measure(skeleton, 0).at;
                skeleton.joints[0].turn = turn;
            }
            EXPECT_NEAR(state.twist[axis], (at[1].twist - at[0].twist) / (2 * h), 1e-5);
            EXPECT_NEAR(state.swing1[axis], (at[1].swing1 - at[0].swing1) / (2 * h), 1e-5);
            EXPECT_NEAR(state.swing2[axis], (at[1].swing2 - at[0].swing2) / (2 * h), 1e-5);
        }
    }
}

TEST(Skeleton, PlacesJointsWhoseParentsComeLater) {
    std::vector<Matrix34> locals(3);
    for (Matrix34& m : locals) m.m[3][0] = 1;
    int const parents[] = {-1, 2, 0, -1};
    Skeleton skeleton;
    EXPECT_TRUE(skeleton.setUp(locals, parents));
    skeleton.place();
    EXPECT_EQ(skeleton.joints[1].origin, (Vec3{3, 0, 0}));
    EXPECT_DOUBLE_EQ(skeleton.reach(), 2);
}

TEST(Skeleton, KeepsScaleAndShearOfAJointThatTurns) {
    Matrix34 m{{{2, 0.5F, 0, 0}, {0.3F, 1, 0.2F, 0}, {0, 0, -3, 0}, {1, 2, 3, 0}}};
    int const parents[] = {-1};
    Skeleton skeleton;
    skeleton.setUp({&m, 1}, parents);
    EXPECT_EQ(skeleton.local(0, m), m);
    skeleton.turnBy(0, {0.4, -0.2, 1});
    Matrix34 const turned = skeleton.local(0, m);
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)  // lengths of the axes and angles between them
            EXPECT_NEAR(dot(rowOf(turned, i), rowOf(turned, j)), dot(rowOf(m, i), rowOf(m, j)), 1e-5);
    EXPECT_EQ(rowOf(turned, 3), rowOf(m, 3));
}

TEST(Algebra, TurnsAVectorIntoARotationAndBack) {
    Random random;
    for (int i = 0; i < 100; ++i) {
        Vec3 const v = random.vector(1.5) * (i < 20 ? 1e-7 : 1);
        EXPECT_NEAR(length(logarithm(exponential(v)) - v), 0, 1e-12);
    }
    Vec3 const x = Vec3{1, 0, 0} * exponential({0, 0, pi / 2});
    EXPECT_NEAR(length(x - Vec3{0, 1, 0}), 0, 1e-12);
}

}  // namespace
}  // namespace sg::ik
