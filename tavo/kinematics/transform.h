// XTransform: the handle of every object that has a place in space. Joints, cameras, trajectories and the rest derive
// from it. The node evaluates the matrices; this class reads and writes its attributes, converts between spaces,
// freezes, aligns, sets keys and bakes.
//
// Row vectors: a point is p M, world = local * parent world. The local rotation is post rotation, then rotation, then
// pre rotation; the local translation is translation plus pre translation; scale is separate. Metres and radians.
// Rotation(), PreRotation() and PostRotation() read their angles as "XYZ" whatever RotationEulerOrder says.
//
// Nothing here opens a change block: callers are commands and tools. Invalid sources and scenes without a duration
// leave the object unchanged.
#pragma once
#include "tavo/animation/animation.h"
#include "tavo/kinematics/render_object.h"

namespace Tavo {

class XCharacter;
class XTrajectory;

enum XDirection : int { XAxis = 0, YAxis = 1, ZAxis = 2 };
enum XAlignmentMode : int {  // the aligning operations know only the first two
    AlignToFirstChild = 0,
    AlignToChildAverage = 1,
    XPlane = 2,
    XYPlane = 3,
    YZPlane = 4,
    XZPlane = 5,
};

class XTransform : public XTyped<XTransform, XRenderObject, sg::TransformBaseNode, sg::TransformNode> {
public:
    enum UpdateMode { UpdateAll = 0, UpdateTranslation = 1, UpdateRotation = 2 };
    enum WorkingFrame { WorldFrame = 0, LocalFrame = 2 };  // any other number samples nothing
    enum DataSource { EulerSource = 0, TwistSwingSource = 1, QuaternionSource = 2, LocalMatrixSource = 3 };
    enum InterpolationMode { QuaternionInterpolation = 0, EulerInterpolation = 1 };

    static constexpr XWord TypeID = L"Transform", DefaultName = L"transform";
    static constexpr XColour DefaultColour{0.75f, 0.75f, 0.75f, 1};
    using XTyped::XTyped;

    TAVO_ATTRIBUTE(ParentWorldMatrix, 17)  // read only
    TAVO_ATTRIBUTE(LocalMatrix, 18)        // output
    TAVO_ATTRIBUTE(WorldMatrix, 19)        // output
    TAVO_ATTRIBUTE(TransformDataSource, 20)
    TAVO_ATTRIBUTE_XYZ(Translation, 21)
    TAVO_ATTRIBUTE_XYZ(Rotation, 24)
    TAVO_ATTRIBUTE_XYZ(Scale, 27)
    TAVO_ATTRIBUTE_XYZ(ScalePivot, 30)
    TAVO_ATTRIBUTE_XYZ(ScalePivotTranslation, 33)
    TAVO_ATTRIBUTE_XYZ(PreTranslation, 36)
    TAVO_ATTRIBUTE_XYZ(PreRotation, 39)
    TAVO_ATTRIBUTE_XYZ(PostRotation, 42)
    TAVO_ATTRIBUTE(RotationQuaternion, 45)  // four floats x, y, z, w
    TAVO_ATTRIBUTE(RotationInterpolation, 46)
    TAVO_ATTRIBUTE(RotationEulerOrder, 47)
    TAVO_ATTRIBUTE(LocalMatrixInput, 48)
    TAVO_ATTRIBUTE(ShowTrajectory, 49)
    TAVO_ATTRIBUTE(ShowAxis, 50)

    // ---- read ----
    XMatrix LocalTranslationMatrix() const;  // the identity when the node is no transform, as the following
    XMatrix LocalRotationMatrix() const;
    XMatrix LocalScaleMatrix() const;
    XMatrix LocalPreTranslationMatrix() const;
    XMatrix LocalPreRotationMatrix() const;
    XMatrix LocalPostRotationMatrix() const;
    XVector3 LocalTranslation() const { return LocalMatrix().Matrix().Translation(); }
    XVector3 WorldTranslation() const { return WorldMatrix().Matrix().Translation(); }
    XVector3 LocalScale() const;
    XVector3 WorldScale() const;  // the diagonal of the world matrix, not the lengths of its axes
    XVector3 PreTranslation() const;
    XQuaternion Rotation() const;
    XQuaternion PreRotation() const;
    XQuaternion PostRotation() const;
    XQuaternion LocalRotation() const { return LocalMatrix().Matrix().RotationQuaternion(); }
    XQuaternion RotationCombined() const { return LocalRotation(); }
    XQuaternion WorldRotation() const { return WorldMatrix().Matrix().RotationQuaternion(); }
    XVector3 SubtractPreTranslation(XVector3 const& translation) const;
    // The rotation attribute that gives `combined` under the current pre and post rotations.
    XQuaternion SubtractPrePostRotation(XQuaternion const& combined) const;
    XMatrix ConvertToLocalSpace(XMatrix const& world) const;
    XMatrix ConvertToWorldSpace(XMatrix const& local) const;

    // ---- hierarchy ----
    void ChildTransforms(Qelutils::Vector<XObject>& out) const;
    void DescendantTransforms(Qelutils::Vector<XObject>& out) const;
    XTransform ParentTransform() const;
    XTransform RootTransform() const;
    int Depth() const;  // the number of transforms above

    // ---- write: the attributes ----
    XTransform& SetTranslation(XVector3 const& value);
    XTransform& SetTranslation(float x, float y, float z);
    XTransform& SetPreTranslation(XVector3 const& value);
    XTransform& SetPreTranslation(float x, float y, float z);
    XTransform& SetScale(XVector3 const& value);
    XTransform& SetScale(float x, float y, float z);
    // These keep the Euler attributes and the quaternion attribute in step, by "XYZ".
    XTransform& SetRotationEulerAngles(XVector3 const& angles);
    XTransform& SetRotationEulerAngles(float x, float y, float z);
    XTransform& SetRotationQuaternion(XQuaternion const& rotation);
    XTransform& SetRotationAxisAngle(XVector3 const& axis, float angle);
    XTransform& SetPreRotationQuaternion(XQuaternion const& rotation);
    XTransform& SetPostRotationQuaternion(XQuaternion const& rotation);
    XTransform& SetPreRotationEulerAngles(XVector3 const& angles);
    XTransform& SetPostRotationEulerAngles(XVector3 const& angles);

    // ---- write: local and world ----
    XTransform& SetLocalMatrix(XMatrix const& matrix, int mode = UpdateAll);
    XTransform& SetLocalMatrix(Qelutils::Vector<float> const& values, int mode = UpdateAll);
    XTransform& SetWorldMatrix(XMatrix const& matrix, int mode = UpdateAll);
    XTransform& SetWorldMatrix(Qelutils::Vector<float> const& values, int mode = UpdateAll);
    XTransform& SetWorldTranslation(XVector3 const& value);
    XTransform& SetWorldTranslation(float x, float y, float z);
    XTransform& SetWorldRotationQuaternion(XQuaternion const& rotation);
    XTransform& SetWorldRotationEulerAngles(XVector3 const& angles);
    XTransform& SetWorldRotationAxisAngle(XVector3 const& axis, float angle);
    XTransform& Translate(XVector3 const& delta);
    XTransform& RotateByEulerAngles(XVector3 const& angles);
    XTransform& RotateByAxisAngle(XVector3 const& axis, float angle);
    XTransform& RotateByQuaternion(XQuaternion const& rotation);
    XTransform& WorldTranslate(XVector3 const& delta);
    XTransform& WorldRotateByEulerAngles(XVector3 const& angles);
    XTransform& WorldRotateByEulerAngles(XVector3 const& angles, int order);
    XTransform& WorldRotateByAxisAngle(XVector3 const& axis, float angle);
    XTransform& SetIdentity();        // keeps the pre translation, so that the translation becomes its opposite
    XTransform& FreezeRotation();     // the local rotation moves to the pre rotation
    XTransform& FreezeTranslation();  // the local translation moves to the pre translation
    XTransform& CopyTransform(XTransform const& other);
    // Turns the object so that its axis points at its child or children, which stay where they are.
    XTransform& AlignAxis(XDirection direction, XAlignmentMode mode);
    XTransform& AlignAxis(std::wstring const& axis, XAlignmentMode mode);  // "XAxis", "YAxis", "ZAxis"

    // The character that this stands in, or else a new one with this below it: where it was in the world, among the
    // kinematic or, if it is a physics joint, among the physics parts. Invalid for what stays where it is, as the
    // scene's origin does. Defined with physics.
    XCharacter Characterize();

    // ---- animation ----
    bool IsAnimated() const;
    XTransform& ClearAnimation();                 // of translation and rotation
    XTransform& InitializeAnimation(float rate);  // keys with the current values, over the scene's time
    XTransform& BakeAnimation(XTransform const& source, float rate, int frame, bool translation = true,
                              bool rotation = true);
    XAnimation CreateRotationAnimation();
    XAnimation CreatePreRotationAnimation();
    XAnimation CreatePostRotationAnimation();
    // Overwrite one existing key in place, for samplers; false when a channel has no curve or no such key.
    bool SetTranslationKeyframe(XVector3 const& value, int index);
    bool SetRotationKeyframe(XVector3 const& angles, int index);
    // Sets a key at the current time when the attribute is one of the rotation channels; otherwise false.
    bool SetRotationKeyframe(XAttribute& attribute);
    bool SetRotationKeyframe(XAttribute& attribute, XKeyframe& key);
    // What the active tool changes, on what it changes: a character may pass on the edits of its parts.
    XTransform& AutoSetKeyframe();
    // A new path below the origin through where this object is over the scene's time, two samples a frame and without
    // the end itself; no keys when the scene has no duration. The time stays as it was. Defined with trajectories.
    XTrajectory CreateTrajectory() const;

    // The scene's origin refuses all three.
    bool supportsDeletion() const override { return !isSceneOrigin(); }
    bool supportsRenaming() const override { return !isSceneOrigin(); }
    bool supportsReparenting() const override { return !isSceneOrigin(); }
    void onInitialize() override;

    // The mean of the world translations; invalid entries are skipped but counted.
    static XVector3 calculateAverageTranslation(Qelutils::Vector<XObject> const& transforms);

protected:
    // Name, visibility, place and colour of a new object.
    void initializeAs(XWord const& name, XColour const& colour);

private:
    bool isSceneOrigin() const;
    sg::TransformInputs inputs() const;  // the defaults when the node is no transform
    // Three channels in a row, by the first one's number: X, Y and Z.
    XAttribute channel(int first, int axis) const { return Attribute(first + axis); }
    XVector3 channels(int first) const;
    XTransform& setChannels(int first, XVector3 const& value);
    XTransform& setRotation(XVector3 const& angles, XQuaternion const& rotation);
    XTransform& changeLocal(int mode, auto const& change);
    XTransform& changeWorld(int mode, auto const& change);
    bool turnAxisTo(XDirection direction, XVector3 const& target, Qelutils::Vector<XObject> const& descendants);
    XAnimation createRotationAnimation(int first);
    bool findCurves(int first, sg::AnimationNode* (&curves)[3]) const;
    bool overwriteKeys(int first, XVector3 const& value, int index);
    int rotationGroupOf(XAttribute const& attribute) const;
    XKeyframe setQuaternionKey(int first);
    void setKeys(int first);
    void setRotationKeys();
    void clearChannels(int first);
    void initializeChannels(int first, int count, float start, float step, XVector3 const& value);
    struct Sample {
        XVector3 position, angles;
    };
    Sample sampleOf(XTransform const& source, int frame) const;
};
using XTransformDef = XTypedDef<XTransform>;

}  // namespace Tavo
