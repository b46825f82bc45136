// info: what a document holds; of a clip also what was judged about it, with the evidence.
#include "hosts/tavo/json.h"
#include "hosts/tavo/session.h"
#include "plugins/bvh/exporter.h"
#include "qel/utils/text.h"
#include "tavo/animation/animation.h"
#include "tavo/kinematics/transform.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>

namespace host {
namespace {

using namespace Tavo;
using Qelutils::toUtf8;

struct TreeLine {
    int depth;
    std::string name, path, type;
    int curves;  // that feed it
};

struct Facts {
    std::map<std::string, int> objects;            // by type
    std::vector<TreeLine> tree;                    // below the origin, without curves
    float start, end, playbackStart, playbackEnd;  // seconds
    int frameRate;
    bvh::FrameTime frameTime;
    double frames;
    std::size_t curves = 0, keys = 0;
};

void addBranch(Facts& facts, XObject const& top) {
    std::vector<std::pair<XObject, int>> waiting{{top, 0}};
    while (!waiting.empty()) {
        auto const [object, depth] = waiting.back();
        waiting.pop_back();
        TreeLine line{depth, toUtf8(object.Name()), toUtf8(object.Path()), toUtf8(object.ObjectType()), 0};
        for (int i = object.ChildCount() - 1; i >= 0; --i) {
            XObject const child = object.Child(i);
            if (child.SupportsType(XAnimation::TypeID))
                ++line.curves;
            else
                waiting.emplace_back(child, depth + 1);
        }
        facts.tree.push_back(std::move(line));
    }
}

Facts gather(Session& session) {
    XScene& scene = session.scene();
    XSceneSettings const settings = session.settings();
    Facts facts;
    Qelutils::Vector<XObject> objects;
    scene.Objects(objects);
    for (XObject const& object : objects) {
        ++facts.objects[toUtf8(object.ObjectType())];
        if (!object.SupportsType(XAnimation::TypeID)) continue;
        ++facts.curves;
        facts.keys += std::size_t(XAnimation(object).KeyframeCount());
    }
    XObject const origin = scene.RootObject();
    for (int i = 0; i < origin.ChildCount(); ++i) addBranch(facts, origin.Child(i));
    facts.start = settings.StartTime().Float();
    facts.end = settings.EndTime().Float();
    facts.playbackStart = settings.PlaybackStartTime().Float();
    facts.playbackEnd = settings.PlaybackEndTime().Float();
    facts.frameRate = settings.FrameRate().Integer();
    facts.frameTime = bvh::frameTimeOf(scene);
    facts.frames = bvh::frameCountOf(scene, facts.frameTime.seconds);
    return facts;
}

// ---- for people ----

std::string range(float from, float to) {
    return fmt::format("{} to {} s", Qelutils::number(from), Qelutils::number(to));
}

std::string sceneText(Facts const& facts) {
    std::string text = fmt::format("time        {}\n", range(facts.start, facts.end));
    if (facts.playbackStart != facts.start || facts.playbackEnd != facts.end)
        text += fmt::format("playback    {}\n", range(facts.playbackStart, facts.playbackEnd));
    text += fmt::format("frames      {:.0f} at {} a second (frame time {} s)\n", facts.frames, facts.frameRate,
                        facts.frameTime.text);
    text += fmt::format("keys        {} in {} curves\n", facts.keys, facts.curves);
    text += "objects\n";
    for (auto const& [type, count] : facts.objects) text += fmt::format("  {:5} {}\n", count, type);
    text += "hierarchy\n";
    for (TreeLine const& line : facts.tree) {
        text += fmt::format("{}{}", std::string(std::size_t(2 + 2 * line.depth), ' '), line.name);
        if (line.type != "Joint") text += fmt::format("  ({})", line.type);
        if (line.curves) text += fmt::format("  {} curve{}", line.curves, line.curves == 1 ? "" : "s");
        text += '\n';
    }
    return text;
}

std::string channelText(bvh::Clip const& clip) {
    std::string text = "channels\n";
    for (auto const& [order, count] : bvh::channelOrders(clip)) text += fmt::format("  {:5} {}\n", count, order);
    if (bvh::hasMixedChannelCounts(clip)) {
        text += "  the joints have different numbers of channels:";
        auto const counts = bvh::channelCounts(clip);
        for (std::size_t i = 0; i < counts.size(); ++i)
            if (counts[i]) text += fmt::format(" {} have {},", counts[i], i);
        text.back() = '\n';
    }
    return text;
}

std::string suspiciousText(OpenedClip const& opened) {
    std::string text =
        fmt::format("suspicious  {}\n", opened.notes.suspiciousCount
                                            ? fmt::format("{} values beyond all reason", opened.notes.suspiciousCount)
                                            : "none");
    for (bvh::Suspicious const& found : opened.notes.suspicious)
        text +=
            fmt::format("  line {}, column {}: {} in frame {} of {}\n", found.line, found.column,
                        Qelutils::number(found.value), found.frame, opened.clip.joints[std::size_t(found.joint)].name);
    if (opened.notes.suspiciousCount > opened.notes.suspicious.size()) text += "  ...\n";
    return text;
}

std::string clipText(OpenedClip const& opened) {
    bvh::ImportReport const& report = opened.report;
    bool const adds = report.positions.positions == bvh::Positions::add;
    std::string text = channelText(opened.clip);
    text += fmt::format("unit        {}: {}\n", bvh::symbolOf(report.unit), report.unitReason);
    text += fmt::format("positions   {}: {}\n", adds ? "add" : "replace",
                        report.positions.reason.empty() ? "As told." : report.positions.reason);
    text += report.renamed.empty() ? "renamed     none\n" : "renamed\n";
    for (auto const& renamed : report.renamed)
        text += fmt::format("  \"{}\" is {}\n", renamed.from, toUtf8(renamed.to));
    return text + suspiciousText(opened);
}

// ---- for machines ----

void addScene(Json& json, Facts const& facts) {
    json.member("start", facts.start).member("end", facts.end);
    json.member("playbackStart", facts.playbackStart).member("playbackEnd", facts.playbackEnd);
    json.member("frameRate", facts.frameRate).member("frameTime", facts.frameTime.seconds);
    json.member("frameTimeText", facts.frameTime.text).member("frames", facts.frames);
    json.member("curves", facts.curves).member("keys", facts.keys).key("objects").open('{');
    for (auto const& [type, count] : facts.objects) json.member(type, count);
    json.close('}').key("hierarchy").open('[');
    for (TreeLine const& line : facts.tree) {
        json.open('{').member("path", line.path).member("name", line.name).member("type", line.type);
        json.member("depth", line.depth).member("curves", line.curves).close('}');
    }
    json.close(']');
}

void addChannels(Json& json, bvh::Clip const& clip) {
    json.key("channelOrders").open('{');
    for (auto const& [order, count] : bvh::channelOrders(clip)) json.member(order, count);
    json.close('}').key("channelCounts").open('[');
    for (int const count : bvh::channelCounts(clip)) json.value(count);
    json.close(']').member("mixedCounts", bvh::hasMixedChannelCounts(clip));
}

void addClip(Json& json, OpenedClip const& opened) {
    bvh::ImportReport const& report = opened.report;
    json.key("clip").open('{').member("joints", opened.clip.joints.size()).member("channels", opened.clip.channels);
    json.member("frames", opened.clip.frames);
    addChannels(json, opened.clip);
    json.member("unit", bvh::symbolOf(report.unit)).member("unitReason", report.unitReason);
    json.member("positions", report.positions.positions == bvh::Positions::add ? "add" : "replace");
    json.member("positionsReason", report.positions.reason).key("renamed").open('[');
    for (auto const& renamed : report.renamed)
        json.open('{').member("from", renamed.from).member("to", renamed.to).close('}');
    json.close(']').member("suspiciousCount", opened.notes.suspiciousCount).key("suspicious").open('[');
    for (bvh::Suspicious const& found : opened.notes.suspicious) {
        json.open('{').member("line", found.line).member("column", found.column).member("value", found.value);
        json.member("frame", found.frame).member("joint", opened.clip.joints[std::size_t(found.joint)].name).close('}');
    }
    json.close(']').close('}');
}

}  // namespace

void run(InfoVerb const& verb) {
    Session session(verb.input);
    Facts const facts = gather(session);
    bool const isClip = session.clip().has_value();
    if (!verb.json) {
        std::string const head = fmt::format("{}: a {}\n", verb.input.file, isClip ? "motion clip" : "scene");
        return writeResult(head + (isClip ? clipText(*session.clip()) : "") + sceneText(facts));
    }
    Json json;
    json.open('{').member("file", verb.input.file).member("kind", isClip ? "clip" : "scene");
    addScene(json, facts);
    if (isClip) addClip(json, *session.clip());
    writeResult(json.close('}').take());
}

}  // namespace host
