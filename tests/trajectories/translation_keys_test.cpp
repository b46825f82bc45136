#include "tests/trajectories/trajectory_fixture.h"

namespace Tavo {
namespace {

struct TranslationKeys : TrajectoryTest {};

TEST_F(TranslationKeys, APositionAloneMakesALinearKeyWithTheDefaultsOfAnElement) {
    path.AppendTranslationKeyframe({1, 2, 3});
    EXPECT_POINT(at(0), 1, 2, 3);
    EXPECT_EQ(interpolation(0), 1);
    EXPECT_EQ(continuity(0), 1);
    EXPECT_POINT(in(0), 0, 0, 0);
    EXPECT_POINT(out(0), 0, 0, 0);
}

TEST_F(TranslationKeys, OneHandleMakesASplineKeyWithItsMirrorImage) {
    path.AppendTranslationKeyframe({1, 2, 3}, {2, 2, 1});
    EXPECT_POINT(in(0), 0, 2, 5);
    EXPECT_POINT(out(0), 2, 2, 1);
    EXPECT_EQ(interpolation(0), 2);
    EXPECT_EQ(continuity(0), 2);
}

TEST_F(TranslationKeys, TwoHandlesMakeABrokenSplineKey) {
    path.AppendTranslationKeyframe({0, 1, 0}, {1, 2, 3}, {5, 5, 5});
    EXPECT_POINT(in(0), 0, 1, 0);
    EXPECT_POINT(at(0), 1, 2, 3);
    EXPECT_POINT(out(0), 5, 5, 5);
    EXPECT_EQ(interpolation(0), 2);
    EXPECT_EQ(continuity(0), 0);
}

TEST_F(TranslationKeys, AppendedKeysAreNumberedByTheSizeOfTheArray) {
    append({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}});
    EXPECT_THAT(numbers(), ElementsAre(0, 1, 2));
}

TEST_F(TranslationKeys, AnInsertedKeyTakesTheLastSlotAndRaisesThoseBehind) {
    append({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}});
    path.InsertTranslationKeyframe(1, {0.5F, 0, 0});
    EXPECT_THAT(numbers(), ElementsAre(0, 2, 3, 1));
    EXPECT_THAT(xs(), ElementsAre(0, 0.5F, 1, 2));
}

TEST_F(TranslationKeys, InsertionHasTheThreeFormsOfAppending) {
    append({{0, 0, 0}});
    path.InsertTranslationKeyframe(0, {1, 2, 3}, {2, 2, 1});
    EXPECT_POINT(in(0), 0, 2, 5);
    EXPECT_EQ(continuity(0), 2);
    path.InsertTranslationKeyframe(0, {0, 1, 0}, {1, 2, 3}, {5, 5, 5});
    EXPECT_POINT(out(0), 5, 5, 5);
    EXPECT_EQ(continuity(0), 0);
    path.InsertTranslationKeyframe(0, {9, 9, 9});
    EXPECT_EQ(interpolation(0), 1);
    EXPECT_EQ(count(), 4);
}

TEST_F(TranslationKeys, InsertingWhereThereIsNoKeyChangesNothing) {
    path.InsertTranslationKeyframe(0, {1, 2, 3});
    EXPECT_EQ(count(), 0);
    append({{0, 0, 0}, {1, 0, 0}});
    State const before = state();
    for (int parameter : {-1, 2, 100}) path.InsertTranslationKeyframe(parameter, {1, 2, 3});
    EXPECT_EQ(state(), before);
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(TranslationKeys, InsertionLeavesRotationKeysAtTheirNumbers) {
    append({{0, 0, 0}, {1, 0, 0}});
    path.AttachRotationKeyframe(1, XQuaternion());
    path.InsertTranslationKeyframe(1, {0.5F, 0, 0});
    EXPECT_EQ(attach(0), 1);
}

TEST_F(TranslationKeys, TheHighestNumberThereIsStaysWhenKeysAreRaised) {
    append({{0, 0, 0}, {1, 0, 0}});
    slot(1).Attribute(0).SetInteger(std::numeric_limits<int>::max());
    path.InsertTranslationKeyframe(0, {2, 0, 0});
    EXPECT_THAT(numbers(), ElementsAre(1, std::numeric_limits<int>::max(), 0));
}

TEST_F(TranslationKeys, AfterADeletionTheParametersRunWithoutGaps) {
    append({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}});
    path.InsertTranslationKeyframe(1, {0.5F, 0, 0});  // so that slots and parameters differ
    path.DeleteTranslationKeyframe(2);
    EXPECT_THAT(numbers(), ElementsAre(0, 2, 3, 1));
    EXPECT_THAT(xs(), ElementsAre(0, 0.5F, 2, 3));
}

TEST_F(TranslationKeys, AListIsDeletedAsItsKeysWereNamedBefore) {
    append({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}, {4, 0, 0}});
    path.DeleteTranslationKeyframe({3, 0, 3, 9, 1});
    EXPECT_THAT(xs(), ElementsAre(2, 4));
    EXPECT_THAT(numbers(), ElementsAre(0, 1));
}

TEST_F(TranslationKeys, ADeletionClosesGapsThatWereThere) {
    append({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}});
    slot(2).Attribute(0).SetInteger(7);
    path.DeleteTranslationKeyframe(0);
    EXPECT_THAT(numbers(), ElementsAre(0, 1));
}

TEST_F(TranslationKeys, DeletingWhatIsNotThereChangesNothing) {
    append({{0, 0, 0}, {1, 0, 0}});
    State const before = state();
    path.DeleteTranslationKeyframe(2).DeleteTranslationKeyframe({-1, 5}).DeleteTranslationKeyframe(IDs{});
    EXPECT_EQ(state(), before);
}

TEST_F(TranslationKeys, ADeletionLeavesRotationKeysEvenPastTheEnd) {
    append({{0, 0, 0}, {1, 0, 0}});
    path.AttachRotationKeyframe(1, XQuaternion());
    path.DeleteTranslationKeyframe(1);
    EXPECT_EQ(attach(0), 1);
}

TEST_F(TranslationKeys, EachOperationIsOneStepThatUndoTakesBack) {
    append({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}});
    State const before = state();
    int const steps = undoCount();
    path.DeleteTranslationKeyframe({0, 2});
    EXPECT_EQ(undoCount(), steps + 1);
    path.InsertTranslationKeyframe(0, {5, 5, 5}, {6, 6, 6});
    EXPECT_EQ(undoCount(), steps + 2);
    scene().Undo();
    scene().Undo();
    EXPECT_EQ(state(), before);
}

TEST_F(TranslationKeys, InOneBlockOfTheCallerTheyAreOneStepTogether) {
    int const steps = undoCount();
    scene().BeginChangeBlock();
    append({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}});
    scene().EndChangeBlock(L"Three Keys");
    EXPECT_EQ(undoCount(), steps + 1);
}

}  // namespace
}  // namespace Tavo
