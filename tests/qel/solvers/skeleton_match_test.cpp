// Matching the joints of two skeletons: by their names, by their shapes, by what is given.
#include "qel/solvers/skeleton_match.h"
#include "tests/qel/solvers/humanoid.h"
#include <algorithm>
#include <gtest/gtest.h>
#include <limits>

namespace sg {
namespace {

SkeletonMatch matched(Skeleton const& source, Skeleton const& target, std::vector<JointPair> const& given = {},
                      bool matchesRest = true) {
    SkeletonMatch match;
    match.source = &source;
    match.target = &target;
    match.given = given;
    match.matchesRest = matchesRest;
    EXPECT_TRUE(match.Run());
    match.given = {};
    return match;
}

int jointNamed(Skeleton const& s, std::wstring const& name) {
    auto const it = std::find(s.names.begin(), s.names.end(), name);
    EXPECT_NE(it, s.names.end());
    return int(it - s.names.begin());
}

std::wstring sourceOf(SkeletonMatch const& match, std::wstring const& target) {
    JointMatch const* m = match.matchOf(jointNamed(*match.target, target));
    return m ? match.source->names[std::size_t(m->source)] : L"";
}

// The same skeleton under other names: the counterpart of each joint has its index.
double shareOfCoreFound(SkeletonMatch const& match, Skeleton const& labelled) {
    std::vector<BodyLabel> const labels = labelBody(labelled, anchorsByName(labelled));
    int core = 0, found = 0;
    for (int i = 0; i < int(labels.size()); ++i) {
        if (!isCore(labels[std::size_t(i)].part)) continue;
        JointMatch const* m = match.matchOf(i);
        ++core;
        found += m && m->source == i && m->blendSource < 0;
    }
    EXPECT_GE(core, 20);
    return double(found) / core;
}

// ---- names ----

struct NameCase {
    wchar_t const* name;
    BodyPart part;
    BodySide side;
};

// All of one skeleton, so that words may be told from each other by those that it has besides.
using Family = std::vector<NameCase>;

void expectLabels(Family const& family, std::vector<int> const& parents) {
    Skeleton s;
    double height = 0;
    for (std::size_t i = 0; i < family.size(); ++i) {
        s.names.push_back(family[i].name);
        s.parents.push_back(parents[i]);
        Qelp::Matrix34 m;
        m.m[3][1] = float(height += 0.1);
        s.origins.push_back(m);
    }
    std::vector<BodyLabel> const labels = labelBody(s, anchorsByName(s));
    for (std::size_t i = 0; i < family.size(); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(int(labels[i].part), int(family[i].part));
        EXPECT_EQ(int(labels[i].side), int(family[i].side));
    }
}

// hips, spine, head, then for the left and the right: collar, arm, forearm, hand, thigh, shin, foot, toe
std::vector<int> const usualParents = {-1, 0, 1, 1, 3, 4, 5, 0, 7, 8, 9, 1, 11, 12, 13, 0, 15, 16, 17};
constexpr BodyPart sided[] = {BodyPart::Collar, BodyPart::UpperArm, BodyPart::Forearm, BodyPart::Hand,
                              BodyPart::Thigh,  BodyPart::Shin,     BodyPart::Foot,    BodyPart::Toe};

Family familyOf(std::vector<wchar_t const*> const& names) {
    Family out;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (i < 3)
            out.push_back({names[i],
                           i == 0   ? BodyPart::Hips
                           : i == 1 ? BodyPart::Spine
                                    : BodyPart::Head,
                           BodySide::Middle});
        else
            out.push_back({names[i], sided[(i - 3) % 8], i < 11 ? BodySide::Left : BodySide::Right});
    }
    return out;
}

TEST(JointNames, OfManyFamiliesAreUnderstood) {
    std::vector<std::vector<wchar_t const*>> const families = {
        {L"Hips", L"Spine", L"Head", L"LeftShoulder", L"LeftArm", L"LeftForeArm", L"LeftHand", L"LeftUpLeg", L"LeftLeg",
         L"LeftFoot", L"LeftToeBase", L"RightShoulder", L"RightArm", L"RightForeArm", L"RightHand", L"RightUpLeg",
         L"RightLeg", L"RightFoot", L"RightToeBase"},
        {L"a:Hips", L"a:Chest", L"a:Head", L"a:LeftCollar", L"a:LeftShoulder", L"a:LeftElbow", L"a:LeftWrist",
         L"a:LeftHip", L"a:LeftKnee", L"a:LeftAnkle", L"a:LeftToe", L"a:RightCollar", L"a:RightShoulder",
         L"a:RightElbow", L"a:RightWrist", L"a:RightHip", L"a:RightKnee", L"a:RightAnkle", L"a:RightToe"},
        {L"pelvis", L"spine_01", L"head", L"clavicle_l", L"upperarm_l", L"lowerarm_l", L"hand_l", L"thigh_l", L"calf_l",
         L"foot_l", L"ball_l", L"clavicle_r", L"upperarm_r", L"lowerarm_r", L"hand_r", L"thigh_r", L"calf_r", L"foot_r",
         L"ball_r"},
        {L"X01 Pelvis", L"X01 Spine", L"X01 Head", L"X01 L Clavicle", L"X01 L UpperArm", L"X01 L Forearm",
         L"X01 L Hand", L"X01 L Thigh", L"X01 L Calf", L"X01 L Foot", L"X01 L Toe0", L"X01 R Clavicle",
         L"X01 R UpperArm", L"X01 R Forearm", L"X01 R Hand", L"X01 R Thigh", L"X01 R Calf", L"X01 R Foot",
         L"X01 R Toe0"},
        {L"hip", L"abdomen", L"head", L"lcollar", L"lshldr", L"lforearm", L"lhand", L"lthigh", L"lshin", L"lfoot",
         L"ltoe", L"rcollar", L"rshldr", L"rforearm", L"rhand", L"rthigh", L"rshin", L"rfoot", L"rtoe"},
        {L"HIPS", L"TORSO", L"HEAD", L"COLLAR.L", L"UPPER_ARM.L", L"LOWER_ARM.L", L"WRIST.L", L"UPPER_LEG.L",
         L"LOWER_LEG.L", L"ANKLE.L", L"TOES.L", L"COLLAR.R", L"UPPER_ARM.R", L"LOWER_ARM.R", L"WRIST.R", L"UPPER_LEG.R",
         L"LOWER_LEG.R", L"ANKLE.R", L"TOES.R"},
    };
    for (auto const& names : families) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(names[3])));
        expectLabels(familyOf(names), usualParents);
    }
}

TEST(JointNames, AShoulderBeforeAnArmIsACollarAndBeforeAnElbowTheArm) {
    Skeleton s = humanoid();
    int const shoulder = jointNamed(s, L"LeftShoulder");
    EXPECT_EQ(labelBody(s, anchorsByName(s))[std::size_t(shoulder)].part, BodyPart::Collar);
    HumanoidOptions o;
    o.naming = Naming::Points;
    s = humanoid(o);
    EXPECT_EQ(labelBody(s, anchorsByName(s))[std::size_t(jointNamed(s, L"rig:l_shoulder"))].part, BodyPart::UpperArm);
}

TEST(JointNames, HelpersAreNoPartsOfABody) {
    Skeleton s = humanoid();
    s.names[std::size_t(jointNamed(s, L"LeftHand"))] = L"LeftForeArmTwist";
    EXPECT_EQ(anchorsByName(s).arms[0].end, -1);
}

// ---- shapes ----

TEST(BodyShape, IsFoundInAnyRestPose) {
    struct Case {
        wchar_t const* what;
        double armsDown, legsApart, kneesBent, facing;
        bool turnsAxes, isZUp;
    };
    for (auto const& c : std::initializer_list<Case>{{L"T", 0, 0, 0, 0, false, false},
                                                     {L"A", 0.8, 0.1, 0, 0, false, false},
                                                     {L"arms hanging", 1.5, 0, 0, 0, true, false},
                                                     {L"arms raised", -1.2, 0.4, 0, 1, true, false},
                                                     {L"crouched", 0.4, 0.3, 0.9, 0, false, false},
                                                     {L"Z up", 0, 0.2, 0, 0, true, true},
                                                     {L"turned", 0.3, 0, 0, 2.5, false, true}})
        for (auto const& base : {HumanoidOptions(), small(), large()}) {
            SCOPED_TRACE(testing::PrintToString(std::wstring(c.what)));
            HumanoidOptions o = base;
            o.armsDown = c.armsDown, o.legsApart = c.legsApart, o.kneesBent = c.kneesBent, o.facing = c.facing;
            o.turnsAxes = c.turnsAxes, o.isZUp = c.isZUp;
            Skeleton const s = humanoid(o);
            BodyAnchors const byName = anchorsByName(s), byShape = anchorsByShape(s);
            for (int i = 0; i < BodyAnchors::total; ++i) EXPECT_EQ(byShape.at(i), byName.at(i)) << i;
        }
}

TEST(BodyShape, IsNotFoundWhereThereIsNoBody) {
    Skeleton chain;
    for (int i = 0; i < 40; ++i) {
        Qelp::Matrix34 m;
        m.m[3][0] = 1;
        chain.names.push_back(L"j"), chain.parents.push_back(i - 1), chain.origins.push_back(m);
    }
    EXPECT_EQ(anchorsByShape(chain).count(), 0);
    for (auto& m : chain.origins) m = {};
    EXPECT_EQ(anchorsByShape(chain).count(), 0);
    EXPECT_EQ(anchorsByShape({}).count(), 0);
}

// ---- matches ----

TEST(SkeletonMatch, ASkeletonMatchesItselfJointByJointAndSurely) {
    for (auto const& o : {HumanoidOptions(), small(), large()}) {
        Skeleton const s = humanoid(o);
        SkeletonMatch const match = matched(s, s);
        ASSERT_EQ(match.matches.size(), s.size());
        for (int i = 0; i < int(s.size()); ++i) {
            EXPECT_EQ(match.matches[std::size_t(i)].source, i);
            EXPECT_EQ(match.matches[std::size_t(i)].target, i);
            EXPECT_EQ(match.confidence(i), 1) << i;
        }
        EXPECT_TRUE(match.unmatchedSource.empty() && match.unmatchedTarget.empty());
    }
}

TEST(SkeletonMatch, FindsTheCoreUnderAnyVocabulary) {
    for (Naming a : {Naming::Words, Naming::Anatomy, Naming::Points})
        for (Naming b : {Naming::Words, Naming::Anatomy, Naming::Points})
            for (auto o : {small(), large()}) {
                o.naming = a;
                Skeleton const source = humanoid(o);
                o.naming = b;
                Skeleton const target = humanoid(o);
                EXPECT_EQ(shareOfCoreFound(matched(source, target), target), 1) << int(a) << int(b);
            }
}

TEST(SkeletonMatch, FindsTheCoreWhereOneSidesNamesAreScrambled) {
    for (auto const& base : {HumanoidOptions(), small(), large()})
        for (double armsDown : {0.0, 0.8}) {
            HumanoidOptions o = base;
            Skeleton const target = humanoid(o);
            o.naming = Naming::Scrambled, o.armsDown = armsDown, o.size = 1.7, o.legs = 1.2, o.turnsAxes = true;
            Skeleton const source = humanoid(o);
            EXPECT_GE(shareOfCoreFound(matched(source, target), target), 0.95);
            SkeletonMatch const back = matched(target, source);
            EXPECT_GE(shareOfCoreFound(back, target), 0.95);
            for (JointMatch const& m : back.matches) EXPECT_LE(m.confidence, 0.7);
        }
}

TEST(SkeletonMatch, DistrustsNamesThatContradictTheShape) {
    for (unsigned seed = 1; seed < 6; ++seed) {
        SCOPED_TRACE(seed);
        Skeleton const target = humanoid(small());
        Skeleton source = target;
        std::shuffle(source.names.begin(), source.names.end(), std::mt19937(seed));
        EXPECT_GE(shareOfCoreFound(matched(source, target), target), 0.95);
    }
}

TEST(SkeletonMatch, NamesNeedNotBeUsed) {
    Skeleton const s = humanoid(small());
    SkeletonMatch match;
    match.source = match.target = &s, match.usesNames = false;
    ASSERT_TRUE(match.Run());
    EXPECT_EQ(shareOfCoreFound(match, s), 1);
    for (JointMatch const& m : match.matches) EXPECT_NE(int(m.basis), int(MatchBasis::Name));
}

TEST(SkeletonMatch, AThighThatIsSplitOnOneSideFollowsTheWholeTurn) {
    Skeleton const whole = humanoid();
    Skeleton split = whole;  // the knee hangs on a second part of the thigh
    int const thigh = jointNamed(whole, L"LeftUpLeg");
    split.names.insert(split.names.begin() + thigh + 1, L"LeftUpLeg2");
    split.parents.insert(split.parents.begin() + thigh + 1, thigh);
    split.origins.insert(split.origins.begin() + thigh + 1, whole.origins[std::size_t(thigh) + 1]);
    for (std::size_t i = std::size_t(thigh) + 2; i < split.size(); ++i)
        if (split.parents[i] >= thigh) ++split.parents[i];
    for (int i : {thigh + 1, thigh + 2}) split.origins[std::size_t(i)].m[3][1] *= 0.5F;
    SkeletonMatch const match = matched(split, whole);
    ASSERT_TRUE(match.matchOf(thigh));
    EXPECT_EQ(match.matchOf(thigh)->source, thigh + 1);
    EXPECT_EQ(match.matchOf(thigh)->boneStart(), thigh);
    EXPECT_EQ(sourceOf(match, L"LeftLeg"), L"LeftLeg");
    SkeletonMatch const back = matched(whole, split);
    EXPECT_EQ(sourceOf(back, L"LeftUpLeg"), L"LeftUpLeg");
    EXPECT_EQ(back.confidence(thigh + 1), 0) << "the second part goes along";
}

TEST(SkeletonMatch, ADeepSkeletonTakesNoTimeAndNoStack) {
    Skeleton chain;
    for (int i = 0; i < 20'000; ++i) chain.parents.push_back(i - 1);
    chain.names.resize(chain.size(), L"link"), chain.origins.resize(chain.size());
    EXPECT_EQ(matched(chain, chain).matches.size(), chain.size());
    Skeleton star;
    for (int i = 0; i < 5000; ++i) star.parents.push_back(i ? 0 : -1);
    star.names.resize(star.size(), L"ray"), star.origins.resize(star.size());
    EXPECT_GE(matched(star, star).matches.size(), 1u);
}

TEST(SkeletonMatch, LeftStaysLeftByTheNamesEvenIfTheFeetPointBackwards) {
    HumanoidOptions o;
    Skeleton const source = humanoid(o);
    Skeleton target = source;
    for (std::size_t i = 0; i < target.size(); ++i)
        for (auto [from, to] : {std::pair(L"Left", L"Right"), std::pair(L"Right", L"Left")})
            if (source.names[i].starts_with(from)) target.names[i] = to + source.names[i].substr(wcslen(from));
    SkeletonMatch const match = matched(source, target);
    EXPECT_EQ(sourceOf(match, L"LeftArm"), L"LeftArm");
    EXPECT_EQ(sourceOf(match, L"RightFoot"), L"RightFoot");
}

TEST(SkeletonMatch, ASpineOfAnotherCountIsMatchedAlongItsLength) {
    HumanoidOptions three, five;
    five.spines = 5;
    Skeleton const source = humanoid(three), target = humanoid(five);
    SkeletonMatch const up = matched(source, target), down = matched(target, source);
    int const last = jointNamed(target, L"Spine4");
    ASSERT_TRUE(up.matchOf(last));
    EXPECT_EQ(up.matchOf(last)->source, jointNamed(source, L"Spine2"));
    EXPECT_EQ(up.matchOf(last)->blendSource, -1);
    JointMatch const* const first = up.matchOf(jointNamed(target, L"Spine"));
    ASSERT_TRUE(first);
    EXPECT_EQ(first->source, jointNamed(source, L"Hips"));
    EXPECT_EQ(first->blendSource, jointNamed(source, L"Spine"));
    EXPECT_NEAR(first->blend, 0.6, 1e-12);
    EXPECT_EQ(sourceOf(down, L"Spine2"), L"Spine4");
    EXPECT_TRUE(up.unmatchedSource.empty() && up.unmatchedTarget.empty());
}

TEST(SkeletonMatch, ListsWhatHasNoCounterpart) {
    HumanoidOptions bare, faced;
    faced.hasFace = true;
    Skeleton const source = humanoid(faced), target = humanoid(bare);
    SkeletonMatch const match = matched(source, target);
    std::vector<std::wstring> names;
    for (int i : match.unmatchedSource) names.push_back(source.names[std::size_t(i)]);
    EXPECT_EQ(names, (std::vector<std::wstring>{L"Jaw", L"LeftEye", L"RightEye"}));
    EXPECT_EQ(match.confidence(int(target.size()) + 5), 0);
}

TEST(SkeletonMatch, WhatIsNoBodyIsMatchedByNamesAndThenByPlace) {
    Skeleton a;
    auto const add = [&](wchar_t const* name, int parent, float x, float y) {
        Qelp::Matrix34 m;
        m.m[3][0] = x, m.m[3][1] = y;
        a.names.push_back(name), a.parents.push_back(parent), a.origins.push_back(m);
    };
    add(L"trunkOne", -1, 0, 0), add(L"twigA", 0, 1, 0), add(L"twigB", 0, 0, 1), add(L"leaf", 2, 1, 1);
    Skeleton b = a;
    SkeletonMatch const same = matched(a, b);
    EXPECT_EQ(same.matches.size(), 4u);
    for (std::size_t i = 0; i < 4; ++i) b.names[i] = std::wstring(1, wchar_t(L'z' - i));
    SkeletonMatch const place = matched(a, b);
    ASSERT_EQ(place.matches.size(), 4u);
    for (JointMatch const& m : place.matches) {
        EXPECT_EQ(m.source, m.target);
        EXPECT_EQ(int(m.basis), int(MatchBasis::Place));
        EXPECT_GT(m.confidence, 0);
        EXPECT_LE(m.confidence, 0.5);
    }
}

TEST(SkeletonMatch, WhatIsGivenHolds) {
    Skeleton const s = humanoid(small());
    int const left = jointNamed(s, L"LeftArm"), right = jointNamed(s, L"RightArm");
    SkeletonMatch const match = matched(s, s, {{left, right}, {right, left}});
    EXPECT_EQ(match.matchOf(right)->source, left);
    EXPECT_EQ(match.matchOf(left)->source, right);
    EXPECT_EQ(match.confidence(left), 1);
    EXPECT_EQ(int(match.matchOf(left)->basis), int(MatchBasis::Given));
    EXPECT_EQ(sourceOf(match, L"LeftHand"), L"LeftHand") << "the rest is matched";
}

TEST(SkeletonMatch, TheRestMayBeLeftUnmatched) {
    Skeleton const s = humanoid(small());
    SkeletonMatch const match = matched(s, s, {{0, 0}, {3, 3}}, false);
    EXPECT_EQ(match.matches.size(), 2u);
    EXPECT_EQ(match.unmatchedSource.size(), s.size() - 2);
    EXPECT_EQ(match.unmatchedTarget.size(), s.size() - 2);
    EXPECT_EQ(match.meanConfidence(), 1);
}

TEST(SkeletonMatch, EveryInvalidInputIsRefusedAndNothingChanges) {
    Skeleton const good = humanoid();
    auto const expectRefused = [&](Skeleton const* source, Skeleton const* target, std::vector<JointPair> const& given,
                                   char const* what) {
        SCOPED_TRACE(what);
        SkeletonMatch match;
        match.source = source, match.target = target, match.given = given;
        match.matches.resize(3);
        EXPECT_FALSE(match.Validate());
        EXPECT_FALSE(match.Run());
        EXPECT_EQ(match.matches.size(), 3u);
    };
    expectRefused(nullptr, &good, {}, "no source");
    expectRefused(&good, nullptr, {}, "no target");
    Skeleton bad = good;
    bad.parents[1] = 5;
    expectRefused(&bad, &good, {}, "a parent that stands later");
    bad = good, bad.parents[1] = -2;
    expectRefused(&good, &bad, {}, "a parent below -1");
    bad = good, bad.names.pop_back();
    expectRefused(&good, &bad, {}, "names are missing");
    bad = good, bad.origins.pop_back();
    expectRefused(&good, &bad, {}, "origins are missing");
    bad = good, bad.origins[2].m[1][1] = std::numeric_limits<float>::quiet_NaN();
    expectRefused(&good, &bad, {}, "not a number");
    expectRefused(&good, &good, {{0, 999}}, "no such target");
    expectRefused(&good, &good, {{-1, 0}}, "no such source");
    expectRefused(&good, &good, {{0, 1}, {0, 2}}, "a source twice");
    expectRefused(&good, &good, {{0, 1}, {2, 1}}, "a target twice");
}

TEST(SkeletonMatch, EmptySkeletonsHaveNoMatches) {
    Skeleton const none, s = humanoid();
    EXPECT_TRUE(matched(none, none).matches.empty());
    EXPECT_EQ(matched(none, s).unmatchedTarget.size(), s.size());
    EXPECT_EQ(matched(s, none).unmatchedSource.size(), s.size());
    EXPECT_EQ(matched(none, s).meanConfidence(), 0);
}

TEST(SkeletonMatch, IsTheSameEachTime) {
    HumanoidOptions o = large();
    Skeleton const source = humanoid(o);
    o.naming = Naming::Scrambled;
    Skeleton const target = humanoid(o);
    SkeletonMatch const a = matched(source, target), b = matched(source, target);
    ASSERT_EQ(a.matches.size(), b.matches.size());
    for (std::size_t i = 0; i < a.matches.size(); ++i) {
        EXPECT_EQ(a.matches[i].source, b.matches[i].source);
        EXPECT_EQ(a.matches[i].confidence, b.matches[i].confidence);
    }
}

TEST(SkeletonMatch, SurvivesAnySkeleton) {
    std::mt19937 random(11);
    for (int round = 0; round < 200; ++round) {
        SCOPED_TRACE(round);
        Skeleton two[2];
        for (Skeleton& s : two)
            for (int i = 0, n = int(random() % 40); i < n; ++i) {
                Qelp::Matrix34 m;
                for (int axis = 0; axis < 3; ++axis) m.m[3][axis] = random() % 3 ? float(random() % 7) - 3 : 0.F;
                s.names.push_back(humanoid().names[random() % 19]);
                s.parents.push_back(i ? int(random() % unsigned(i + 1)) - 1 : -1);
                s.origins.push_back(m);
            }
        SkeletonMatch const match = matched(two[0], two[1]);
        std::vector<bool> seen(two[1].size());
        for (JointMatch const& m : match.matches) {
            ASSERT_FALSE(seen[std::size_t(m.target)]) << "each target once";
            seen[std::size_t(m.target)] = true;
            ASSERT_TRUE(m.confidence > 0 && m.confidence <= 1);
            ASSERT_LT(m.source, int(two[0].size()));
            ASSERT_LT(m.blendSource, int(two[0].size()));
        }
        EXPECT_EQ(match.matches.size() + match.unmatchedTarget.size(), two[1].size());
    }
}

}  // namespace
}  // namespace sg
