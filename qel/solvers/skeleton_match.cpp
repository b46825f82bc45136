#include "qel/solvers/skeleton_match.h"
#include "qel/solvers/joint_names.h"
#include <map>
#include <numeric>
#include <tuple>

namespace sg {

using namespace retargeting;

namespace {

constexpr double sure = 1, byPartName = 0.85, byShape = 0.7, byEqualName = 0.9, byPlace = 0.5;

// One skeleton, looked at from all sides.
struct Body {
    Body(Skeleton const& s, bool usesNames) :
        skeleton(s), names(readJointNames(s.names)), at(s.restPositions()), children(s.children()),
        fellow(s.size(), -1) {
        BodyAnchors const shape = anchorsByShape(s);
        BodyAnchors anchors = usesNames ? anchorsByName(s) : BodyAnchors();
        trustsNames = usesNames && agree(anchors, shape);
        if (!trustsNames) anchors = {};
        isByName = anchors.count() > 0;
        fill(anchors, shape);
        labels = labelBody(s, anchors);
        if (!trustsNames)  // fingers are told by their names
            for (BodyLabel& label : labels)
                if (label.part >= BodyPart::Thumb) label = {};
        for (Vec3 const& p : at) size = std::max(size, length(p - at[0]));
        countBelow.assign(s.size(), 1);
        for (std::size_t i = s.size(); i-- > 0;)
            if (s.parents[i] >= 0) countBelow[std::size_t(s.parents[i])] += countBelow[i];
    }

    // Names are believed unless the shape, where it says something, says otherwise more often than not.
    static bool agree(BodyAnchors const& names, BodyAnchors const& shape) {
        int both = 0, same = 0;
        for (int i = 0; i < BodyAnchors::total; ++i) {
            if (names.at(i) < 0 || shape.at(i) < 0) continue;
            ++both;
            // Left and right by names hold even where the shape would have it the other way.
            int const mirrored = i < 2 ? i : i < 8 ? 2 + (i - 2 + 3) % 6 : 8 + (i - 8 + 3) % 6;
            same += names.at(i) == shape.at(i) || names.at(i) == shape.at(mirrored);
        }
        return 2 * same >= both;
    }
    // What the names do not say, in whole limbs, and by the sides that the names have.
    void fill(BodyAnchors& anchors, BodyAnchors const& shape) const {
        bool const mirrored = isMirrored(anchors, shape);
        if (anchors.hips < 0) anchors.hips = shape.hips;
        if (anchors.head < 0) anchors.head = shape.head;
        for (int side = 0; side < 2; ++side) {
            if (!anchors.arms[side].isWhole()) anchors.arms[side] = shape.arms[mirrored ? 1 - side : side];
            if (!anchors.legs[side].isWhole()) anchors.legs[side] = shape.legs[mirrored ? 1 - side : side];
        }
    }
    static bool isMirrored(BodyAnchors const& names, BodyAnchors const& shape) {
        int straight = 0, crossed = 0;
        for (int i = 2; i < BodyAnchors::total; ++i) {
            int const other = i < 8 ? 2 + (i - 2 + 3) % 6 : 8 + (i - 8 + 3) % 6;
            if (names.at(i) < 0) continue;
            straight += names.at(i) == shape.at(i);
            crossed += names.at(i) == shape.at(other);
        }
        return crossed > straight;
    }
    void findMatchedBelow() {
        matchedBelow.assign(fellow.size(), -1);
        for (std::size_t i = fellow.size(); i-- > 0;) {
            int const below = fellow[i] >= 0 ? int(i) : matchedBelow[i];
            if (skeleton.parents[i] >= 0 && below >= 0) matchedBelow[std::size_t(skeleton.parents[i])] = below;
        }
    }
    int parent(int joint) const { return skeleton.parents[std::size_t(joint)]; }
    bool isFree(int joint) const { return fellow[std::size_t(joint)] < 0; }

    Skeleton const& skeleton;
    std::vector<JointName> names;
    std::vector<Vec3> at;
    std::vector<std::vector<int>> children;
    std::vector<BodyLabel> labels;
    std::vector<int> fellow;         // its counterpart in the other one, once found
    std::vector<int> matchedBelow;   // one that had a counterpart when places were begun with, or -1
    std::vector<double> countBelow;  // itself included
    bool trustsNames = false, isByName = false;
    double size = 0;
};

class Matcher {
public:
    Matcher(SkeletonMatch const& job) :
        job_(job), source_(*job.source, job.usesNames), target_(*job.target, job.usesNames) {}

    void run() {
        for (auto [s, t] : job_.given) add(s, t, sure, MatchBasis::Given);
        if (!job_.matchesRest) return;
        matchParts();
        if (source_.trustsNames && target_.trustsNames) matchEqualNames();
        matchPlaces();
    }
    std::vector<JointMatch> takeMatches() {
        std::sort(found_.begin(), found_.end(), [](auto const& a, auto const& b) { return a.target < b.target; });
        return std::move(found_);
    }
    std::vector<int> unmatchedSource() const { return freeOf(source_); }
    std::vector<int> unmatchedTarget() const { return freeOf(target_); }

private:
    static std::vector<int> freeOf(Body const& body) {
        std::vector<int> out;
        for (int i = 0; i < int(body.skeleton.size()); ++i)
            if (body.isFree(i)) out.push_back(i);
        return out;
    }
    bool areFree(int s, int t) const { return source_.isFree(s) && target_.isFree(t); }
    bool haveEqualNames(int s, int t) const {
        return source_.names[std::size_t(s)].key == target_.names[std::size_t(t)].key &&
               !source_.names[std::size_t(s)].key.empty();
    }
    JointMatch& add(int s, int t, double confidence, MatchBasis basis) {
        source_.fellow[std::size_t(s)] = t;
        target_.fellow[std::size_t(t)] = s;
        return push({s, t, confidence, basis, target_.labels[std::size_t(t)]});
    }
    JointMatch& push(JointMatch const& match) { return found_.emplace_back(match); }

    // ---- parts of the body ----

    using Bone = std::pair<BodyPart, BodySide>;
    static std::map<Bone, std::vector<int>> bonesOf(Body const& body) {
        std::map<Bone, std::vector<int>> bones;
        for (int i = 0; i < int(body.labels.size()); ++i)
            if (BodyLabel const& label = body.labels[std::size_t(i)]; label.part != BodyPart::None)
                bones[{label.part, label.side}].push_back(i);
        for (auto& [bone, joints] : bones)
            std::stable_sort(joints.begin(), joints.end(), [&](int a, int b) {
                return body.labels[std::size_t(a)].rank < body.labels[std::size_t(b)].rank;
            });
        return bones;
    }
    void matchParts() {
        auto const sources = bonesOf(source_), targets = bonesOf(target_);
        for (auto const& [bone, joints] : targets) {
            auto const it = sources.find(bone);
            if (it != sources.end()) matchBone(bone.first, it->second, joints);
        }
    }
    void matchBone(BodyPart part, std::vector<int> const& s, std::vector<int> const& t) {
        bool const isChain = part == BodyPart::Spine || part == BodyPart::Neck || part == BodyPart::Collar;
        if (s.size() == t.size() || !(isChain || isLimbBone(part)))
            matchInOrder(s, t);
        else if (isChain)
            matchAlong(s, t);
        else if (areFree(s.back(), t.front()))
            addPart(s.back(), t.front()).boneSource = s.front();
    }
    void matchInOrder(std::vector<int> const& s, std::vector<int> const& t) {
        for (std::size_t i = 0; i < std::min(s.size(), t.size()); ++i)
            if (areFree(s[i], t[i])) addPart(s[i], t[i]);
    }
    JointMatch& addPart(int s, int t) {
        bool const named = source_.isByName && target_.isByName;
        MatchBasis const basis = named ? MatchBasis::Name : MatchBasis::Shape;
        return add(s, t, named && haveEqualNames(s, t) ? sure : named ? byPartName : byShape, basis);
    }
    // The n-th of the target's joints at the same share of the chain's length as its counterpart, counted in joints.
    void matchAlong(std::vector<int> const& s, std::vector<int> const& t) {
        for (std::size_t i = 0; i < t.size(); ++i) {
            if (!target_.isFree(t[i])) continue;
            std::size_t const whole = (i + 1) * s.size() / t.size(), rest = (i + 1) * s.size() % t.size();
            double const share = double(rest) / double(t.size());
            int const before = whole > 0 ? s[whole - 1] : source_.parent(s[0]);
            if (rest == 0)
                blend(before, -1, 0, t[i]);
            else
                blend(before, s[whole], share, t[i]);
        }
    }
    void blend(int s, int next, double share, int t) {
        if (s < 0) s = next, next = -1, share = 0;
        double const confidence = (source_.isByName && target_.isByName ? byPartName : byShape) * 0.9;
        int const nearest = share > 0.5 ? next : s;
        if (source_.isFree(nearest)) source_.fellow[std::size_t(nearest)] = t;
        if (next >= 0 && source_.isFree(next)) source_.fellow[std::size_t(next)] = t;
        target_.fellow[std::size_t(t)] = nearest;
        MatchBasis const basis = source_.isByName && target_.isByName ? MatchBasis::Name : MatchBasis::Shape;
        push({s, t, confidence, basis, target_.labels[std::size_t(t)], next, share});
    }

    // ---- equal names ----

    void matchEqualNames() {
        std::map<std::wstring, std::pair<int, int>> count, index;  // source, target
        for (int i = 0; i < int(source_.names.size()); ++i) {
            std::wstring const& key = source_.names[std::size_t(i)].key;
            ++count[key].first, index[key].first = i;
        }
        for (int i = 0; i < int(target_.names.size()); ++i) {
            std::wstring const& key = target_.names[std::size_t(i)].key;
            ++count[key].second, index[key].second = i;
        }
        for (auto const& [key, n] : count) {
            if (key.empty() || n != std::pair(1, 1)) continue;
            auto const [s, t] = index[key];
            if (!areFree(s, t) || contradict(s, t)) continue;
            add(s, t, hangAlike(s, t) ? sure : byEqualName, MatchBasis::Name);
        }
    }
    // Known to be different parts of a body.
    bool contradict(int s, int t) const {
        BodyLabel const &a = source_.labels[std::size_t(s)], &b = target_.labels[std::size_t(t)];
        return a.part != BodyPart::None && b.part != BodyPart::None && (a.part != b.part || a.side != b.side);
    }
    bool hangAlike(int s, int t) const {
        int const a = source_.parent(s), b = target_.parent(t);
        return a < 0 || b < 0 ? a == b : source_.fellow[std::size_t(a)] == b;
    }

    // ---- places in the tree ----

    void matchPlaces() {
        source_.findMatchedBelow();
        target_.findMatchedBelow();
        std::vector<int> rootsOf[2];
        for (auto [body, roots] : {std::pair(&source_, &rootsOf[0]), std::pair(&target_, &rootsOf[1])})
            for (int i = 0; i < int(body->skeleton.size()); ++i)
                if (body->parent(i) < 0) roots->push_back(i);
        matchSiblings(rootsOf[0], rootsOf[1], {}, {});
        for (int t = 0; t < int(target_.skeleton.size()); ++t) {  // parents first
            int const s = target_.fellow[std::size_t(t)];
            if (s >= 0 && source_.fellow[std::size_t(s)] == t)
                matchSiblings(source_.children[std::size_t(s)], target_.children[std::size_t(t)],
                              source_.at[std::size_t(s)], target_.at[std::size_t(t)]);
        }
    }
    static constexpr std::size_t mostCandidates = 1'000'000;  // no body has a thousand limbs in one place
    struct Candidate {
        double cost;
        int source, target;
        bool operator<(Candidate const& o) const {
            return std::tie(cost, source, target) < std::tie(o.cost, o.source, o.target);
        }
    };
    void matchSiblings(std::vector<int> const& s, std::vector<int> const& t, Vec3 const& fromS, Vec3 const& fromT) {
        if (s.size() * t.size() > mostCandidates) return;
        std::vector<Candidate> candidates;
        for (int a : s)
            for (int b : t)
                if (areFree(a, b) && !contradict(a, b) && canBeFellows(a, b))
                    if (double const cost = difference(a, b, fromS, fromT); cost < mostDifference)
                        candidates.push_back({cost, a, b});
        std::sort(candidates.begin(), candidates.end());
        for (Candidate const& c : candidates)
            if (areFree(c.source, c.target))
                add(c.source, c.target, byPlace * (1 - 0.5 * c.cost / mostDifference), MatchBasis::Place);
    }
    // What is matched below one hangs below the other; one joint of it speaks for all.
    bool canBeFellows(int s, int t) const {
        return isMatchedBelow(source_, s, target_, t) && isMatchedBelow(target_, t, source_, s);
    }
    static bool isMatchedBelow(Body const& here, int joint, Body const& there, int other) {
        int const below = here.matchedBelow[std::size_t(joint)];
        return below < 0 || isAncestor(there.skeleton, other, here.fellow[std::size_t(below)]);
    }
    // Of direction, in right angles, of the logarithm of the relative lengths, and of how much hangs below.
    static constexpr double mostDifference = 1.5;
    double difference(int s, int t, Vec3 const& fromS, Vec3 const& fromT) const {
        Vec3 const a = (source_.at[std::size_t(s)] - fromS) * (1 / std::max(source_.size, 1e-9));
        Vec3 const b = (target_.at[std::size_t(t)] - fromT) * (1 / std::max(target_.size, 1e-9));
        double const la = length(a), lb = length(b), shortest = 0.01;
        double angle = 0;
        if (la > shortest && lb > shortest) angle = std::acos(std::clamp(dot(a, b) / (la * lb), -1.0, 1.0));
        double const lengths = std::abs(std::log((la + shortest) / (lb + shortest)));
        double const counts =
            std::abs(std::log(source_.countBelow[std::size_t(s)]) - std::log(target_.countBelow[std::size_t(t)]));
        return angle * (2 / 3.14159265) + 0.5 * lengths + 0.5 * counts;
    }
    SkeletonMatch const& job_;
    Body source_, target_;
    std::vector<JointMatch> found_;
};

bool isInside(int joint, Skeleton const& skeleton) { return joint >= 0 && joint < int(skeleton.size()); }

}  // namespace

bool SkeletonMatch::Validate() const {
    if (!source || !target || !source->Validate() || !target->Validate()) return false;
    std::vector<bool> takenSource(source->size()), takenTarget(target->size());
    for (auto [s, t] : given) {
        if (!isInside(s, *source) || !isInside(t, *target)) return false;
        if (takenSource[std::size_t(s)] || takenTarget[std::size_t(t)]) return false;
        takenSource[std::size_t(s)] = takenTarget[std::size_t(t)] = true;
    }
    return true;
}

bool SkeletonMatch::Run() {
    if (!Validate()) return false;
    Matcher matcher(*this);
    matcher.run();
    matches = matcher.takeMatches();
    unmatchedSource = matcher.unmatchedSource();
    unmatchedTarget = matcher.unmatchedTarget();
    return true;
}

JointMatch const* SkeletonMatch::matchOf(int joint) const {
    for (JointMatch const& match : matches)
        if (match.target == joint) return &match;
    return nullptr;
}

double SkeletonMatch::confidence(int joint) const {
    JointMatch const* match = matchOf(joint);
    return match ? match->confidence : 0;
}

double SkeletonMatch::meanConfidence() const {
    double sum = 0;
    for (JointMatch const& match : matches) sum += match.confidence;
    return matches.empty() ? 0 : sum / double(matches.size());
}

}  // namespace sg
