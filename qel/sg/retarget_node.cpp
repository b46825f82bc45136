#include "qel/sg/retarget_node.h"
#include "qel/sg/element_parts.h"
#include "qel/sg/scene.h"
#include <unordered_map>

namespace sg {
namespace {

double finite(float value, double otherwise = 0) { return std::abs(value) < 1e15F ? double(value) : otherwise; }
Qelp::Matrix34 usable(Qelp::Matrix34 const& m) { return isUsable(m) ? m : Qelp::Matrix34(); }

// The parameters of one joint, as they stand in the node's own block.
class Parameters {
public:
    explicit Parameters(db::Attribute const& element) : parts_(element) {}

    std::wstring const& name() const { return get<db::StringAttribute>(RetargetNode::JointName); }
    db::Attribute const* referent() const { return get<db::PointerAttribute>(RetargetNode::Referent).getRef(); }
    Qelp::Matrix34 origin() const { return usable(get<db::Matrix34Attribute>(RetargetNode::Origin)); }

    RetargetJoint joint() const {
        RetargetJoint o;
        o.axes = usable(get<db::Matrix34Attribute>(RetargetNode::ReferentMatrix));
        o.mode = RetargetMode(std::clamp(get<db::EnumAttribute>(RetargetNode::Mode), 0, 2));
        o.isActive = get<db::BoolAttribute>(RetargetNode::Active);
        o.translationWeight = real(RetargetNode::TranslationWeight, 1);
        o.rotationWeight = real(RetargetNode::RotationWeight, 1);
        o.scale = real(RetargetNode::Scale, 1);
        o.offset = {real(RetargetNode::Offset), real(RetargetNode::Offset + 1), real(RetargetNode::Offset + 2)};
        if (hasLimit()) o.limit = limit();
        return o;
    }

private:
    template<class A> typename A::Value const& get(int part) const { return parts_.read<A>(1 + part); }
    double real(int part, double otherwise = 0) const { return finite(get<db::FloatAttribute>(part), otherwise); }
    bool flag(int part) const { return get<db::BoolAttribute>(part); }

    // A joint without a limit has none of the three, and is no hinge.
    bool hasLimit() const {
        return flag(RetargetNode::Swing1Active) || flag(RetargetNode::Swing2Active) ||
               flag(RetargetNode::TwistActive) || get<db::EnumAttribute>(RetargetNode::LimitType) == HingeLimit;
    }
    JointLimit limit() const {
        JointLimit out;
        out.type = get<db::EnumAttribute>(RetargetNode::LimitType);
        out.fixedFrame = rotationOfFrame(usable(get<db::Matrix34Attribute>(RetargetNode::LimitMatrix)));
        out.movingOffset = rotationOfFrame(usable(get<db::Matrix34Attribute>(RetargetNode::MovingOffsetMatrix)));
        out.swing1Active = flag(RetargetNode::Swing1Active), out.swing1Angle = real(RetargetNode::Swing1Angle);
        out.swing2Active = flag(RetargetNode::Swing2Active), out.swing2Angle = real(RetargetNode::Swing2Angle);
        out.twistActive = flag(RetargetNode::TwistActive), out.twistAngle = real(RetargetNode::TwistAngle);
        out.twistOffset = real(RetargetNode::TwistOffset);
        return out;
    }

    ElementParts parts_;
};

// One side of the node.
struct Side {
    db::PointerArrayAttribute const& joints;
    db::IntArrayAttribute const& parents;
    db::AttributeArray const& parameters;

    void read(std::size_t count, Skeleton& skeleton, std::vector<RetargetJoint>& options) const {
        skeleton = {};
        options.clear();
        std::unordered_map<db::Attribute const*, int> index;
        for (std::size_t i = 0; i < count; ++i)
            if (db::Attribute const* joint = jointAt(i)) index.emplace(joint, int(i));
        for (std::size_t i = 0; i < count; ++i) {
            int const parent = i < parents.raw().size() ? parents.raw()[i] : -1;
            skeleton.parents.push_back(parent < int(i) ? std::max(parent, -1) : -1);
            if (i >= parameters.size()) {
                skeleton.names.emplace_back(), skeleton.origins.emplace_back(), options.emplace_back();
                continue;
            }
            Parameters const p(*parameters[i]);
            skeleton.names.push_back(p.name());
            skeleton.origins.push_back(p.origin());
            options.push_back(p.joint());
            options.back().referent = referentOf(p.referent(), i, index);
        }
    }

private:
    db::Attribute const* jointAt(std::size_t i) const {
        return i < joints.raw().size() ? joints.raw()[i].getRef() : nullptr;
    }
    // What is not in the list stands above all of it.
    int referentOf(db::Attribute const* referent, std::size_t i,
                   std::unordered_map<db::Attribute const*, int> const& index) const {
        if (!referent || referent == jointAt(i)) return RetargetJoint::itself;
        auto const it = index.find(referent);
        return it == index.end() ? RetargetJoint::world : it->second;
    }
};

}  // namespace

void RetargetNode::Initialise() { graph().push(*this, at<db::Attribute>(Prepared)); }

SkeletonMatch const& RetargetNode::getMatch() {
    update(preparedBit | geometryBit);
    return match_;
}

RetargetRig const& RetargetNode::getRig() {
    update(preparedBit | geometryBit);
    return rig_;
}

int RetargetNode::getLimitHits() {
    update(preparedBit | geometryBit);
    return frame_.limitHits;
}

void RetargetNode::compute(std::uint64_t todo) {
    if (!at<db::BoolAttribute>(AllowCompute).raw()) return;
    if (todo & preparedBit) prepare();
    if (todo & geometryBit) solve();
}

void RetargetNode::prepare() {
    std::vector<RetargetJoint> sources, targets;
    Side{at<db::PointerArrayAttribute>(SourceJoints), at<db::IntArrayAttribute>(SourceHierarchy),
         elements(SourceJointParams)}
        .read(elements(InputSourceGeometry).size(), source_, sources);
    Side{at<db::PointerArrayAttribute>(TargetJoints), at<db::IntArrayAttribute>(TargetHierarchy),
         elements(TargetJointParams)}
        .read(elements(OutputTargetGeometry).size(), target_, targets);
    match_ = {};
    match_.source = rig_.source = &source_;
    match_.target = rig_.target = &target_;
    readMap();
    match_.Run();
    rig_.matches = match_.matches;
    rig_.sourceOptions = sources;
    rig_.targetOptions = targets;
    rig_.Run();
    input_.resize(source_.size());
    output_.resize(target_.size());
}

void RetargetNode::readMap() {
    std::vector<int> const &sources = at<db::IntArrayAttribute>(MappedSources).raw(),
                           &targets = at<db::IntArrayAttribute>(MappedTargets).raw();
    map_.clear();
    for (std::size_t i = 0; i < std::min(sources.size(), targets.size()); ++i)
        map_.emplace_back(sources[i], targets[i]);
    match_.given = map_;
    if (!match_.Validate()) match_.given = {};
}

// The matrices of a frame alone do not ask for a new rig, but another number of them does.
void RetargetNode::readGeometry() {
    db::AttributeArray const& geometry = elements(InputSourceGeometry);
    if (geometry.size() != input_.size() || elements(OutputTargetGeometry).size() != output_.size()) prepare();
    for (std::size_t i = 0; i < input_.size(); ++i)
        input_[i] = static_cast<db::Matrix34Attribute const&>(*geometry[i]).raw();
}

void RetargetNode::solve() {
    readGeometry();
    frame_.rig = &rig_;
    frame_.source = input_;
    frame_.target = output_;
    frame_.disableLimits = at<db::BoolAttribute>(DisableAllLimits).raw();
    bool const works = at<db::BoolAttribute>(Enabled).raw() && frame_.Run();
    if (!works) frame_.limitHits = 0;
    db::AttributeArray& results = elements(OutputTargetGeometry);
    for (std::size_t i = 0; i < output_.size(); ++i)
        static_cast<db::Matrix34Attribute&>(*results[i]).raw() = works ? output_[i] : target_.origins[i];
}

}  // namespace sg
