// trajectory info: what the paths of a document hold.
#include "hosts/tavo/json.h"
#include "hosts/tavo/paths.h"
#include "hosts/tavo/session.h"
#include "hosts/tavo/trajectory_verbs.h"
#include "tavo/objects/matrix.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace host {
namespace {

using namespace Tavo;

// Of the motion from timing key to timing key; metres a second.
struct Speed {
    double smallest = 0, mean = 0, largest = 0;
};

struct Timing {
    int keys = 0;
    double start = 0, end = 0;  // seconds
    bool isMonotonic = true;
    Speed speed;
};

struct Facts {
    std::string path, keep;
    bool isSampled, usesGuards;
    int keys, rotationKeys;
    double length;  // metres
    Timing timing;
    Qelutils::Vector<XSafeGuard> guards;  // centres in the scene
    std::vector<std::string> followers;
};

// Keys of one time have no speed between them. The mean is that over the whole time, however often the path is taken.
Timing timingOf(XTrajectory const& path) {
    std::vector<int> const order = timingOrder(path);
    Qelutils::Vector<float> times, fractions;
    path.TimingCurve().KeyframeInputValues().Floats(times);
    path.TimingCurve().KeyframeOutputValues().Floats(fractions);
    Timing timing;
    if (order.empty() || fractions.size() < times.size()) return timing;
    auto const time = [&](std::size_t rank) { return double(times[std::size_t(order[rank])]); };
    double const length = double(path.MaxArcLength().Float());
    double travelled = 0;
    bool isFirst = true;
    for (std::size_t rank = 1; rank < order.size(); ++rank) {
        double const step =
            double(fractions[std::size_t(order[rank])]) - double(fractions[std::size_t(order[rank - 1])]);
        double const duration = time(rank) - time(rank - 1), distance = std::abs(step) * length;
        timing.isMonotonic = timing.isMonotonic && step >= 0;
        travelled += distance;
        if (!(duration > 0)) continue;
        double const speed = distance / duration;
        timing.speed.smallest = isFirst ? speed : std::min(timing.speed.smallest, speed);
        timing.speed.largest = std::max(timing.speed.largest, speed);
        isFirst = false;
    }
    timing.keys = int(order.size());
    timing.start = time(0), timing.end = time(order.size() - 1);
    if (timing.end > timing.start) timing.speed.mean = travelled / (timing.end - timing.start);
    return timing;
}

Facts factsOf(XTrajectory const& path) {
    Facts facts{pathOf(path),
                keepOf(path),
                path.IsTranslationCurveSampled().Boolean(),
                path.UseSafeGuards().Boolean(),
                keyCountOf(path),
                path.RotationKeyframesArray().AttributeCount(),
                double(path.MaxArcLength().Float()),
                timingOf(path),
                guardsOf(path),
                {}};
    for (XSafeGuard& guard : facts.guards)
        guard.centre = XVector3(guard.centre).Multiply(path.WorldMatrix().Matrix()).AsVector();
    for (XObject const& follower : followersOf(path)) facts.followers.push_back(pathOf(follower));
    return facts;
}

std::string timingText(Timing const& timing, double rate) {
    if (timing.keys == 0) return "  timing     none\n";
    return fmt::format("  timing     {}, {} to {} s (frames {} to {}), {}\n", counted(std::size_t(timing.keys), "key"),
                       figure(timing.start), figure(timing.end), figure(timing.start * rate), figure(timing.end * rate),
                       timing.isMonotonic ? "monotonic" : "with ways back") +
           fmt::format("  speed      {} to {} m/s, mean {}\n", figure(timing.speed.smallest),
                       figure(timing.speed.largest), figure(timing.speed.mean));
}

std::string textOf(Facts const& facts, double rate) {
    std::string text = fmt::format("{}\n  keys       {}, {}; {}\n  length     {} m\n", facts.path, facts.keys,
                                   facts.isSampled ? "sampled" : "a spline",
                                   counted(std::size_t(facts.rotationKeys), "rotation key"), figure(facts.length));
    text += timingText(facts.timing, rate) + fmt::format("  keeps      {}\n", facts.keep);
    if (facts.guards.empty()) text += "  guards     none\n";
    for (std::size_t i = 0; i < facts.guards.size(); ++i) {
        Qelp::Vector3 const& c = facts.guards[i].centre;
        text += fmt::format("  guard {:<4} at {},{},{} radius {}{}\n", i, figure(double(c.x)), figure(double(c.y)),
                            figure(double(c.z)), figure(double(facts.guards[i].radius)),
                            facts.usesGuards ? "" : ", not in use");
    }
    for (std::string const& follower : facts.followers) text += fmt::format("  follower   {}\n", follower);
    return text;
}

void add(Json& json, Timing const& timing) {
    json.key("timing").open('{').member("keys", timing.keys).member("start", timing.start).member("end", timing.end);
    json.member("monotonic", timing.isMonotonic).key("speed").open('{').member("smallest", timing.speed.smallest);
    json.member("mean", timing.speed.mean).member("largest", timing.speed.largest).close('}').close('}');
}

void add(Json& json, Facts const& facts) {
    json.open('{').member("path", facts.path).member("sampled", facts.isSampled).member("keys", facts.keys);
    json.member("rotationKeys", facts.rotationKeys).member("length", facts.length).member("keep", facts.keep);
    add(json, facts.timing);
    json.member("guardsInUse", facts.usesGuards).key("guards").open('[');
    for (XSafeGuard const& guard : facts.guards)
        json.open('{')
            .key("centre")
            .open('[')
            .value(guard.centre.x)
            .value(guard.centre.y)
            .value(guard.centre.z)
            .close(']')
            .member("radius", guard.radius)
            .close('}');
    json.close(']').key("followers").open('[');
    for (std::string const& follower : facts.followers) json.value(follower);
    json.close(']').close('}');
}

std::string jsonOf(std::vector<Facts> const& all, std::string const& file) {
    Json json;
    json.open('{').member("file", file).key("paths").open('[');
    for (Facts const& facts : all) add(json, facts);
    return json.close(']').close('}').take();
}

std::string textOf(std::vector<Facts> const& all, double rate) {
    std::string text = all.empty() ? "no trajectories\n" : "";
    for (Facts const& facts : all) text += textOf(facts, rate);
    return text;
}

}  // namespace

void run(InfoTrajectoryVerb const& verb) {
    Session session(verb.input);
    XScene& scene = session.scene();
    std::vector<Facts> all;
    for (XTrajectory const& path : verb.paths.empty() ? allTrajectories(scene) : findTrajectories(scene, verb.paths))
        all.push_back(factsOf(path));
    double const rate = session.settings().FrameRate().Integer();
    writeResult(verb.json ? jsonOf(all, verb.input.file) : textOf(all, rate));
}

}  // namespace host
