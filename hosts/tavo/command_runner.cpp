#include "hosts/tavo/command_runner.h"

#include "qel/utils/text.h"
#include "tavo/objects/scene_graph.h"

#include <fmt/format.h>
#include <memory>

namespace host {
namespace {

using namespace Tavo;
using Qelutils::fromUtf8;
using Qelutils::toUtf8;

bool isAllowed(XScene& scene, XCommand const& command) {
    std::unique_ptr<XObject> const typed(command.CreateObject(&command.Settings()));
    auto* const known = dynamic_cast<XCommand*>(typed.get());
    return known && known->SetWorkingScene(&scene).isRunAllowed();
}

// Parent asks for the object at no path before it takes the last selected one; that this is not found is no failure.
bool isFailure(std::string const& error) { return error != "Unable to find a node with the path \"\""; }

// The values are those of this run: afterwards the node holds what it held. The cycle that follows in any host makes a
// step of what is pending then, such as a new time.
std::vector<std::string> runOnce(Session& session, CommandCall const& call, Qelutils::Vector<XObject>& results) {
    std::vector<Value> before;
    for (Value const& value : call.values) before.insert(before.begin(), value.present());
    setParameters(call.values);
    std::vector<std::string> errors = session.errorsOf([&] {
        session.scene().RunCommand(fromUtf8(call.name), results);
        XApplication::Instance().Update();
    });
    setParameters(before);
    std::erase_if(errors, [](std::string const& error) { return !isFailure(error); });
    return errors;
}

Done runCommand(Session& session, CommandCall const& call, std::string const& place) {
    XScene& scene = session.scene();
    auto const stepCount = [&] { return int(scene.SceneGraph()->getUndoCount()); };
    Done done{call.name, -stepCount(), {}};
    if (!isAllowed(scene, call.command))
        throw Failure{ExitCode::failed, fmt::format("{}{} may not run now; nothing is written", call.name, place)};
    Qelutils::Vector<XObject> results;
    if (std::vector<std::string> const errors = runOnce(session, call, results); !errors.empty())
        throw Failure{ExitCode::failed,
                      fmt::format("{}{} failed: {}; nothing is written", call.name, place, fmt::join(errors, "; "))};
    done.steps += stepCount();
    for (XObject const& result : results) done.results.emplace_back(toUtf8(result.Path()), toUtf8(result.ObjectType()));
    return done;
}

}  // namespace

void setParameters(std::vector<Value> const& values) {
    XSettings& settings = XApplication::Instance().Settings();
    settings.BeginChangeBlock();
    for (Value const& value : values) value.write();
    settings.EndChangeBlock();
}

std::vector<Done> runCommands(Session& session, std::vector<CommandCall> const& calls) {
    std::vector<Done> all;
    for (CommandCall const& call : calls)
        all.push_back(runCommand(
            session, call, calls.size() < 2 ? "" : fmt::format(" (command {} of {})", all.size() + 1, calls.size())));
    session.scene().Stop();  // playback is a block that is open
    XApplication::Instance().Update();
    return all;
}

}  // namespace host
