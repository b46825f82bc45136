// Objects that move over the scene's time, and what they do found by playing it again.
#pragma once
#include "tests/trajectories/trajectory_fixture.h"

namespace Tavo {

struct MotionTest : TrajectoryTest {
    using Objects = Qelutils::Vector<XObject>;

    MotionTest() {
        scene().New();
        time().FrameRate().SetInteger(24);
        time().StartTime().SetFloat(0);
        time().EndTime().SetFloat(1);
    }

    static XTransform transform(std::wstring const& name, XObject const& parent = scene().RootObject()) {
        XTransform made(scene().CreateObject(XTransform::TypeID, parent));
        made.SetName(name);
        made.RotationInterpolation().SetEnumeration(XTransform::EulerInterpolation);
        return made;
    }
    static void key(XAttribute channel, std::vector<std::pair<float, float>> const& keys) {
        XAnimation curve = channel.CreateAnimation();
        for (auto const& [x, y] : keys) curve.SetKeyframe(x, y);
    }
    // Along an arch, turning.
    static XTransform mover(std::wstring const& name, XObject const& parent = scene().RootObject()) {
        XTransform made = transform(name, parent);
        made.SetTranslation(1, 2, 3);
        made.SetRotationEulerAngles(0.3F, 0.5F, -0.2F);
        key(made.TranslationX(), {{0, 1}, {0.5F, 2}, {1, 4}});
        key(made.TranslationY(), {{0, 2}, {0.4F, 3}, {1, 2}});
        key(made.RotationZ(), {{0, -0.2F}, {1, 1.5F}});
        return made;
    }

    static void goTo(float t) { time().Time().SetFloat(t); }
    static XVector3 worldPlace(XTransform const& of, float t) {
        goTo(t);
        return of.WorldTranslation();
    }
    static XVector3 toWorld(XTransform const& frame, XVector3 const& p) {
        XMatrix const world = frame.WorldMatrix().Matrix();
        XMatrix const place = XMatrix::MatrixTransformToWorldSpace(XMatrix().SetTranslation(p), world);
        return place.Translation();
    }
    static Objects generate(std::vector<XObject> const& sources) {
        Objects out;
        XTrajectories::Instance().Generate(Objects(sources.begin(), sources.end()), out);
        return out;
    }
    // Its keys are where the source is, frame by frame from that of `from` on; seconds.
    static void expectFollows(XTrajectory const& path, XTransform const& source, float from, float step, int keys) {
        ASSERT_EQ(path.TranslationKeyframesArray().AttributeCount(), keys);
        ASSERT_EQ(path.TimingCurve().KeyframeCount(), keys);
        for (int i = 0; i < keys; ++i) {
            float const t = from + float(i) * step;
            XVector3 const expected = worldPlace(source, t);
            XVector3 const local = path.TranslationKeyframesArray().Attribute(i).Attribute(2).Vector();
            XVector3 const found = toWorld(path, local);
            EXPECT_TRUE(isAt(found, expected.X(), expected.Y(), expected.Z(), 2e-5F)) << i;
            XVector3 onPath;
            EXPECT_TRUE(path.ComputePosition(path.InputValue().Float(), onPath));
            XVector3 const now = toWorld(path, onPath);
            EXPECT_TRUE(isAt(now, expected.X(), expected.Y(), expected.Z(), 2e-5F)) << i;
            EXPECT_NEAR(path.TimingCurve().KeyframeInputValues().Float(i), t, 1e-5F);
        }
    }

    ~MotionTest() override { XTrajectories::Instance().SetSamplingFactor(1); }
};

}  // namespace Tavo
