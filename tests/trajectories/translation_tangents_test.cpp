#include "tests/trajectories/trajectory_fixture.h"

namespace Tavo {
namespace {

// One key at (1, 0, 0) with handles of the lengths 1 and 2.
struct TranslationTangents : TrajectoryTest {
    TranslationTangents() {
        path.AppendTranslationKeyframe({0, 0, 0}, {1, 0, 0}, {3, 0, 0});
        path.AppendTranslationKeyframe({9, 0, 0});
    }
    void setContinuity(int value) { key(0).Attribute(5).SetEnumeration(value); }
};

TEST_F(TranslationTangents, OfABrokenKeyMoveAlone) {
    path.EditTranslationKeyframeInputTangent(0, {1, 1, 0});
    EXPECT_POINT(in(0), 1, 1, 0);
    EXPECT_POINT(out(0), 3, 0, 0);
    path.EditTranslationKeyframeOutputTangent(0, {1, 0, 5});
    EXPECT_POINT(in(0), 1, 1, 0);
    EXPECT_POINT(out(0), 1, 0, 5);
}

TEST_F(TranslationTangents, OfALinearKeyStayInLineAndKeepTheirRatio) {
    setContinuity(1);
    path.EditTranslationKeyframeInputTangent(0, {1, 3, 0});
    EXPECT_POINT(in(0), 1, 3, 0);
    EXPECT_POINT(out(0), 1, -6, 0);
    path.EditTranslationKeyframeOutputTangent(0, {1, 0, 4});
    EXPECT_POINT(in(0), 1, 0, -2);
}

TEST_F(TranslationTangents, OfALinearCoupledKeyAreSymmetric) {
    setContinuity(2);
    path.EditTranslationKeyframeInputTangent(0, {1, 3, 0});
    EXPECT_POINT(out(0), 1, -3, 0);
    path.EditTranslationKeyframeOutputTangent(0, {2, 0, 4});
    EXPECT_POINT(in(0), 0, 0, -4);
}

TEST_F(TranslationTangents, ALinearKeyWithAHandleOnItDividesByZeroUnguarded) {
    setContinuity(1);
    key(0).Attribute(1).SetVector(at(0));
    path.EditTranslationKeyframeInputTangent(0, {0, 0, 0});
    EXPECT_POINT(in(0), 0, 0, 0);
    EXPECT_TRUE(std::isinf(out(0).X()));
    EXPECT_TRUE(std::isnan(out(0).Y()));
}

TEST_F(TranslationTangents, WhereNoKeyIsNothingHappens) {
    State const before = state();
    path.EditTranslationKeyframeInputTangent(5, {1, 1, 1}).EditTranslationKeyframeOutputTangent(-1, {1, 1, 1});
    EXPECT_EQ(state(), before);
}

TEST_F(TranslationTangents, AnIdNamesAHandleByTheSlotOfItsKey) {
    path.InsertTranslationKeyframe(0, {4, 0, 0});  // the keys of slots 0 and 1 are 1 and 2 now
    path.EditTranslationKeyframeTangentsPoints_interactive({0}, {0, 1, 0});
    EXPECT_POINT(in(1), 0, 1, 0);
    EXPECT_POINT(out(1), 3, 0, 0);
    path.EditTranslationKeyframeTangentsPoints_interactive({1}, {0, 0, 2});
    EXPECT_POINT(out(1), 3, 0, 2);
}

TEST_F(TranslationTangents, HandlesDraggedTogetherMoveByTheirContinuityOneAfterTheOther) {
    setContinuity(2);
    path.EditTranslationKeyframeTangentsPoints_interactive({0, 1}, {0, 1, 0});
    EXPECT_POINT(out(0), 2, 0, 0);  // from (2, -1, 0), the image of the in handle, up by one
    EXPECT_POINT(in(0), 0, 0, 0);
}

TEST_F(TranslationTangents, IdsOfNoHandleArePassedOver) {
    State const before = state();
    path.EditTranslationKeyframeTangentsPoints_interactive({-1, -2, 4, 1000}, {0, 1, 0});
    EXPECT_EQ(state(), before);
}

TEST_F(TranslationTangents, InterpolationIsSetByItsWord) {
    wchar_t const* const words[] = {L"constant", L"linear", L"spline", L"external"};
    for (int i = 0; i < 4; ++i) {
        path.EditTranslationKeyframeInterpolationType(1, words[i]);
        EXPECT_EQ(interpolation(1), i);
    }
    path.EditTranslationKeyframeInterpolationType({0, 1}, L"constant");
    EXPECT_EQ(interpolation(0) + interpolation(1), 0);
}

TEST_F(TranslationTangents, AnUnknownWordChangesNeitherKindNorHandles) {
    setContinuity(1);
    State const before = state();
    for (wchar_t const* word : {L"Broken", L"Coupled", L"", L"smooth"}) {
        path.EditTranslationKeyframeContinuityType(0, word).EditTranslationKeyframeContinuityType({0, 1}, word);
        path.EditTranslationKeyframeInterpolationType(0, word);
    }
    EXPECT_EQ(state(), before);
}

TEST_F(TranslationTangents, BrokenSetsTheKindAlone) {
    setContinuity(2);
    path.EditTranslationKeyframeContinuityType(0, L"broken");
    EXPECT_EQ(continuity(0), 0);
    EXPECT_POINT(in(0), 0, 0, 0);
    EXPECT_POINT(out(0), 3, 0, 0);
}

TEST_F(TranslationTangents, LinearBringsTheHandlesIntoLineAndKeepsTheirLengths) {
    key(0).Attribute(1).SetVector({1, -1, 0});
    key(0).Attribute(3).SetVector({1, 0, 2});
    path.EditTranslationKeyframeContinuityType(0, L"linear");
    float const r = std::sqrt(5.F);  // from one handle to the other: (0, 1, 2)
    EXPECT_EQ(continuity(0), 1);
    EXPECT_POINT(out(0), 1, 2 / r, 4 / r);
    EXPECT_POINT(in(0), 1, -1 / r, -2 / r);
}

TEST_F(TranslationTangents, LinearCoupledGivesBothTheMeanLength) {
    path.EditTranslationKeyframeContinuityType({0}, L"linearCoupled");
    EXPECT_EQ(continuity(0), 2);
    EXPECT_POINT(out(0), 2.5F, 0, 0);
    EXPECT_POINT(in(0), -0.5F, 0, 0);
}

TEST_F(TranslationTangents, HandlesThatLieTogetherAreLaidAlongX) {
    key(0).Attribute(1).SetVector({1, 1, 0});
    key(0).Attribute(3).SetVector({1, 1, 0});
    path.EditTranslationKeyframeContinuityType(0, L"linear");
    EXPECT_POINT(out(0), 2, 0, 0);
    EXPECT_POINT(in(0), 0, 0, 0);
}

}  // namespace
}  // namespace Tavo
