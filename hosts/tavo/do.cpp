// do: commands by their names, one after the other, on one document. All of the line is checked before the first runs;
// what is written is written when the last has run.
#include "hosts/tavo/command_runner.h"
#include "hosts/tavo/find.h"
#include "hosts/tavo/json.h"
#include "qel/db/streams.h"
#include "qel/utils/text.h"
#include "tavo/interaction/selection.h"
#include "tavo/objects/scene_graph.h"

#include <algorithm>
#include <filesystem>
#include <fmt/format.h>
#include <iterator>
#include <optional>

namespace host {
namespace {

using namespace Tavo;
using Qelutils::fromUtf8;
using Qelutils::toUtf8;

// ---- before the first command ----

bool isSameFile(std::string const& a, std::string const& b) {
    std::error_code none;
    return !b.empty() && std::filesystem::weakly_canonical(a, none) == std::filesystem::weakly_canonical(b, none);
}

// Scenes and settings are documents of one form: nothing else would keep one from taking the other's place.
void checkFiles(DoVerb const& verb) {
    if (verb.input.file == commandSeparator) throw wrongCall("FILE comes before the first command");
    if (verb.settings.empty()) return;
    if (isSameFile(verb.settings, verb.input.file) || isSameFile(verb.settings, verb.output))
        throw wrongCall(fmt::format("--settings is a file of its own, not {}", verb.settings));
}

// The application logs why a file that is there cannot be read; a missing one is a first start, and silent.
void loadSettings(Session& session, std::string const& file) {
    if (file.empty()) return;
    std::vector<std::string> const errors =
        session.errorsOf([&] { XApplication::Instance().LoadSettings(fromUtf8(file)); });
    if (!errors.empty()) throw Failure{ExitCode::badInput, errors.front() + "; nothing was run"};
}

std::vector<XObject> findSelection(XScene& scene, std::vector<std::string> const& patterns) {
    std::vector<XObject> found;
    for (std::string const& pattern : patterns) {
        std::size_t const before = found.size();
        std::vector<XObject> const matching = findObjects(scene, pattern);
        std::copy_if(matching.begin(), matching.end(), std::back_inserter(found),
                     [](XObject const& object) { return XSceneObject(object).SupportsSelection(); });
        if (found.size() == before)
            throw wrongCall(fmt::format("nothing that matches \"{}\" can be selected", pattern));
    }
    return found;
}

void select(XScene& scene, std::vector<XObject> const& objects) {
    if (objects.empty()) return;
    static std::wstring const label = L"Select";
    XChangeBlock const block(scene, label);
    XSelection selection = scene.Selection();
    selection.Clear();
    for (XObject const& object : objects) selection.Append(object);
}

std::vector<std::string> selectedPaths(XScene& scene) {
    Qelutils::Vector<XObject> selected;
    scene.Selection().Objects(selected);
    std::vector<std::string> paths;
    for (XObject const& object : selected) paths.push_back(toUtf8(object.Path()));
    return paths;
}

// ---- after the last ----

std::optional<std::string> contents(std::string const& file) {
    db::FileInputStream stream{fromUtf8(file)};
    std::string text(stream.sizeHint() + 1, '\0'), all;
    while (std::size_t const count = stream.read(text.data(), text.size())) all.append(text, 0, count);
    return stream.ok() ? std::optional(all) : std::nullopt;
}

void saveSettings(Session& session, std::string const& file, std::vector<CommandCall> const& calls) {
    for (CommandCall const& call : calls) setParameters(call.values);
    std::vector<std::string> const errors =
        session.errorsOf([&] { XApplication::Instance().SaveSettings(fromUtf8(file)); });
    if (!errors.empty()) throw Failure{ExitCode::failed, errors.front()};
}

// Both files or none.
void save(Session& session, DoVerb const& verb, std::vector<CommandCall> const& calls) {
    if (verb.dryRun) return;
    std::optional<std::string> const before = verb.settings.empty() ? std::nullopt : contents(verb.settings);
    if (!verb.settings.empty()) saveSettings(session, verb.settings, calls);
    try {
        if (!verb.output.empty()) session.save(verb.output);
    } catch (...) {
        std::error_code ignored;
        if (before)
            writeResult(*before, verb.settings);
        else if (!verb.settings.empty())
            std::filesystem::remove(verb.settings, ignored);
        throw;
    }
}

std::string stepText(int steps) {
    if (steps == 0) return "no step";
    return counted(std::size_t(std::abs(steps)), "step") + (steps < 0 ? " taken back" : "");
}

std::string reportText(DoVerb const& verb, std::vector<std::string> const& selected, std::vector<Done> const& all) {
    std::string text = verb.patterns.empty() ? "" : fmt::format("selected {}\n", counted(selected.size(), "object"));
    for (Done const& done : all) {
        text += fmt::format("{}: {}\n", done.command, stepText(done.steps));
        for (auto const& [path, type] : done.results) text += fmt::format("  {}  ({})\n", path, type);
    }
    if (verb.dryRun) return text + "a dry run: nothing written\n";
    if (!verb.settings.empty()) text += fmt::format("wrote {}\n", verb.settings);
    return verb.output.empty() ? text : text + fmt::format("wrote {}\n", verb.output);
}

std::string reportJson(DoVerb const& verb, std::vector<std::string> const& selected, std::vector<Done> const& all) {
    Json json;
    json.open('{').member("file", verb.input.file).key("selected").open('[');
    for (std::string const& path : selected) json.value(path);
    json.close(']').key("commands").open('[');
    for (Done const& done : all) {
        json.open('{').member("name", done.command).member("steps", done.steps).key("results").open('[');
        for (auto const& [path, type] : done.results)
            json.open('{').member("path", path).member("type", type).close('}');
        json.close(']').close('}');
    }
    json.close(']').member("dryRun", verb.dryRun).key("wrote").open('[');
    for (std::string const& file : {verb.settings, verb.output})
        if (!file.empty() && !verb.dryRun) json.value(file);
    return json.close(']').close('}').take();
}

}  // namespace

void run(DoVerb const& verb) {
    checkFiles(verb);
    Session session(verb.input);
    XScene& scene = session.scene();
    loadSettings(session, verb.settings);
    std::vector<CommandCall> const calls =
        parseCommands(XApplication::Instance().Settings(), verb.words, verb.display ? &scene : nullptr);
    select(scene, findSelection(scene, verb.patterns));
    scene.SceneGraph()->ClearUndoHistory();  // it begins with the first command: reading and selecting are no steps
    std::vector<std::string> const selected = selectedPaths(scene);
    std::vector<Done> const all = runCommands(session, calls);
    save(session, verb, calls);
    writeResult(verb.json ? reportJson(verb, selected, all) : reportText(verb, selected, all));
}

}  // namespace host
