// An object follows a path through the graph: a timing curve says where on the path, the path gives a matrix, the
// conversion splits it, and what it gives drives a transform.
#include "tests/objects/typed_object.h"
#include "tests/trajectories/trajectory_fixture.h"

namespace Tavo {
namespace {

struct MatrixConversionTest : TrajectoryTest {
    MatrixConversionTest() {
        conversion = scene().CreateObject(XMatrixConversion::TypeID);
        follower = scene().CreateObject(XTransform::TypeID);
    }
    void play(std::vector<float> const& times, std::vector<float> const& fractions) {
        connectTiming(times, fractions).InputValue().ConnectInputTo(time().Time());
    }
    // A winding path with turns along it, from the time 1 to the time 3.
    void build() {
        for (int i = 0; i < 6; ++i) path.AppendTranslationKeyframe(point(4));
        for (float at : {0.F, 1.5F, 4.F, 5.F}) path.AttachRotationKeyframe(at, XQuaternion(point(1.4F)));
        play({1, 1.7F, 3}, {0, 0.6F, 1});
        path.SetTranslation(1, -2, 3).SetRotationEulerAngles(0.4F, -0.7F, 1.1F);
    }
    bool drive(XTransform target) {
        return target.TranslationX().ConnectInputTo(conversion.TranslationX()) &&
               target.TranslationY().ConnectInputTo(conversion.TranslationY()) &&
               target.TranslationZ().ConnectInputTo(conversion.TranslationZ()) &&
               target.RotationX().ConnectInputTo(conversion.RotationX()) &&
               target.RotationY().ConnectInputTo(conversion.RotationY()) &&
               target.RotationZ().ConnectInputTo(conversion.RotationZ());
    }
    void giveRest(XTransform target) {
        int const givens[][2] = {{36, 9}, {39, 12}, {42, 15}};  // pre translation, pre rotation, post rotation
        for (auto [from, to] : givens)
            for (int i = 0; i < 3; ++i)
                EXPECT_TRUE(conversion.Attribute(to + i).ConnectInputTo(target.Attribute(from + i)));
        target.SetPreTranslation(point(2)).SetPreRotationEulerAngles(point(2)).SetPostRotationEulerAngles(point(2));
    }
    // `inPath`: the place relative to the path is asked for, otherwise the one in the world.
    void expectToFollow(XMatrix (*placeOf)(XTransform const&), bool inPath) {
        float travelled = 0;
        XVector3 before;
        for (float t = 0.5F; t <= 3.5F; t += 0.0625F) {
            SCOPED_TRACE(t);
            time().Time().SetFloat(t);
            XVector3 place;
            ASSERT_TRUE(path.ComputePosition(path.InputValue().Float(), place));
            if (!inPath) place.Multiply(path.WorldMatrix().Matrix());
            XMatrix const stands = placeOf(follower);
            XMatrix const says = (inPath ? path.LocalCurveMatrix() : path.WorldCurveMatrix()).Matrix();
            ASSERT_TRUE(stands.Translation().IsEqual(place, 1e-5F));
            ASSERT_TRUE(stands.IsEqual(says, 1e-5F));
            if (t > 0.5F) travelled += XVector3(place).Subtract(before).Magnitude();
            before = place;
        }
        EXPECT_GT(travelled, 1) << "it does not stand still";
    }

    static XMatrix world(XTransform const& t) { return t.WorldMatrix().Matrix(); }
    static XMatrix local(XTransform const& t) { return t.LocalMatrix().Matrix(); }

    XMatrixConversion conversion;
    XTransform follower;
};

TEST_F(MatrixConversionTest, IsValidOnItsOwnNodeAlone) {
    expectType<XMatrixConversion>(scene(), L"MatrixConversion", L"MatrixConversion");
}

// clang-format off
TEST_F(MatrixConversionTest, HasItsAttributesAtTheirNumbers) {
    XMatrixConversion const o = conversion;
    expectNumbers(o, {
        TAVO_NUMBER(o, 8, InputMatrix), TAVO_NUMBER(o, 9, PreTranslationX), TAVO_NUMBER(o, 10, PreTranslationY),
        TAVO_NUMBER(o, 11, PreTranslationZ), TAVO_NUMBER(o, 12, PreRotationX), TAVO_NUMBER(o, 13, PreRotationY),
        TAVO_NUMBER(o, 14, PreRotationZ), TAVO_NUMBER(o, 15, PostRotationX), TAVO_NUMBER(o, 16, PostRotationY),
        TAVO_NUMBER(o, 17, PostRotationZ), TAVO_NUMBER(o, 18, TranslationX), TAVO_NUMBER(o, 19, TranslationY),
        TAVO_NUMBER(o, 20, TranslationZ), TAVO_NUMBER(o, 21, RotationX), TAVO_NUMBER(o, 22, RotationY),
        TAVO_NUMBER(o, 23, RotationZ), TAVO_NUMBER(o, 24, RotationQuaternion),
    });
}
// clang-format on

TEST_F(MatrixConversionTest, TheCoreKnowsItsType) {
    EXPECT_TRUE(scene().ObjectDefinition(XMatrixConversion::TypeID));
    EXPECT_TRUE(conversion.IsValid());
    EXPECT_THAT(log.errors(), IsEmpty());
}

TEST_F(MatrixConversionTest, OutputsAreComputedAndAreNotEdited) {
    for (int number = 18; number <= 24; ++number) {
        EXPECT_TRUE(conversion.Attribute(number).IsComputed()) << number;
        EXPECT_FALSE(conversion.Attribute(number).IsEditable()) << number;
    }
    for (int number = 8; number < 18; ++number) EXPECT_TRUE(conversion.Attribute(number).IsEditable()) << number;
}

TEST_F(MatrixConversionTest, AnObjectFollowsAPathInTheWorld) {
    build();
    EXPECT_TRUE(conversion.InputMatrix().ConnectInputTo(path.WorldCurveMatrix()));
    ASSERT_TRUE(drive(follower));
    expectToFollow(world, false);
}

TEST_F(MatrixConversionTest, AnObjectWithRestValuesFollowsAPath) {
    build();
    EXPECT_TRUE(conversion.InputMatrix().ConnectInputTo(path.WorldCurveMatrix()));
    ASSERT_TRUE(drive(follower));
    giveRest(follower);
    expectToFollow(world, false);
}

TEST_F(MatrixConversionTest, AnObjectBelowThePathFollowsItWhereverThePathIsMoved) {
    build();
    XTransform carrier = scene().CreateObject(XTransform::TypeID);
    path.SetParent(carrier);
    follower.SetParent(path);
    EXPECT_TRUE(conversion.InputMatrix().ConnectInputTo(path.LocalCurveMatrix()));
    ASSERT_TRUE(drive(follower));
    expectToFollow(local, true);
    carrier.SetTranslation(5, 6, 7).SetRotationEulerAngles(-0.3F, 0.2F, 2);
    expectToFollow(world, false);
}

TEST_F(MatrixConversionTest, AnEditOfThePathMovesTheObject) {
    append({{0, 0, 0}, {1, 0, 0}});
    play({0, 1}, {0, 1});
    EXPECT_TRUE(conversion.InputMatrix().ConnectInputTo(path.WorldCurveMatrix()));
    ASSERT_TRUE(drive(follower));
    time().Time().SetFloat(1);
    EXPECT_POINT(follower.WorldTranslation(), 1, 0, 0);
    scene().CommitTransient();
    path.AppendTranslationKeyframe({1, 2, 0});
    EXPECT_POINT(follower.WorldTranslation(), 1, 2, 0);
    scene().Undo();
    EXPECT_POINT(follower.WorldTranslation(), 1, 0, 0);
}

TEST_F(MatrixConversionTest, WhatWouldDriveThePathItselfIsRefused) {
    build();
    XTransform carrier = scene().CreateObject(XTransform::TypeID);
    path.SetParent(carrier);
    EXPECT_TRUE(conversion.InputMatrix().ConnectInputTo(path.WorldCurveMatrix()));
    for (XTransform target : {XTransform(path), carrier})
        for (XAttribute attribute : {target.TranslationX(), target.RotationZ()}) {
            log.clear();
            EXPECT_FALSE(attribute.ConnectInputTo(conversion.TranslationX()));
            EXPECT_EQ(log.errors().size(), 1u);
            EXPECT_FALSE(attribute.IsConnectedInput());
        }
    EXPECT_FALSE(path.RotationQuaternion().ConnectInputTo(conversion.RotationQuaternion()));
}

TEST_F(MatrixConversionTest, TheMatrixInThePathsOwnSpaceMayDriveThePath) {
    build();
    EXPECT_TRUE(conversion.InputMatrix().ConnectInputTo(path.LocalCurveMatrix()));
    EXPECT_TRUE(path.TranslationX().ConnectInputTo(conversion.TranslationX()));
}

TEST_F(MatrixConversionTest, TheInputCannotComeFromWhatItDrives) {
    EXPECT_TRUE(follower.RotationX().ConnectInputTo(conversion.RotationX()));
    EXPECT_FALSE(conversion.InputMatrix().ConnectInputTo(follower.WorldMatrix()));
    EXPECT_TRUE(conversion.PreTranslationX().ConnectInputTo(follower.RotationX())) << "no rotation is made of it";
    EXPECT_FALSE(conversion.PreRotationX().ConnectInputTo(follower.RotationX()));
}

}  // namespace
}  // namespace Tavo
