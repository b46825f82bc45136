// A path in space as a node: translation keys, rotation keys attached to them, and what follows from both. The geometry
// is that of path_geometry.h, the rotations those of path_rotations.h; both work in the node's own space, before its
// transform.
//
// What was gathered from the keys is kept beside the node's block. A write to a key notes its slot, so that the next
// read looks at the keys that changed and at no others; it finds what gathering all of them would find. Those of a bulk
// write are looked at while it runs, as they are at hand.
#pragma once
#include "qel/sg/animation_node.h"
#include "qel/sg/path_geometry.h"
#include "qel/sg/path_rotations.h"
#include "qel/sg/transform_node.h"

namespace sg {

class TrajectoryNode final : public TransformNode {
public:
    static inline std::wstring const ClassID = L"Trajectory";
    static db::NodeDef const Def;
    enum Number : int {
        InputValue = 51,
        PreInfinity = 54,
        PostInfinity,
        IsTranslationCurveSampled,
        InterpolationTangentsCoeff,
        TranslationKeyframesArray,
        IsRotationCurveSampled,
        RotationKeyframesArray,
        MaxArcLength,
        UseSafeGuards,
        SafeGuardsArray,
        TimingCurveFirstKeyTime,
        TimingCurveLastKeyTime,
        TimingHandlesNum,
        TimingHandlesTimesArray = 72,
        TimingHandlesArcLengthsArray,
        TimingHandlesPositionsArray,
        SmartEditing,
        LocalCurveMatrix = 80,
        WorldCurveMatrix,
        RotationsPrepared = 89,
    };
    // The parts of a translation key, by index.
    enum TranslationKeyPart : int { KeyParameter, InHandle, Position, OutHandle, Interpolation, Continuity };
    // Those of a rotation key.
    enum RotationKeyPart : int { AttachPoint, InTangent, Orientation, OutTangent, KeyInterpolation };
    static constexpr std::uint32_t worldCurveBit = aboveWorldBit, lengthBit = 16, rotationsBit = 32, timesBit = 64,
                                   arcLengthsBit = 128, positionsBit = 256, localCurveBit = 512;
    static constexpr int mostTimingHandles = 100'000;  // a larger number counts as this

    explicit TrajectoryNode(db::NodeDef const& def = Def) : TransformNode(def) {}

    // Positions are in the node's own space. False, and no change, without keys. Every result is exact to the
    // geometry's own error, far below any tolerance that is of use: the tolerance is taken for the interface's sake.
    bool computePosition(double fraction, Qelp::Vector3& position, double tolerance = 0.01);
    bool computePosition_parameter(double parameter, Qelp::Vector3& position);
    Qelp::Quat computeRotation_parameter(double parameter);
    double arcLengthMap(double parameter);        // to the fraction
    double inverseArcLengthMap(double fraction);  // to the parameter

    int getTranslationKeyframeNum() const { return int(keyArray().size()); }
    void getTranslationKeysOrderArray(std::vector<int>& out);  // the slots in the order of the keys
    // The slot of the key of that number, of several the first; or -1.
    int isTranslationKeyframe(int parameter);
    int getRotationKeyframeNum() const { return int(rotationArray().size()); }
    void getRotationKeysOrderArray(std::vector<int>& out);
    // The slot of the key nearest to that attach point within the tolerance, or -1.
    int isRotationKeyframe(double attachPoint, double tolerance);
    // Where the handle of the key of that number lies, its own or the automatic one. False, and no change, when there
    // is no such key, or no other key on that side.
    bool getTranslationInputTangentControlPoint(int parameter, Qelp::Vector3& point);
    bool getTranslationOutputTangentControlPoint(int parameter, Qelp::Vector3& point);

    // The fraction of the place that looks nearest, as path_ray.h says. The ray is given in the node's own space.
    // False, and no change, when nothing is seen.
    bool findRaysClosestPointOnCurveParallelProjection(Qelp::Vector3 const& origin, Qelp::Vector3 const& direction,
                                                       double& fraction);
    bool findRaysClosestPointOnCurvePerspectiveProjection(Qelp::Vector3 const& eye, Qelp::Vector3 const& origin,
                                                          Qelp::Vector3 const& direction, double& fraction);

    // The curve whose output feeds the input value, or null. It maps time to fraction.
    AnimationNode* getTimingCurve() const;

    PathGeometry const& getPath();  // up to date; until the next change

    void compute(std::uint64_t todo) override;
    void valueChanged(db::Attribute& a) override;
    void elementsChanged(db::ElementRun const& run) override;
    void refreshValue(db::Attribute& a) override;

private:
    db::AttributeArray& keyArray() const { return at<db::AttributeArray>(TranslationKeyframesArray); }
    db::AttributeArray& rotationArray() const { return at<db::AttributeArray>(RotationKeyframesArray); }
    PathRotations const& getRotations();
    void note(db::Attribute const& a);
    void noteSlots(PathGeometry::Slots slots);
    void gather(PathGeometry::Slots slots);
    bool hasConnectedKey() const;
    void gatherKeys();
    void computePath();
    void computeRotations();
    void computeTimes();
    void computeArcLengths();
    void computePositions();
    void computeLocalCurve();

    std::vector<PathKey> keys_;                 // by slot
    std::vector<PathGeometry::Slots> changed_;  // of keys that are not in the path yet as they are now
    std::vector<int> written_;                  // the slots among them that are not gathered either
    bool areAllChanged_ = true;
    PathGeometry path_;
    PathRotations rotations_;
};

}  // namespace sg
