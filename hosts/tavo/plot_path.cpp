// plot --trajectory: paths in space as a picture, with what they were before.
#include "hosts/tavo/path_picture.h"
#include "hosts/tavo/paths.h"
#include "hosts/tavo/session.h"
#include "plugins/bvh/exporter.h"

#include <filesystem>
#include <fmt/format.h>

namespace host {
namespace {

constexpr std::size_t mostPaths = 64;

std::vector<PathState> statesOf(Session& session, std::vector<std::string> const& patterns) {
    std::vector<PathState> states;
    for (Tavo::XTrajectory const& path : findTrajectories(session.scene(), patterns)) states.push_back(readPath(path));
    if (states.size() > mostPaths) throw wrongCall(fmt::format("{} paths are too many for a picture", states.size()));
    return states;
}

void checkView(std::string const& view) {
    if (view.empty() || PathView::of(view, {})) return;
    throw wrongCall(fmt::format("there is no view \"{}\"; views are top, side, front, or xz, zy, xy", view), view,
                    {L"top", L"side", L"front", L"xz", L"zy", L"xy"});
}

// Only one file is open at a time.
std::vector<PathState> statesBefore(PlotVerb const& verb) {
    if (verb.before.empty()) return {};
    Session session(Input{verb.before, verb.input.units, verb.input.positions});
    try {
        return statesOf(session, verb.trajectories);
    } catch (Failure& failure) {
        failure.message = fmt::format("{}: {}", verb.before, failure.message);
        throw;
    }
}

// By name, or where there is one of each.
std::optional<PathState> counterpart(PathState const& now, std::vector<PathState> const& before, std::size_t count) {
    for (PathState const& state : before)
        if (state.name == now.name) return state;
    if (before.size() == 1 && count == 1) return before.front();
    return {};
}

}  // namespace

void plotPaths(PlotVerb const& verb) {
    checkView(verb.view);
    std::vector<PathState> const before = statesBefore(verb);
    Session session(verb.input);
    PathPicture picture{std::filesystem::path(verb.input.file).filename().string(), {}, verb.view, 0};
    if (verb.frames) picture.frame = bvh::frameTimeOf(session.scene()).seconds;
    std::vector<PathState> states = statesOf(session, verb.trajectories);
    for (PathState& now : states) {
        std::optional<PathState> earlier = counterpart(now, before, states.size());
        picture.paths.push_back({std::move(now), std::move(earlier)});
    }
    std::size_t const count = picture.paths.size();
    writeResult(drawPaths(picture), verb.output);
    writeResult(fmt::format("{} path{}\nwrote {}\n", count, count == 1 ? "" : "s", verb.output));
}

}  // namespace host
