// trajectory edit: part of a path is moved, scaled, turned or bent, and the motion along it stays what it was, or is
// told of.
#include "hosts/tavo/edit_words.h"
#include "hosts/tavo/json.h"
#include "hosts/tavo/path_edit.h"
#include "hosts/tavo/paths.h"
#include "hosts/tavo/session.h"
#include "hosts/tavo/time_guards.h"
#include "hosts/tavo/trajectory_verbs.h"
#include "tavo/objects/matrix.h"
#include "tavo/trajectories/motion_report.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace host {
namespace {

using namespace Tavo;

XDropOff dropoffOf(EditTrajectoryVerb const& verb) {
    if (!(verb.range >= 0) || !std::isfinite(float(verb.range))) throw wrongCall("--range is a length of at least 0");
    if (!std::isfinite(float(verb.pinch)) || !std::isfinite(float(verb.bubble)))
        throw wrongCall("--pinch and --bubble are numbers");
    return {float(verb.range), XDropOff::CurveDropoff, float(verb.pinch), float(verb.bubble)};
}

void checkBend(EditTrajectoryVerb const& verb, PathChange const& change, PathPlace const& place) {
    if (change.kind != PathChange::bend) return;
    if (place.keys.size() != 1) throw wrongCall("--bend takes one corner: --keys with one key");
    if (!verb.centre.empty()) throw wrongCall("--bend turns about its corner: --centre does not go with it");
}

// In the scene. That of keys is their mean.
XVector3 centreOf(EditTrajectoryVerb const& verb, XTrajectory const& path, PathPlace const& place) {
    if (!verb.centre.empty()) return vectorOf("--centre", verb.centre);
    if (place.ball) return place.ball->centre;
    double sum[3] = {};
    for (int key : place.keys)
        for (unsigned axis = 0; axis < 3; ++axis) sum[axis] += double(keyPosition(path, key, "--keys")[axis]);
    double const count = double(place.keys.size());
    return XVector3(float(sum[0] / count), float(sum[1] / count), float(sum[2] / count))
        .Multiply(path.WorldMatrix().Matrix());
}

// Safe guards of no size at the keys, around which movement returns as it falls off around what is edited. They stay in
// the file; one that is there already is not doubled.
void addGuards(EditTrajectoryVerb const& verb, XTrajectory path, XDropOff const& dropoff) {
    for (int key : verb.guards) {
        XVector3 const place = keyPosition(path, key, "--guard");
        Qelutils::Vector<XSafeGuard> const guards = guardsOf(path);
        auto const same = std::find_if(guards.begin(), guards.end(), [&](XSafeGuard const& guard) {
            return guard.radius == 0 && guard.centre == place.AsVector();
        });
        if (same == guards.end())
            path.AddSafeGuard(place, 0, dropoff);
        else
            path.EditSafeGuard(int(same - guards.begin()), place, 0, dropoff);
    }
    if (!verb.guards.empty()) path.UseSafeGuards(true);
}

// ---- the report ----

struct Edited {
    std::string path, keep;
    double lengthBefore, lengthAfter = 0;
    XMotionChange change;
    Qelutils::Vector<XSafeGuard> guards;  // in use; centres in the scene
    std::vector<std::pair<int, float>> timeGuards;
};

Edited gather(XTrajectory const& path, double lengthBefore, XMotionChange const& change, TimeGuards const& times) {
    Edited edited{pathOf(path), keepOf(path), lengthBefore, double(path.MaxArcLength().Float()), change, {}, {}};
    if (path.UseSafeGuards().Boolean()) edited.guards = guardsOf(path);
    for (XSafeGuard& guard : edited.guards)
        guard.centre = XVector3(guard.centre).Multiply(path.WorldMatrix().Matrix()).AsVector();
    edited.timeGuards = times.held();
    return edited;
}

std::string measureText(char const* name, XMotionChange::Measure const& measure, char const* unit) {
    return fmt::format("  {:<10} largest {}, mean {} {}\n", name, figure(double(measure.largest)),
                       figure(double(measure.mean)), unit);
}

std::string textOf(Edited const& edited, EditTrajectoryVerb const& verb) {
    std::string text = fmt::format("{}: {} moved, length {} to {} m\n", edited.path,
                                   counted(std::size_t(edited.change.keysMoved), "key"), figure(edited.lengthBefore),
                                   figure(edited.lengthAfter));
    if (verb.report) {
        text += fmt::format("  keeps      {}\n", edited.keep);
        text += measureText("progress", edited.change.progress, "of the path");
        text += measureText("speed", edited.change.speed, "m/s");
        text += measureText("time", edited.change.time, "s");
        for (std::size_t i = 0; i < edited.guards.size(); ++i) {
            Qelp::Vector3 const& c = edited.guards[i].centre;
            text += fmt::format("  guard {:<4} at {},{},{} holds {}\n", i, figure(double(c.x)), figure(double(c.y)),
                                figure(double(c.z)), counted(std::size_t(edited.change.keysHeld[i]), "key"));
        }
        for (auto const& [key, time] : edited.timeGuards)
            text += fmt::format("  time guard timing key {} stays at {} s\n", key, figure(double(time)));
    }
    return text + fmt::format("wrote {}\n", verb.output);
}

void addMeasure(Json& json, char const* name, XMotionChange::Measure const& measure) {
    json.key(name).open('{').member("largest", measure.largest).member("mean", measure.mean).close('}');
}

std::string jsonOf(Edited const& edited, EditTrajectoryVerb const& verb) {
    Json json;
    json.open('{').member("file", verb.input.file).member("path", edited.path).member("keep", edited.keep);
    json.member("lengthBefore", edited.lengthBefore).member("lengthAfter", edited.lengthAfter);
    addMeasure(json, "progress", edited.change.progress);
    addMeasure(json, "speed", edited.change.speed);
    addMeasure(json, "time", edited.change.time);
    json.member("keysMoved", edited.change.keysMoved).key("guards").open('[');
    for (std::size_t i = 0; i < edited.guards.size(); ++i) {
        XSafeGuard const& guard = edited.guards[i];
        json.open('{').member("guard", i).key("centre").open('[');
        json.value(guard.centre.x).value(guard.centre.y).value(guard.centre.z).close(']');
        json.member("radius", guard.radius).member("keysHeld", edited.change.keysHeld[i]).close('}');
    }
    json.close(']').key("timeGuards").open('[');
    for (auto const& [key, time] : edited.timeGuards) json.open('{').member("key", key).member("time", time).close('}');
    return json.close(']').member("wrote", verb.output).close('}').take();
}

Edited edit(EditTrajectoryVerb const& verb, XTrajectory path) {
    if (!path.IsEditable()) throw Failure{ExitCode::failed, fmt::format("{} may not be edited", pathOf(path))};
    PathChange const change = changeOf(verb);
    PathPlace const place = placeOf(verb, path);
    XDropOff const dropoff = dropoffOf(verb);
    checkBend(verb, change, place);
    TimeGuards const times(path, verb.timeGuards);
    if (!verb.keep.empty()) path.SmartEditing().SetEnumeration(keepModeOf(verb.keep));
    addGuards(verb, path, dropoff);
    Qelutils::Vector<float> const weights = weightsOf(path, change, place, dropoff);
    if (std::all_of(weights.begin(), weights.end(), [](float weight) { return weight == 0; }))
        throw wrongCall(fmt::format("no key of {} would move: none is there, or guards hold all", pathOf(path)));
    double const length = double(path.MaxArcLength().Float());
    XMotionReport const report(path);
    editPath(path, change, centreOf(verb, path, place), weights);
    times.restore();
    return gather(path, length, report.Change(), times);
}

}  // namespace

void run(EditTrajectoryVerb const& verb) {
    static std::wstring const label = L"Edit Trajectory";
    Session session(verb.input);
    XTrajectory const path = findTrajectory(session.scene(), verb.path);
    std::optional<Edited> edited;
    {
        XChangeBlock const block(session.scene(), label);
        edited = edit(verb, path);
    }
    session.save(verb.output);
    writeResult(verb.json ? jsonOf(*edited, verb) : textOf(*edited, verb));
}

}  // namespace host
