#include "qel/solvers/retarget_report.h"
#include "qel/utils/text.h"

namespace sg {

using namespace retargeting;

namespace {

constexpr double millimetres = 1000;

Vec3 read(Qelp::Vector3 const& v) { return {double(v.x), double(v.y), double(v.z)}; }

// ---- sizes ----

double extent(JointTracks const& t, std::size_t frame) {
    double most = 0;
    for (int axis = 0; axis < 3; ++axis) {
        double low = 1e300, high = -1e300;
        for (int j = 0; j < int(t.joints); ++j) {
            double const x = t.at(frame, j)[axis];
            low = std::min(low, x), high = std::max(high, x);
        }
        most = std::max(most, high - low);
    }
    return most;
}

double sizeOf(JointTracks const& t) {
    double most = 0;
    for (std::size_t f = 0; f < t.frames(); ++f) most = std::max(most, extent(t, f));
    return most;
}

// The furthest that a joint comes from where it was first.
double movementOf(JointTracks const& t) {
    double most = 0;
    for (std::size_t f = 1; f < t.frames(); ++f)
        for (int j = 0; j < int(t.joints); ++j) most = std::max(most, length(t.at(f, j) - t.at(0, j)));
    return most;
}

bool areFinite(JointTracks const& t) {
    return std::all_of(t.positions.begin(), t.positions.end(), [](Qelp::Vector3 const& p) {
        return std::abs(p.x) < 1e15F && std::abs(p.y) < 1e15F && std::abs(p.z) < 1e15F;
    });
}

// ---- contacts ----

// Frames [first, last) in which a foot is down.
struct Contact {
    std::size_t first, last;
};

// What lies below a twentieth of all: a floor that no single bad frame decides.
double lowOf(std::vector<double> heights) {
    if (heights.empty()) return 0;
    auto const place = heights.begin() + long(heights.size() / 20);
    std::nth_element(heights.begin(), place, heights.end());
    return *place;
}

std::vector<double> heightsOf(JointTracks const& t, int joint, Vec3 const& up) {
    std::vector<double> out;
    for (std::size_t f = 0; f < t.frames(); ++f) out.push_back(dot(t.at(f, joint), up));
    return out;
}

class ContactFinder {
public:
    ContactFinder(RetargetReport const& report, double size) :
        report_(report), height_(report.contactHeight * size), speed_(report.contactSpeed * size) {}

    std::vector<Contact> find(int joint) const {
        std::vector<double> const heights = heightsOf(report_.source, joint, read(report_.sourceUp));
        double const low = lowOf(heights);
        auto const shortest = std::size_t(std::clamp(std::ceil(report_.shortestContact / report_.frameTime), 1.0, 1e9));
        std::vector<Contact> out;
        for (std::size_t f = 0, first = 0; f <= heights.size(); ++f) {
            if (f < heights.size() && heights[f] - low <= height_ && speed(f, joint) <= speed_) continue;
            if (f - first >= shortest) out.push_back({first, f});
            first = f + 1;
        }
        return out;
    }

private:
    // Over the frames on both sides, so that the noise of one counts for less.
    double speed(std::size_t f, int joint) const {
        std::size_t const before = f ? f - 1 : 0, after = std::min(f + 1, report_.source.frames() - 1);
        if (after == before) return 0;
        return length(report_.source.at(after, joint) - report_.source.at(before, joint)) /
               (double(after - before) * report_.frameTime);
    }

    RetargetReport const& report_;
    double height_, speed_;
};

RetargetReport::Measure slideOn(std::vector<Contact> const& contacts, JointTracks const& t, int joint, Vec3 const& up,
                                double scale) {
    RetargetReport::Measure out;
    double sum = 0;
    std::size_t count = 0;
    for (Contact const& c : contacts)
        for (std::size_t f = c.first; f < c.last; ++f, ++count) {
            Vec3 const way = t.at(f, joint) - t.at(c.first, joint);
            double const slide = length(way - up * dot(way, up)) * scale * millimetres;
            out.largest = std::max(out.largest, slide), sum += slide;
        }
    out.mean = count ? sum / double(count) : 0;
    return out;
}

double depthOf(JointTracks const& t, int joint, Vec3 const& up, double level, double scale) {
    double depth = 0;
    for (double height : heightsOf(t, joint, up)) depth = std::max(depth, level - height);
    return depth * scale * millimetres;
}

// ---- the verdict ----

// Of the target's size: what nobody sees, and what everybody does.
constexpr double fineSlide = 0.02, poorSlide = 0.06, fineDepth = 0.02, poorDepth = 0.06;
constexpr double fineConfidence = 0.7, poorConfidence = 0.45, fineLimits = 0.05, poorLimits = 0.25;

class Judge {
public:
    explicit Judge(RetargetReport& report) : report_(report) { report.verdict = RetargetVerdict::Good; }

    void fail(bool is, wchar_t const* reason) {
        if (!is) return;
        report_.verdict = RetargetVerdict::Failed;
        report_.reasons.emplace_back(reason);
    }
    void grade(double value, double fine, double poor, std::wstring const& reason) {
        if (!(value > fine)) return;
        RetargetVerdict const is = value > poor ? RetargetVerdict::Poor : RetargetVerdict::Fair;
        report_.verdict = std::min(report_.verdict, is);
        report_.reasons.push_back(reason);
    }

private:
    RetargetReport& report_;
};

using Qelutils::format;

void judge(RetargetReport& r, double targetSize) {
    Judge judge(r);
    judge.fail(r.isBroken, L"The target has positions that are not finite.");
    judge.fail(r.isEmpty, L"There is nothing to see: no frames, no joints or no matches.");
    judge.fail(r.isCollapsed, L"All joints of the target lie in one point.");
    judge.fail(r.isFrozen, L"The target does not move, but the source does.");
    if (r.verdict == RetargetVerdict::Failed) return;
    double const size = std::max(targetSize, 1e-9) * millimetres;
    judge.grade((r.slide.largest - r.sourceSlide.largest) / size, fineSlide, poorSlide,
                format(L"Feet slide by up to %.0f mm on the floor, the source's by %.0f mm.", r.slide.largest,
                       r.sourceSlide.largest));
    judge.grade((r.depth - r.sourceDepth) / size, fineDepth, poorDepth,
                format(L"Feet go up to %.0f mm below the floor, the source's %.0f mm.", r.depth, r.sourceDepth));
    judge.grade(1 - r.meanConfidence, 1 - fineConfidence, 1 - poorConfidence,
                format(L"Joints are matched with a confidence of %.2f only.", r.meanConfidence));
    judge.grade(r.limitShare, fineLimits, poorLimits,
                format(L"Limits hold back %.0f %% of the joints and frames.", 100 * r.limitShare));
}

// ---- the parts of the report ----

void readMatches(RetargetReport& r) {
    SkeletonMatch const& match = *r.match;
    r.matched = match.matches.size();
    r.unmatchedSource = match.unmatchedSource.size(), r.unmatchedTarget = match.unmatchedTarget.size();
    r.meanConfidence = match.meanConfidence();
    r.leastConfidence = match.matches.empty() ? 0 : 1;
    for (JointMatch const& m : match.matches) r.leastConfidence = std::min(r.leastConfidence, m.confidence);
    double const count = double(r.matched) * double(r.frames);
    r.limitShare = count > 0 ? r.limitHits / count : 0;
}

RetargetReport::Foot measureFoot(RetargetReport const& r, RetargetFoot const& joints, double size) {
    RetargetReport::Foot foot;
    foot.joints = joints;
    std::vector<Contact> const contacts = ContactFinder(r, size).find(joints.source);
    foot.contacts = int(contacts.size());
    for (Contact const& c : contacts) foot.contactFrames += int(c.last - c.first);
    Vec3 const sourceUp = read(r.sourceUp), targetUp = read(r.targetUp);
    foot.slide = slideOn(contacts, r.target, joints.target, targetUp, 1);
    foot.sourceSlide = slideOn(contacts, r.source, joints.source, sourceUp, r.scale);
    // The floor is where the source's foot stands when it is down, and lies there in the target's size for the target.
    double const standing = lowOf(heightsOf(r.source, joints.source, sourceUp));
    double const floor = standing - joints.sourceHeight;
    foot.sourceDepth = depthOf(r.source, joints.source, sourceUp, standing, r.scale);
    foot.depth = depthOf(r.target, joints.target, targetUp, floor * r.scale + joints.targetHeight, 1);
    return foot;
}

void sumUp(RetargetReport& r) {
    double frames = 0;
    for (RetargetReport::Foot const& foot : r.footing) {
        r.slide.largest = std::max(r.slide.largest, foot.slide.largest);
        r.sourceSlide.largest = std::max(r.sourceSlide.largest, foot.sourceSlide.largest);
        r.slide.mean += foot.slide.mean * foot.contactFrames;
        r.sourceSlide.mean += foot.sourceSlide.mean * foot.contactFrames;
        r.depth = std::max(r.depth, foot.depth), r.sourceDepth = std::max(r.sourceDepth, foot.sourceDepth);
        frames += foot.contactFrames;
    }
    if (frames > 0) r.slide.mean /= frames, r.sourceSlide.mean /= frames;
}

bool isJointOf(int joint, JointTracks const& t) { return joint >= 0 && std::size_t(joint) < t.joints; }
bool isWhole(JointTracks const& t) { return t.joints ? t.positions.size() % t.joints == 0 : t.positions.empty(); }
bool isPositive(double v) { return v > 0 && v < 1e15; }
bool isUnit(Qelp::Vector3 const& v) { return std::abs(length(read(v)) - 1) < 1e-3; }

// The joint of a part on a side that is matched, first in its row.
JointMatch const* partOf(SkeletonMatch const& match, BodyPart part, BodySide side) {
    for (JointMatch const& m : match.matches)
        if (m.label == BodyLabel{part, side, 0}) return &m;
    return nullptr;
}

double heightAtRest(std::vector<Vec3> const& at, int joint, Vec3 const& up) {
    double low = 1e300;
    for (Vec3 const& p : at) low = std::min(low, dot(p, up));
    return dot(at[std::size_t(joint)], up) - low;
}

}  // namespace

wchar_t const* nameOf(RetargetVerdict verdict) {
    constexpr wchar_t const* names[] = {L"Failed", L"Poor", L"Fair", L"Good"};
    return names[std::size_t(verdict)];
}

std::vector<RetargetFoot> findFeet(SkeletonMatch const& match, Qelp::Vector3 const& sourceUp,
                                   Qelp::Vector3 const& targetUp) {
    std::vector<RetargetFoot> out;
    if (!match.source || !match.target) return out;
    auto const sourceAt = match.source->restPositions(), targetAt = match.target->restPositions();
    for (BodySide side : {BodySide::Left, BodySide::Right}) {
        JointMatch const* m = partOf(match, BodyPart::Toe, side);
        if (!m) m = partOf(match, BodyPart::Foot, side);
        if (m)
            out.push_back({m->source, m->target, heightAtRest(sourceAt, m->source, read(sourceUp)),
                           heightAtRest(targetAt, m->target, read(targetUp))});
    }
    return out;
}

bool RetargetReport::Validate() const {
    if (!isWhole(source) || !isWhole(target) || source.frames() != target.frames()) return false;
    if (!match || !match->source || !match->target) return false;
    if (match->source->size() != source.joints || match->target->size() != target.joints) return false;
    for (RetargetFoot const& foot : feet)
        if (!isJointOf(foot.source, source) || !isJointOf(foot.target, target) ||
            !(std::abs(foot.sourceHeight) < 1e15) || !(std::abs(foot.targetHeight) < 1e15))
            return false;
    return isPositive(frameTime) && isPositive(scale) && isPositive(contactHeight) && isPositive(contactSpeed) &&
           isPositive(shortestContact) && isUnit(sourceUp) && isUnit(targetUp);
}

bool RetargetReport::Run() {
    if (!Validate()) return false;
    footing.clear(), reasons.clear();
    slide = sourceSlide = {};
    depth = sourceDepth = 0;
    frames = target.frames();
    readMatches(*this);
    isBroken = !areFinite(target) || !areFinite(source);
    isEmpty = frames == 0 || target.joints == 0 || matched == 0;
    isFrozen = isCollapsed = false;
    double sourceSize = 0, targetSize = 0;
    if (!isBroken && !isEmpty) {
        sourceSize = sizeOf(source), targetSize = sizeOf(target);
        isCollapsed = target.joints > 1 && targetSize < 1e-6 * std::max(1.0, sourceSize * scale);
        isFrozen = movementOf(source) > 0.01 * sourceSize && movementOf(target) < 1e-4 * targetSize;
        for (RetargetFoot const& foot : feet) footing.push_back(measureFoot(*this, foot, sourceSize));
        sumUp(*this);
    }
    judge(*this, targetSize);
    return true;
}

}  // namespace sg
