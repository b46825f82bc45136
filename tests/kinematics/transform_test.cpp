#include "tests/kinematics/transform_fixture.h"

namespace Tavo {
namespace {

// ---- reading ----

TEST_F(TransformTest, APlaceThatHasNoNumbersBelowAParentOfNoSizeIsNotTaken) {
    XMatrix const before = joint.LocalMatrix().Matrix();
    for (float const scale : {0.f, 1e-30f, 1e-38f}) {
        parent.SetScale(scale, scale, scale);
        joint.SetWorldMatrix(place()).WorldTranslate(vector(5)).WorldRotateByEulerAngles(vector(1));
        for (float const value : numbers(joint.LocalMatrix().Matrix())) EXPECT_TRUE(std::isfinite(value)) << scale;
    }
    parent.SetScale(1e-38f, 1e-38f, 1e-38f);
    joint.SetLocalMatrix(before).SetWorldMatrix(XMatrix().SetTranslation(100, 100, 100));
    EXPECT_MATRIX(joint.LocalMatrix().Matrix(), before);
}

TEST_F(TransformTest, TheWorldMatrixIsTheLocalOneTimesTheParentsWorld) {
    joint.SetTranslation(1, 0, 0);
    EXPECT_MATRIX(joint.WorldMatrix().Matrix(), joint.ConvertToWorldSpace(joint.LocalMatrix().Matrix()));
    EXPECT_MATRIX(joint.ParentWorldMatrix().Matrix(), parent.WorldMatrix().Matrix());
    XMatrix const m = place();
    EXPECT_MATRIX(joint.ConvertToLocalSpace(joint.ConvertToWorldSpace(m)), m);
}

TEST_F(TransformTest, TheComponentsMakeTheLocalMatrix) {
    offset(joint);
    joint.SetTranslation(vector(3)).SetRotationEulerAngles(vector(1)).SetScale(2, 3, 4);
    XMatrix product = joint.LocalScaleMatrix();
    for (XMatrix const& m :
         {joint.LocalPostRotationMatrix(), joint.LocalRotationMatrix(), joint.LocalPreRotationMatrix(),
          joint.LocalTranslationMatrix(), joint.LocalPreTranslationMatrix()})
        product.Multiply(m);
    EXPECT_MATRIX(product, joint.LocalMatrix().Matrix());
    EXPECT_VECTOR(joint.LocalScale(), XVector3(2, 3, 4));
    EXPECT_TRUE(XTransform().LocalScaleMatrix().IsIdentity());
    EXPECT_VECTOR(XTransform().LocalScale(), XVector3(1, 1, 1));
}

TEST_F(TransformTest, WorldScaleIsTheDiagonalAndNotTheAxesLengths) {
    XMatrix const world = joint.WorldMatrix().Matrix();
    EXPECT_EQ(joint.WorldScale().X(), world.Element(0, 0));
    EXPECT_LT(joint.WorldScale().Y(), 1);
}

TEST_F(TransformTest, RotationReadsItsAnglesAsXYZWhateverTheOrderIs) {
    XVector3 const angles(0.1F, 0.2F, 0.3F);
    joint.SetRotationEulerAngles(angles);
    joint.RotationEulerOrder().SetEnumeration(5);
    EXPECT_TRUE(joint.Rotation() == XQuaternion(angles));
    EXPECT_FALSE(joint.LocalRotation().IsEqual(XQuaternion(angles), 1e-3F));
}

TEST_F(TransformTest, TheHierarchyOfTransforms) {
    XJoint const child(scene().CreateObject(XJoint::TypeID, joint));
    Qelutils::Vector<XObject> found;
    parent.ChildTransforms(found);
    EXPECT_EQ(found.size(), 1U);
    parent.DescendantTransforms(found);
    EXPECT_EQ(found.size(), 2U);
    EXPECT_TRUE(child.ParentTransform() == joint);
    EXPECT_TRUE(child.RootTransform() == parent);
    EXPECT_EQ(child.Depth(), parent.Depth() + 2);
}

// ---- the attributes ----

TEST_F(TransformTest, RotationWritersKeepAnglesAndQuaternionInStep) {
    XVector3 const angles(0.3F, -0.2F, 0.4F);
    XQuaternion const q(angles);
    auto const expectStep = [&] {
        EXPECT_NEAR(joint.RotationX().Float(), angles.X(), 1e-6F);
        EXPECT_NEAR(joint.RotationY().Float(), angles.Y(), 1e-6F);
        EXPECT_NEAR(joint.RotationZ().Float(), angles.Z(), 1e-6F);
        for (unsigned i = 0; i < 4; ++i) EXPECT_NEAR(joint.RotationQuaternion().Attribute(int(i)).Float(), q[i], 1e-6F);
        joint.SetRotationEulerAngles(0, 0, 0);
    };
    joint.SetRotationEulerAngles(angles), expectStep();
    joint.SetRotationQuaternion(q), expectStep();
    joint.SetRotationAxisAngle(q.RotationAxis(), q.RotationAngle()), expectStep();
}

TEST_F(TransformTest, PreAndPostRotationAreWrittenAsAngles) {
    XVector3 const angles(0.3F, -0.2F, 0.4F);
    joint.SetPreRotationQuaternion(XQuaternion(angles)).SetPostRotationQuaternion(XQuaternion(angles));
    EXPECT_NEAR(joint.PreRotationZ().Float(), 0.4F, 1e-6F);
    EXPECT_NEAR(joint.PostRotationX().Float(), 0.3F, 1e-6F);
    joint.SetPreRotationEulerAngles(XVector3()).SetPostRotationEulerAngles(XVector3(1, 2, 3));
    EXPECT_TRUE(joint.PreRotation().IsIdentity());
    EXPECT_EQ(joint.PostRotationZ().Float(), 3);
}

// ---- the local and the world matrix ----

TEST_F(TransformTest, MatricesWrittenAreReadBack) {
    SCOPED_TRACE(seed);
    for (int i = 0; i < 200; ++i) {
        offset(joint);
        XMatrix const local = place(), world = place();
        EXPECT_MATRIX(joint.SetLocalMatrix(local).LocalMatrix().Matrix(), local);
        EXPECT_MATRIX(joint.SetWorldMatrix(world).WorldMatrix().Matrix(), world);
    }
}

TEST_F(TransformTest, ScaleIsWrittenWithAMatrixWhereNoOffsetTurnsIt) {
    SCOPED_TRACE(seed);
    for (int i = 0; i < 50; ++i) {
        XMatrix const m = XMatrix(quaternion()).ScaleBy(XVector3(1.5F, 2, 0.5F)).SetTranslation(vector(5));
        EXPECT_MATRIX(joint.SetLocalMatrix(m).LocalMatrix().Matrix(), m);
    }
}

TEST_F(TransformTest, InAnotherOrderTranslationComesBackAndRotationOnlyAboutOneAxisOnPurpose) {
    SCOPED_TRACE(seed);
    for (int order = 0; order < 6; ++order) {
        joint.RotationEulerOrder().SetEnumeration(order);
        for (XVector3 const& angles : {XVector3(0.4F, 0, 0), XVector3(0, 0.4F, 0), XVector3(0, 0, 0.4F)}) {
            XMatrix const m = XMatrix(XQuaternion(angles)).SetTranslation(vector(5));
            EXPECT_MATRIX(joint.SetLocalMatrix(m).LocalMatrix().Matrix(), m);
        }
        XMatrix const m = XMatrix(XQuaternion(XVector3(0.4F, 0.5F, 0.6F))).SetTranslation(vector(5));
        joint.SetLocalMatrix(m);
        EXPECT_VECTOR(joint.LocalTranslation(), m.Translation());
        // Written as "XYZ" angles, though read by the order: they go through a quaternion of "XYZ" and come back.
        EXPECT_VECTOR(XVector3(joint.Rotation()), m.RotationEulerAngles(order));
        EXPECT_MATRIX(joint.LocalMatrix().Matrix(), m);
    }
}

TEST_F(TransformTest, TheModeSaysWhatIsWritten) {
    XMatrix const m = XMatrix(XQuaternion(XVector3(0, 0, 1))).SetTranslation(1, 2, 3);
    joint.SetLocalMatrix(m, XTransform::UpdateTranslation);
    EXPECT_EQ(joint.RotationZ().Float(), 0);
    EXPECT_EQ(joint.TranslationY().Float(), 2);
    joint.SetTranslation(0, 0, 0).SetLocalMatrix(m, XTransform::UpdateRotation);
    EXPECT_NEAR(joint.RotationZ().Float(), 1, 1e-6F);
    EXPECT_EQ(joint.TranslationY().Float(), 0);
    joint.SetLocalMatrix(XMatrix(), 3);
    EXPECT_NEAR(joint.RotationZ().Float(), 1, 1e-6F);
}

TEST_F(TransformTest, AVectorOfOtherThanSixteenValuesIsTheIdentity) {
    joint.SetTranslation(1, 2, 3).SetLocalMatrix(Qelutils::Vector<float>(3, 7.F));
    EXPECT_TRUE(joint.LocalMatrix().Matrix().IsIdentity());
    joint.SetWorldMatrix(numbers(place()));
    EXPECT_FALSE(joint.LocalMatrix().Matrix().IsIdentity());
}

TEST_F(TransformTest, WorldWritersReachTheWorld) {
    SCOPED_TRACE(seed);
    for (int i = 0; i < 50; ++i) {
        offset(joint);
        XVector3 const p = vector(5), axis = vector(1).Normalize();
        XQuaternion const q = quaternion();
        EXPECT_VECTOR(joint.SetWorldTranslation(p).WorldTranslation(), p);
        joint.SetWorldRotationQuaternion(q);
        EXPECT_MATRIX(XMatrix(joint.WorldRotation()), XMatrix(q));
        EXPECT_VECTOR(joint.WorldTranslation(), p);
        joint.SetWorldRotationAxisAngle(axis, 0.7F);
        EXPECT_MATRIX(XMatrix(joint.WorldRotation()), XMatrix(axis, 0.7F));
        joint.SetWorldRotationEulerAngles(XVector3(0.1F, 0.2F, 0.3F));
        EXPECT_MATRIX(XMatrix(joint.WorldRotation()), XMatrix(XQuaternion(XVector3(0.1F, 0.2F, 0.3F))));
        EXPECT_VECTOR(joint.WorldTranslate(XVector3(1, 2, 3)).WorldTranslation(), XVector3().Add(p, XVector3(1, 2, 3)));
    }
}

TEST_F(TransformTest, TurnsAreAboutTheFixedAxes) {
    SCOPED_TRACE(seed);
    for (int i = 0; i < 50; ++i) {
        offset(joint);
        XVector3 const axis = vector(1).Normalize(), angles = vector(1);
        auto const after = [](XMatrix m, XMatrix const& turn) { return m.Multiply(turn).SetTranslation(0, 0, 0); };
        auto const local = [&] { return XMatrix(joint.LocalMatrix().Matrix()).SetTranslation(0, 0, 0); };
        auto const world = [&] { return XMatrix(joint.WorldMatrix().Matrix()).SetTranslation(0, 0, 0); };
        XMatrix before = local();
        EXPECT_MATRIX((joint.RotateByAxisAngle(axis, 0.5F), local()), after(before, XMatrix(axis, 0.5F)));
        before = local();
        EXPECT_MATRIX((joint.RotateByEulerAngles(angles), local()), after(before, XMatrix(XQuaternion(angles))));
        before = local();
        EXPECT_MATRIX((joint.RotateByQuaternion(XQuaternion(angles)), local()),
                      after(before, XMatrix(XQuaternion(angles))));
        before = world();
        EXPECT_MATRIX((joint.WorldRotateByAxisAngle(axis, 0.5F), world()), after(before, XMatrix(axis, 0.5F)));
        before = world();
        EXPECT_MATRIX((joint.WorldRotateByEulerAngles(angles), world()), after(before, XMatrix(XQuaternion(angles))));
    }
}

TEST_F(TransformTest, TranslatingMovesInTheParentsSpace) {
    offset(joint);
    joint.SetTranslation(1, 1, 1);
    XVector3 const before = joint.LocalTranslation();
    joint.Translate(XVector3(1, 2, 3));
    EXPECT_VECTOR(joint.LocalTranslation(), XVector3().Add(before, XVector3(1, 2, 3)));
}

TEST_F(TransformTest, SubtractingPreAndPostRotationGivesTheAttributeOfACombinedRotation) {
    SCOPED_TRACE(seed);
    for (int i = 0; i < 50; ++i) {
        offset(joint);
        XQuaternion const wanted = quaternion();
        joint.SetRotationQuaternion(joint.SubtractPrePostRotation(wanted));
        EXPECT_MATRIX(XMatrix(joint.RotationCombined()), XMatrix(wanted));
    }
    joint.SetPreTranslation(1, 2, 3);
    EXPECT_VECTOR(joint.SubtractPreTranslation(XVector3(5, 5, 5)), XVector3(4, 3, 2));
}

// ---- identity, freezing, copying ----

TEST_F(TransformTest, TheIdentityKeepsThePreTranslation) {
    offset(joint);
    joint.SetPreTranslation(1, 0, 0).SetTranslation(4, 5, 6).SetIdentity();
    EXPECT_TRUE(joint.LocalMatrix().Matrix().IsIdentity());
    EXPECT_EQ(joint.TranslationX().Float(), -1);
    EXPECT_TRUE(joint.PreRotation().IsIdentity());
}

TEST_F(TransformTest, FreezingKeepsThePoseAndZeroesTheChannels) {
    SCOPED_TRACE(seed);
    for (int i = 0; i < 50; ++i) {
        offset(joint);
        joint.SetTranslation(vector(3)).SetRotationEulerAngles(vector(1));
        XMatrix const before = joint.LocalMatrix().Matrix();
        joint.FreezeTranslation().FreezeRotation().FreezeRotation();
        EXPECT_MATRIX(joint.LocalMatrix().Matrix(), before);
        EXPECT_EQ(joint.RotationX().Float(), 0);
        EXPECT_EQ(joint.PostRotationY().Float(), 0);
        EXPECT_EQ(joint.TranslationZ().Float(), 0);
    }
}

TEST_F(TransformTest, FreezingDoesNotWriteTheQuaternionOnPurpose) {
    joint.SetRotationEulerAngles(0, 0, 1).FreezeRotation();
    EXPECT_NE(joint.RotationQuaternion().Attribute(2).Float(), 0);
}

TEST_F(TransformTest, CopyingTakesTheChannelsAndLeavesTheQuaternion) {
    XTransform other(scene().CreateObject(XTransform::TypeID));
    offset(other);
    other.SetTranslation(vector(2)).SetRotationEulerAngles(vector(1)).SetScale(1, 2, 3);
    joint.CopyTransform(other);
    EXPECT_MATRIX(joint.LocalMatrix().Matrix(), other.LocalMatrix().Matrix());
    EXPECT_EQ(joint.RotationQuaternion().Attribute(0).Float(), 0);
}

// ---- objects ----

TEST_F(TransformTest, TheSceneOriginRefusesDeletionRenamingAndReparenting) {
    XTransform const origin = scene().RootObject();
    ASSERT_TRUE(origin.IsValid());
    EXPECT_FALSE(origin.SupportsDeletion() || origin.SupportsRenaming() || origin.SupportsReparenting());
    EXPECT_TRUE(joint.SupportsDeletion() && joint.SupportsRenaming() && joint.SupportsReparenting());
}

TEST_F(TransformTest, ANewTransformStandsAtTheIdentityInItsColour) {
    XTransform const t(scene().CreateObject(XTransform::TypeID));
    EXPECT_EQ(t.Name().substr(0, 9), XTransform::DefaultName);
    EXPECT_TRUE(t.LocalMatrix().Matrix().IsIdentity());
    EXPECT_EQ(t.ColourValue(), XTransform::DefaultColour);
    EXPECT_TRUE(t.Visible().Boolean());
}

TEST_F(TransformTest, CamerasAndGridsStartWithTheirDefaults) {
    XCamera const camera(scene().CreateObject(XCamera::TypeID));
    EXPECT_EQ(camera.Attribute(L"ViewingAngle").Float(), 60);
    EXPECT_EQ(camera.Attribute(L"AspectRatio").Float(), 1.85F);
    EXPECT_EQ(camera.ColourValue(), XCamera::DefaultColour);
    XGrid const grid = scene().Grid();
    EXPECT_EQ(grid.Attribute(L"Size").Float(), 20);
    EXPECT_EQ(grid.Attribute(L"Divisions").Integer(), 5);
    EXPECT_EQ(grid.ColourValue(), XGrid::DefaultColour);
    EXPECT_TRUE(grid.Transform().IsValid());
}

TEST_F(TransformTest, WritesAreUndone) {
    scene().CommitTransient();
    XMatrix const before = joint.WorldMatrix().Matrix();
    for (auto const& write : std::vector<std::function<void()>>{
             [&] { joint.SetWorldMatrix(place()); }, [&] { joint.RotateByEulerAngles(vector(1)); },
             [&] { joint.SetScale(2, 2, 2); }, [&] { offset(joint); }}) {
        scene().BeginChangeBlock();
        write();
        scene().EndChangeBlock(L"write");
        EXPECT_NE(numbers(joint.WorldMatrix().Matrix()), numbers(before));
        scene().Undo();
        EXPECT_EQ(numbers(joint.WorldMatrix().Matrix()), numbers(before));
    }
}

}  // namespace
}  // namespace Tavo
