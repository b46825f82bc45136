// trajectory generate: paths from motion, and objects that follow theirs.
#include "hosts/tavo/find.h"
#include "hosts/tavo/follow_path.h"
#include "hosts/tavo/paths.h"
#include "hosts/tavo/session.h"
#include "hosts/tavo/trajectory_verbs.h"
#include "plugins/bvh/exporter.h"
#include "qel/utils/text.h"
#include "tavo/trajectories/trajectories.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace host {
namespace {

using namespace Tavo;

struct Frames {
    double from = 0, to = 0, by = 1;
    double rate = 0;  // a second
};

// A clip's own frames count, though its frame time be rounded: none is lost at the end.
Frames framesOf(Session& session, GenerateTrajectoryVerb const& verb) {
    double const rate = session.settings().FrameRate().Integer();
    if (!(rate > 0)) throw Failure{ExitCode::failed, "the scene has no frame rate"};
    double const first = double(session.settings().StartTime().Float()) * rate;
    double const count = bvh::frameCountOf(session.scene(), bvh::frameTimeOf(session.scene()).seconds);
    Frames const frames{verb.from.value_or(first), verb.to.value_or(first + count - 1), verb.by, rate};
    if (!(frames.by > 0) || !std::isfinite(frames.by)) throw wrongCall("--by is a number of frames above 0");
    double const keys = (frames.to - frames.from) / frames.by;
    bool const isAsked = verb.from || verb.to || verb.by != 1;
    if (!(keys > 0.999))
        throw Failure{isAsked ? ExitCode::wrongCall : ExitCode::failed,
                      fmt::format("there is no step from frame {} to {}", frames.from, frames.to)};
    if (!(keys <= XTrajectory::MostSegments)) throw wrongCall("that is too many keys; a larger --by gives fewer");
    return frames;
}

// The scene's time range and the generator's step while paths are made.
class Playing {
public:
    Playing(XSceneSettings const& settings, Frames const& frames) :
        start_(settings.StartTime()), end_(settings.EndTime()), startBefore_(start_.Float()), endBefore_(end_.Float()) {
        start_.SetFloat(float(frames.from / frames.rate));
        end_.SetFloat(float(frames.to / frames.rate));
        XTrajectories::Instance().SetSamplingFactor(float(1 / frames.by));
    }
    ~Playing() {
        start_.SetFloat(startBefore_);
        end_.SetFloat(endBefore_);
        XTrajectories::Instance().SetSamplingFactor(1);
    }
    Playing(Playing const&) = delete;
    Playing& operator=(Playing const&) = delete;

private:
    XAttribute start_, end_;
    float startBefore_, endBefore_;
};

// What has a place in space and is no path itself.
std::vector<XTransform> findSources(XScene& scene, std::vector<std::string> const& patterns) {
    std::vector<XTransform> sources;
    for (std::string const& pattern : patterns) {
        bool any = false;
        for (XObject const& object : findObjects(scene, pattern)) {
            if (!object.SupportsType(XTransform::TypeID) || object.SupportsType(XTrajectory::TypeID)) continue;
            any = true;
            if (std::find(sources.begin(), sources.end(), object) == sources.end()) sources.emplace_back(object);
        }
        if (!any) throw wrongCall(fmt::format("nothing that matches \"{}\" moves through space", pattern));
    }
    return sources;
}

struct Made {
    XTransform source;
    XTrajectory path;  // invalid: the source stands still
};

// Those that stand still are left out of the results, so that these are told apart by their names. Of twins in
// different places of the hierarchy it does not matter which is which: neither can follow a path.
std::vector<Made> generate(std::vector<XTransform> const& sources) {
    Qelutils::Vector<XObject> results;
    XTrajectories::Instance().Generate(XTrajectories::Objects(sources.begin(), sources.end()), results);
    std::vector<Made> made;
    auto next = results.begin();
    for (XTransform const& source : sources) {
        std::wstring const name = source.Name() + L'_' + std::wstring(XTrajectory::DefaultName);
        bool const moves = next != results.end() && next->Name().starts_with(name);
        made.push_back({source, moves ? XTrajectory(*next++) : XTrajectory()});
    }
    return made;
}

std::string lineOf(Made const& made, bool follows, double rate) {
    XTrajectory const& path = made.path;
    double const first = double(path.TimingCurveFirstKeyTime().Float()) * rate,
                 last = double(path.TimingCurveLastKeyTime().Float()) * rate;
    return fmt::format("{}: {}, {} m, frames {} to {}{}\n", pathOf(path), counted(std::size_t(keyCountOf(path)), "key"),
                       figure(double(path.MaxArcLength().Float())), figure(first), figure(last),
                       follows ? "; " + pathOf(made.source) + " follows it" : "");
}

std::string reportOf(std::vector<Made> const& all, GenerateTrajectoryVerb const& verb, double rate) {
    std::string text;
    std::size_t still = 0;
    for (Made const& made : all)
        if (made.path.IsValid())
            text += lineOf(made, verb.connect, rate);
        else
            ++still;
    if (still > 0)
        text +=
            fmt::format("{} that {} still: no trajectory\n", counted(still, "object"), still == 1 ? "stands" : "stand");
    return text + fmt::format("wrote {}\n", verb.output);
}

}  // namespace

void run(GenerateTrajectoryVerb const& verb) {
    static std::wstring const label = L"Generate Trajectory";
    Session session(verb.input);
    std::vector<XTransform> const sources = findSources(session.scene(), verb.objects);
    Frames const frames = framesOf(session, verb);
    if (verb.connect)
        for (XTransform const& source : sources) checkCanFollow(source);
    std::vector<Made> made;
    {
        XChangeBlock const block(session.scene(), label);
        {
            Playing const playing(session.settings(), frames);
            made = generate(sources);
        }
        for (Made const& one : made)
            if (verb.connect && one.path.IsValid()) followPath(one.source, one.path);
    }
    if (std::none_of(made.begin(), made.end(), [](Made const& one) { return one.path.IsValid(); }))
        throw Failure{ExitCode::failed, fmt::format("nothing moves from frame {} to {}: there is no path to make",
                                                    figure(frames.from), figure(frames.to))};
    session.save(verb.output);
    writeResult(reportOf(made, verb, frames.rate));
}

}  // namespace host
