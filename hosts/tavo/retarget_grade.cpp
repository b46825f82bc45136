#include "hosts/tavo/retarget_grade.h"
#include "hosts/tavo/console.h"
#include "hosts/tavo/json.h"
#include "qel/sg/retarget_node.h"
#include "qel/utils/text.h"

#include <algorithm>
#include <fmt/format.h>

namespace host {
namespace {

using namespace Tavo;
using Qelutils::toUtf8;

char const* nameOf(sg::MatchBasis basis) {
    constexpr char const* names[] = {"given", "name", "shape", "place"};
    return names[int(basis)];
}

// Of y and z that along which the skeleton is taller at rest.
Qelp::Vector3 upOf(sg::Skeleton const& skeleton) {
    double low[2] = {0, 0}, high[2] = {0, 0};
    for (auto const& at : skeleton.restPositions())
        for (int i = 0; i < 2; ++i) {
            low[i] = std::min(low[i], at[i + 1]);
            high[i] = std::max(high[i], at[i + 1]);
        }
    return high[1] - low[1] > high[0] - low[0] ? Qelp::Vector3{0, 0, 1} : Qelp::Vector3{0, 1, 0};
}

std::string listOf(std::vector<std::string> const& names) {
    return names.empty() ? "none" : fmt::format("{}", fmt::join(names, ", "));
}

void writeMeasure(Json& json, char const* name, sg::RetargetReport::Measure const& measure) {
    json.key(name).open('{').member("largest", measure.largest).member("mean", measure.mean).close('}');
}

}  // namespace

RetargetGrade::Side::Side(XAttribute const& references) {
    for (int i = 0; i < references.ArraySize(); ++i) {
        joints.emplace_back(references.ObjectRef(i));
        names.push_back(toUtf8(joints.back().Name()));
    }
}

void RetargetGrade::Side::sample() {
    for (XTransform const& joint : joints) {
        XVector3 const at = joint.WorldTranslation();
        positions.push_back({at.X(), at.Y(), at.Z()});
    }
}

std::vector<std::string> RetargetGrade::Side::namesOf(std::vector<int> const& indices) const {
    std::vector<std::string> chosen;
    for (int const i : indices) chosen.push_back(names[std::size_t(i)]);
    return chosen;
}

RetargetGrade::RetargetGrade(XRetarget const& rig) :
    node_(static_cast<sg::RetargetNode&>(*rig.getNode())), source_(rig.SourceJoints()), target_(rig.TargetJoints()) {}

void RetargetGrade::sample() {
    source_.sample();
    target_.sample();
    report_.limitHits += node_.getLimitHits();
}

void RetargetGrade::finish(double frameTime) {
    sg::SkeletonMatch const& match = node_.getMatch();
    report_.sourceUp = upOf(*match.source);
    report_.targetUp = upOf(*match.target);
    std::vector<sg::RetargetFoot> const feet = findFeet(match, report_.sourceUp, report_.targetUp);
    report_.source = source_.tracks();
    report_.target = target_.tracks();
    report_.frameTime = frameTime;
    report_.feet = feet;
    report_.match = &match;
    report_.scale = node_.getRig().scale;
    if (!report_.Run()) throw Failure{ExitCode::failed, "the result cannot be graded"};
    tellMatches(match);
    report_.feet = {};  // what the node held and what stood here goes
    report_.match = nullptr;
}

// A joint that is left alone follows nothing, whatever would correspond to it.
void RetargetGrade::tellMatches(sg::SkeletonMatch const& match) {
    std::vector<int> freeSource = match.unmatchedSource, freeTarget = match.unmatchedTarget;
    for (sg::JointMatch const& pair : match.matches) {
        bool const isPair = pair.blendSource < 0 && pair.boneSource < 0;
        if (node_.getRig().targets[std::size_t(pair.target)].isDriven) {
            matches_.push_back({source_.names[std::size_t(pair.source)], target_.names[std::size_t(pair.target)],
                                nameOf(pair.basis), pair.confidence, isPair});
            continue;
        }
        freeTarget.push_back(pair.target);
        if (isPair) freeSource.push_back(pair.source);
    }
    std::sort(freeSource.begin(), freeSource.end());
    std::sort(freeTarget.begin(), freeTarget.end());
    unmatchedSource_ = source_.namesOf(freeSource);
    unmatchedTarget_ = target_.namesOf(freeTarget);
}

std::string RetargetGrade::text() const {
    sg::RetargetReport const& r = report_;
    std::string text = fmt::format("{}: {} of {} joints matched, confidence {:.2f} on the mean, {:.2f} at least\n",
                                   toUtf8(nameOf(r.verdict)), matches_.size(), target_.joints.size(), r.meanConfidence,
                                   r.leastConfidence);
    for (std::wstring const& reason : r.reasons) text += fmt::format("  {}\n", toUtf8(reason));
    for (Match const& match : matches_)
        text += fmt::format("  {:<20} follows {:<20} {:.2f}  {}\n", match.target, match.source, match.confidence,
                            match.basis);
    text += fmt::format("without a match: {}; of the clip: {}\n", listOf(unmatchedTarget_), listOf(unmatchedSource_));
    text += fmt::format("feet slide {:.1f} mm at most, {:.1f} on the mean (in the clip {:.1f} and {:.1f})\n",
                        r.slide.largest, r.slide.mean, r.sourceSlide.largest, r.sourceSlide.mean);
    text += fmt::format("deepest below the ground {:.1f} mm (in the clip {:.1f})\n", r.depth, r.sourceDepth);
    return text + fmt::format("limits held {:.1f} % of the joints' frames; travel scaled by {:.3f}\n",
                              100 * r.limitShare, r.scale);
}

std::string RetargetGrade::json(RetargetVerb const& verb) const {
    sg::RetargetReport const& r = report_;
    Json json;
    json.open('{').member("file", verb.input.file).member("to", verb.to).member("wrote", verb.output);
    json.member("verdict", std::wstring(nameOf(r.verdict))).key("reasons").open('[');
    for (std::wstring const& reason : r.reasons) json.value(reason);
    json.close(']').key("matches").open('[');
    for (Match const& match : matches_)
        json.open('{')
            .member("source", match.source)
            .member("target", match.target)
            .member("confidence", match.confidence)
            .member("basis", match.basis)
            .close('}');
    json.close(']').key("unmatchedSource").open('[');
    for (std::string const& name : unmatchedSource_) json.value(name);
    json.close(']').key("unmatchedTarget").open('[');
    for (std::string const& name : unmatchedTarget_) json.value(name);
    json.close(']').member("meanConfidence", r.meanConfidence).member("leastConfidence", r.leastConfidence);
    json.member("frames", r.frames).member("scale", r.scale).member("limitShare", r.limitShare);
    json.key("millimetres").open('{');
    writeMeasure(json, "slide", r.slide);
    writeMeasure(json, "sourceSlide", r.sourceSlide);
    json.member("depth", r.depth).member("sourceDepth", r.sourceDepth).close('}');
    json.member("isEmpty", r.isEmpty).member("isFrozen", r.isFrozen);
    return json.close('}').take();
}

std::string RetargetGrade::mapText() const {
    std::string text = "# source\ttarget\tconfidence\tfound by\n";
    for (Match const& match : matches_)
        text += fmt::format("{}{}\t{}\t{:.2f}\t{}\n", match.isPair ? "" : "# ", match.source, match.target,
                            match.confidence, match.basis);
    for (std::string const& name : unmatchedTarget_) text += fmt::format("\t{}\n", name);
    return text;
}

void checkGates(RetargetVerb const& verb, sg::RetargetReport const& report) {
    std::vector<std::string> missed;
    auto const atMost = [&](std::optional<double> gate, double value, char const* what) {
        if (gate && !(value <= *gate)) missed.push_back(fmt::format("{} {:.1f} mm, more than {}", what, value, *gate));
    };
    atMost(verb.maxSlide, report.slide.largest, "a foot slides");
    atMost(verb.maxPenetration, report.depth, "a foot goes below the ground by");
    if (verb.minConfidence && !(report.meanConfidence >= *verb.minConfidence))
        missed.push_back(
            fmt::format("matches are sure to {:.2f}, less than {}", report.meanConfidence, *verb.minConfidence));
    if (report.verdict == sg::RetargetVerdict::Failed && !report.reasons.empty())
        throw Failure{ExitCode::failed, toUtf8(report.reasons.front()) + "; nothing is written"};
    if (!missed.empty())
        throw Failure{ExitCode::missed, fmt::format("{}; nothing is written", fmt::join(missed, "; "))};
}

}  // namespace host
