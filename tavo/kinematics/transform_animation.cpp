// Curves and keys of a transform, and baking another one's motion into it.
#include "tavo/animation/animation.h"
#include "tavo/kinematics/character.h"
#include "tavo/objects/scene.h"
#include "tavo/objects/units.h"
#include <cmath>

namespace Tavo {

using Node = sg::TransformNode;

namespace {

// The scene's tools that set keys, by their index.
enum KeyingTool { MoveTool = 3, RotateTool = 4, ScaleTool = 5 };

// The scene's time line in samples. No samples: it has no duration, or the rate is not above 0 or beyond all measure.
struct SampleTimes {
    SampleTimes(XScene& scene, float rate) : settings(scene.SceneSettings()), start(settings.StartTime().Float()) {
        double const samples = std::round((double(settings.EndTime().Float()) - double(start)) * double(rate));
        bool const isSound = settings.EndTime().Float() > start && rate > 0 && samples < 1e8;
        intervals = isSound ? int(samples) : 0;
        step = isSound ? float(1 / double(rate)) : 0;
        isValid = isSound;
    }
    float at(int i) const { return float(double(start) + i * double(step)); }

    XSceneSettings settings;
    float start, step;
    int intervals;
    bool isValid;
};

sg::AnimationNode* nodeOf(XAnimation const& curve) {
    return curve.IsValid() ? static_cast<sg::AnimationNode*>(curve.getNode()) : nullptr;
}

}  // namespace

// ---- curves ----

bool XTransform::IsAnimated() const {
    for (int first :
         {Node::Translation, Node::PreTranslation, Node::Rotation, Node::PreRotation, Node::PostRotation, Node::Scale})
        for (int axis = 0; axis < 3; ++axis)
            if (IsValid() && channel(first, axis).IsAnimated()) return true;
    return false;
}

void XTransform::clearChannels(int first) {
    for (int axis = 0; axis < 3; ++axis) channel(first, axis).ClearAnimation();
}

XTransform& XTransform::ClearAnimation() {
    clearChannels(Node::Translation);
    clearChannels(Node::Rotation);
    return *this;
}

// One quaternion curve for three channels: the one that feeds them, or a new one.
XAnimation XTransform::createRotationAnimation(int first) {
    XAnimation const x = channel(first, 0).Animation();
    if (x.IsValid() && x.OutputMode().Enumeration() == XAnimation::RotationOutputMode &&
        channel(first, 1).Animation() == x && channel(first, 2).Animation() == x)
        return x;
    clearChannels(first);
    if (!IsEditable() || !Scene().IsValid()) return {};
    XAnimation curve(Scene().CreateNode(XAnimation::TypeID));
    curve.SetName(XAnimation::DefaultName + std::to_wstring(ObjectID()));
    curve.OutputValueEulerX().ConnectOutputTo(channel(first, 0));
    curve.OutputValueEulerY().ConnectOutputTo(channel(first, 1));
    curve.OutputValueEulerZ().ConnectOutputTo(channel(first, 2));
    Scene().SceneSettings().Time().ConnectOutputTo(curve.InputValue());
    curve.OutputMode().SetEnumeration(XAnimation::RotationOutputMode);
    curve.InputUnits().SetInteger(FrameUnit);
    return curve;
}

XAnimation XTransform::CreateRotationAnimation() { return createRotationAnimation(Node::Rotation); }
XAnimation XTransform::CreatePreRotationAnimation() { return createRotationAnimation(Node::PreRotation); }
XAnimation XTransform::CreatePostRotationAnimation() { return createRotationAnimation(Node::PostRotation); }

// ---- keys in place ----

// The curves that drive three channels; false when one of them has none.
bool XTransform::findCurves(int first, sg::AnimationNode* (&curves)[3]) const {
    if (!IsValid()) return false;
    sg::Scene const& graph = getNode()->graph();
    for (int axis = 0; axis < 3; ++axis) {
        db::Attribute* source = graph.getInputAttribute(&getNode()->at<db::Attribute>(first + axis));
        if (!source || !source->isNodeType(sg::AnimationNode::Def)) return false;
        curves[axis] = static_cast<sg::AnimationNode*>(source->getParentNode());
    }
    return true;
}

bool XTransform::overwriteKeys(int first, XVector3 const& value, int index) {
    sg::AnimationNode* curves[3];
    if (index < 0 || !findCurves(first, curves)) return false;
    bool done = true;
    for (unsigned axis = 0; axis < 3; ++axis)
        done &= curves[axis]
                    ->at<db::FloatArrayAttribute>(sg::AnimationNode::KeyframeOutputValues)
                    .setElement(value[axis], std::size_t(index));
    return done;
}

bool XTransform::SetTranslationKeyframe(XVector3 const& value, int index) {
    return overwriteKeys(Node::Translation, value, index);
}

bool XTransform::SetRotationKeyframe(XVector3 const& angles, int index) {
    switch (RotationInterpolation().Enumeration()) {
    case EulerInterpolation: return overwriteKeys(Node::Rotation, angles, index);
    case QuaternionInterpolation: {
        sg::AnimationNode* curves[3];
        return findCurves(Node::Rotation, curves) &&
               curves[0]->setRotationKey(index, XQuaternion(angles).AsQuaternion());
    }
    default: return false;
    }
}

// ---- keys at the current time ----

// The present rotation is read before the curve is made, which has no key yet.
XKeyframe XTransform::setQuaternionKey(int first) {
    XQuaternion const rotation(channels(first));
    float const time = Scene().SceneSettings().Time().Float();
    return createRotationAnimation(first).SetKeyframe(time, rotation);
}

bool XTransform::SetRotationKeyframe(XAttribute& attribute) {
    XKeyframe key;
    return SetRotationKeyframe(attribute, key);
}

bool XTransform::SetRotationKeyframe(XAttribute& attribute, XKeyframe& key) {
    int const group = rotationGroupOf(attribute), interpolation = RotationInterpolation().Enumeration();
    if (group == 0 || (interpolation != QuaternionInterpolation && interpolation != EulerInterpolation)) return false;
    if (interpolation == QuaternionInterpolation) {
        key = setQuaternionKey(group);
        return true;
    }
    float const value = attribute.Float(), time = Scene().SceneSettings().Time().Float();
    key = attribute.CreateAnimation().SetKeyframe(time, value, LinearInterpolation);
    return true;
}

// The first channel's number of the group of rotation channels that has the attribute; 0 for none.
int XTransform::rotationGroupOf(XAttribute const& attribute) const {
    for (int first : {Node::Rotation, Node::PreRotation, Node::PostRotation})
        for (int axis = 0; axis < 3; ++axis)
            if (attribute.IsValid() && attribute == channel(first, axis)) return first;
    return 0;
}

XTransform& XTransform::AutoSetKeyframe() {
    XTransform edited(*this);
    XCharacter character = Character();
    bool const hasCharacter = character.IsValid();
    switch (Scene().ActiveToolIndex()) {
    case MoveTool:
        if (hasCharacter) character.OnBeginMove(edited);
        edited.setKeys(Node::Translation);
        break;
    case RotateTool:
        if (hasCharacter) character.OnBeginRotate(edited);
        edited.setRotationKeys();
        break;
    case ScaleTool:
        if (hasCharacter) character.OnBeginScale(edited);
        edited.setKeys(Node::Scale);
        break;
    default: break;
    }
    return *this;
}

void XTransform::setKeys(int first) {
    for (int axis = 0; axis < 3; ++axis) channel(first, axis).SetKeyframe();
}

void XTransform::setRotationKeys() {
    if (RotationInterpolation().Enumeration() == EulerInterpolation) return setKeys(Node::Rotation);
    if (IsValid() && RotationInterpolation().Enumeration() == QuaternionInterpolation) setQuaternionKey(Node::Rotation);
}

// ---- keys in whole ----

void XTransform::initializeChannels(int first, int count, float start, float step, XVector3 const& value) {
    for (unsigned axis = 0; axis < 3; ++axis)
        channel(first, int(axis))
            .CreateAnimation()
            .InitializeKeyframes(count, start, step, value[axis], LinearInterpolation, CoupledContinuity);
}

XTransform& XTransform::InitializeAnimation(float rate) {
    SampleTimes const times(Scene(), rate);
    if (!times.isValid) return *this;
    XVector3 const translation = channels(Node::Translation), angles = channels(Node::Rotation);
    int const count = times.intervals + 1;
    initializeChannels(Node::Translation, count, times.start, times.step, translation);
    if (RotationInterpolation().Enumeration() == QuaternionInterpolation)
        CreateRotationAnimation().InitializeKeyframes(count, times.start, times.step, XQuaternion(angles));
    if (RotationInterpolation().Enumeration() == EulerInterpolation)
        initializeChannels(Node::Rotation, count, times.start, times.step, angles);
    return *this;
}

// The curves have one key less than there are samples, so that the last sample is dropped: a decision of this system.
XTransform& XTransform::BakeAnimation(XTransform const& source, float rate, int frame, bool translation,
                                      bool rotation) {
    if (!source.IsValid()) return *this;
    if (translation) clearChannels(Node::Translation);
    if (rotation) clearChannels(Node::Rotation);
    SampleTimes const times(Scene(), rate);
    if (!times.isValid) return *this;
    if (translation) initializeChannels(Node::Translation, times.intervals, times.start, times.step, XVector3());
    XAnimation curve = rotation ? CreateRotationAnimation() : XAnimation();
    curve.InitializeKeyframes(times.intervals, times.start, times.step, XQuaternion());
    float const before = times.settings.Time().Float();
    for (int i = 0; i <= times.intervals; ++i) {
        times.settings.Time().SetFloat(times.at(i));
        Sample const sample = sampleOf(source, frame);
        if (translation) SetTranslationKeyframe(sample.position, i);
        if (rotation && nodeOf(curve)) nodeOf(curve)->setRotationKey(i, XQuaternion(sample.angles).AsQuaternion());
    }
    times.settings.Time().SetFloat(before);
    return *this;
}

// Where `source` is now, in the given frame; an unknown frame gives zeros.
XTransform::Sample XTransform::sampleOf(XTransform const& source, int frame) const {
    if (frame == WorldFrame) return {source.WorldTranslation(), XVector3(source.WorldRotation())};
    if (frame != LocalFrame) return {};
    return {source.LocalTranslation(), XVector3(SubtractPrePostRotation(source.LocalRotation()))};
}

}  // namespace Tavo
