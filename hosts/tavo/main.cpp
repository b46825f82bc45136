// The command line: verbs, options, help, and what a wrong call is told.
#include "hosts/tavo/console.h"
#include "hosts/tavo/lua_options.h"
#include "hosts/tavo/options.h"
#include "hosts/tavo/rig_options.h"
#include "hosts/tavo/trajectory_options.h"
#include "hosts/tavo/verbs.h"
#include "qel/utils/text.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <fmt/format.h>
#include <functional>
#include <map>
#include <new>

namespace host {
namespace {

constexpr char const* exitCodes =
    "Exit codes: 0 done, 1 failed, 2 wrong call, 3 bad input, 4 an asked quality missed.\n"
    "Results go to standard output, messages to standard error.";

constexpr char const* overview = R"(Examples:
  tavo import walk.bvh -o walk.tavo          a motion clip becomes a scene
  tavo info walk.tavo                        what is in it
  tavo sample walk.tavo --objects 'Left*' --attribute WorldTranslation
  tavo set walk.tavo SceneSettings.FrameRate=30 -o slower.tavo
  tavo export slower.tavo -o slower.bvh      and back
  tavo trajectory generate walk.bvh Hips -o path.tavo --connect      a path that the walk follows

FILE is a clip (BVH) or a scene, everywhere. `tavo VERB --help` tells more.)";

constexpr char const* importExamples = R"(Examples:
  tavo import walk.bvh -o walk.tavo
  tavo import walk.bvh -o walk.tavo --units in          lengths are inches, whatever they look like
  tavo import walk.bvh -o walk.tavo --positions add     position channels are differences from OFFSET)";

constexpr char const* exportExamples = R"(Examples:
  tavo export walk.tavo -o walk.bvh
  tavo export walk.tavo -o walk.bvh --to-units m        in metres instead of the unit it came with)";

constexpr char const* infoExamples = R"(Examples:
  tavo info walk.tavo                                   objects, hierarchy, time, keys
  tavo info walk.bvh                                    and of a clip also what was judged, and why
  tavo info walk.bvh --json)";

constexpr char const* sampleExamples = R"(Examples:
  tavo sample walk.tavo --objects Hips --attribute TranslationY
  tavo sample walk.tavo --objects 'Left*' --attribute WorldTranslation --display -o left.csv
  tavo sample walk.tavo --attribute WorldMatrix --from 0.5 --to 1 --step 0.1 --json

Transforms also have WorldTranslation (x, y, z) and WorldRotation (x, y, z, w).)";

constexpr char const* playExamples = R"(Examples:
  tavo play walk.tavo                                   once through, at its own pace
  tavo play walk.tavo --seconds 10                      over and over, for ten seconds
  tavo play walk.tavo --as-fast-as-possible --json)";

constexpr char const* setExamples = R"(Examples:
  tavo set walk.tavo SceneSettings.FrameRate=30 -o slower.tavo
  tavo set walk.tavo 'Left*.BoneRadius=0.02' Hips.Visible=false -o marked.tavo
  tavo set walk.tavo Head.PreRotationY=20 --display -o turned.tavo    degrees, as the scene shows angles)";

constexpr char const* commandsExamples = R"(Examples:
  tavo commands                                         all, a line each
  tavo commands CreateJoint                             one in full: parameters, what they take, their defaults
  tavo commands --json)";

constexpr char const* doExamples = R"(Examples:
  tavo do walk.tavo CreateJoint TranslationX=0.5 -- CreateJoint -- ActivateMoveTool -- SetKey -o out.tavo
  tavo do walk.tavo --select 'Left*' Delete --dry-run   what would become of it
  tavo do walk.tavo --select Head FreezeTransform FreezeRotation=false -o out.tavo
  tavo do walk.tavo CreateJoint BoneRadius=0.02 --settings mine.tavo -o out.tavo

Commands run in their order, each followed by the values of its parameters, with -- between them; Undo and Redo are
commands like any other. Values are for that one run. With --settings the parameters of all commands are read from that
file before, if it is there, and written after, the given ones with them. Each command is told with the steps of the
history that it made and the paths and types of its results.

Nothing is written unless all of it has succeeded: OUT, and the settings. Without -o the scene is only reported on.)";

constexpr char const* plotExamples = R"(Examples:
  tavo plot walk.tavo Hips.TranslationX Hips.TranslationY -o hips.svg
  tavo plot walk.bvh '*Leg.RotationX' -o legs.svg
  tavo plot walk.tavo --trajectory Hips -o path.svg     the path that Hips follows, or was generated from it
  tavo plot bent.tavo --trajectory Hips --before walk.tavo --view top -o change.svg

Of a path: keys, handles and safe guards, ticks at even times (wide spacing is speed), speed as colour, and speed over
time.)";

// Help begins with what the verb is for and examples; the rest follows.
class Help : public CLI::Formatter {
public:
    Help() { column_width(34); }
    std::map<CLI::App const*, std::string> examples;

    std::string make_description(CLI::App const* app) const override {
        auto const found = examples.find(app);
        return app->get_description() + "\n\n" + (found == examples.end() ? "" : found->second + "\n\n");
    }
    std::string make_footer(CLI::App const* app) const override {
        return (app->get_name() == "do" ? '\n' + commandsHelp() : "") + CLI::Formatter::make_footer(app);
    }
    std::string make_subcommands(CLI::App const* app, CLI::AppFormatMode mode) const override {
        std::string const text = CLI::Formatter::make_subcommands(app, mode);
        std::string const head = "Subcommands:";
        std::size_t const at = text.find(head);
        return at == std::string::npos ? text : text.substr(0, at) + "Verbs:" + text.substr(at + head.size());
    }
    std::string make_subcommand(CLI::App const* verb) const override {
        return fmt::format("  {:<12}{}\n", verb->get_name(), verb->get_description());
    }
};

class CommandLine {
public:
    CommandLine() {
        app_.name("tavo");
        app_.formatter(help_);
        app_.footer(exitCodes);
        app_.require_subcommand(1);
        app_.set_version_flag("--version", "tavo " TAVO_VERSION);
        app_.get_formatter()->label("SUBCOMMAND", "VERB");
        help_->examples[&app_] = overview;
        addImport();
        addExport();
        addInfo();
        addSample();
        addPlay();
        addSet();
        addPlot();
        addCommands();
        addDo();
        addTrajectory();
        addPathVerb(app_, ik_, "ik", "Pose a figure by its hands and feet.", ikExamples);
        addPathVerb(app_, retarget_, "retarget", "Let a figure take over another one's motion.", retargetExamples);
        addOptions(addVerb(app_, run_, "run", "Run a Lua script on a file.", runExamples), run_);
        addOptions(addVerb(app_, repl_, "repl", "Type Lua on a file.", replExamples), repl_);
    }

    ExitCode run(int count, char** arguments) {
        try {
            checkVerb(app_, std::vector<std::string>(arguments + 1, arguments + count));
            app_.parse(wordsOf(count, arguments));
            chosen_();
            return ExitCode::done;
        } catch (CLI::ParseError const& error) { return tell(error); } catch (Failure const& failure) {
            if (!failure.message.empty()) printError(failure.message);
            return failure.code;
        } catch (std::bad_alloc const&) {
            printError("there is not enough memory");
        } catch (std::exception const& error) { printError(error.what()); }
        return ExitCode::failed;
    }

private:
    template<class Verb>
    CLI::App& addVerb(CLI::App& parent, Verb& verb, char const* name, char const* what, char const* examples) {
        CLI::App& app = *parent.add_subcommand(name, what);
        help_->examples[&app] = examples;
        app.footer(exitCodes);
        app.final_callback([this, &verb] { chosen_ = [&verb] { host::run(verb); }; });
        return app;
    }
    template<class Verb> CLI::App& add(Verb& verb, char const* name, char const* what, char const* examples) {
        CLI::App& app = addVerb(app_, verb, name, what, examples);
        addInput(app, verb.input);
        return app;
    }
    template<class Verb>
    void addPathVerb(CLI::App& parent, Verb& verb, char const* name, char const* what, char const* examples) {
        CLI::App& app = addVerb(parent, verb, name, what, examples);
        addInput(app, verb.input);
        addOptions(app, verb);
    }

    void addImport() {
        addOutput(add(import_, "import", "Make a scene of a motion clip.", importExamples), import_.output,
                  "the scene to write");
    }
    void addExport() {
        CLI::App& app = add(export_, "export", "Write a scene's joints as a motion clip.", exportExamples);
        addOutput(app, export_.output, "the clip to write");
        app.add_option("--to-units", export_.outputUnits, "of the clip to write (those it came with, or cm)")
            ->type_name("UNIT");
    }
    void addInfo() {
        CLI::App& app = add(info_, "info", "Tell what a file holds.", infoExamples);
        app.add_flag("--json", info_.json, "for machines");
    }
    void addSample() {
        SampleVerb& verb = sample_;
        CLI::App& app = add(verb, "sample", "Evaluate an attribute at moments of time.", sampleExamples);
        app.add_option("--objects", verb.objects, "which: a name or path with * and ? (all)")->type_name("PATTERN");
        app.add_option("--attribute", verb.attribute, "which; objects without it are passed over")
            ->required()
            ->type_name("NAME");
        app.add_option("--from", verb.from, "the first moment, in seconds (the scene's start)")->type_name("TIME");
        app.add_option("--to", verb.to, "the last (the scene's end)")->type_name("TIME");
        app.add_option("--step", verb.step, "from one to the next (a frame)")->type_name("TIME");
        app.add_flag("--display", verb.display, "in the scene's display units, not metres and radians");
        CLI::Option* csv = app.add_flag("--csv", verb.csv, "a table (the default)");
        app.add_flag("--json", verb.json, "for machines")->excludes(csv);
        app.add_option("-o,--output", verb.output, "a file instead of standard output")->type_name("OUT");
    }
    void addPlay() {
        CLI::App& app = add(play_, "play", "Play a file and tell how fast that went.", playExamples);
        app.add_option("--seconds", play_.seconds, "how long (once through)")->type_name("TIME");
        app.add_flag("--as-fast-as-possible", play_.fast, "frame after frame, by a clock of its own");
        app.add_flag("--json", play_.json, "for machines");
    }
    void addSet() {
        CLI::App& app = add(set_, "set", "Give attributes new values.", setExamples);
        app.add_option("ASSIGNMENT", set_.assignments, "OBJECT.ATTRIBUTE=VALUE; OBJECT may be a pattern")
            ->required()
            ->type_name("...");
        app.add_flag("--display", set_.display, "values are in the scene's display units, not metres and radians");
        addOutput(app, set_.output, "the scene to write, or a clip if it ends in .bvh");
    }
    void addPlot() {
        CLI::App& app = add(plot_, "plot", "Draw attributes over time, or paths in space.", plotExamples);
        CLI::Option* attributes =
            app.add_option("ATTRIBUTE", plot_.attributes, "OBJECT.ATTRIBUTE; OBJECT may be a pattern")
                ->type_name("...");
        CLI::Option* paths =
            app.add_option("--trajectory", plot_.trajectories, "trajectories, or objects that they belong to")
                ->excludes(attributes)
                ->type_name("PATH...");
        app.add_option("--before", plot_.before, "the same paths in another file, drawn beneath in grey")
            ->needs(paths)
            ->type_name("FILE2");
        app.add_option("--view", plot_.view, "top, side, front, or xz, zy, xy (where most is seen)")
            ->needs(paths)
            ->type_name("VIEW");
        app.add_flag("--frames", plot_.frames, "ticks at frames, and time in frames")->needs(paths);
        addOutput(app, plot_.output, "the SVG picture to write");
    }

    void addCommands() {
        CLI::App& app = addVerb(app_, commands_, "commands", "List the commands that do runs.", commandsExamples);
        app.add_option("NAME", commands_.name, "one command, in full (all)")->type_name("");
        CLI::Option* json = app.add_flag("--json", commands_.json, "for machines");
        app.add_flag("--markdown", commands_.markdown, "as the reference page")->excludes(json);
    }
    void addDo() {
        CLI::App& app = add(do_, "do", "Run commands on a scene.", doExamples);
        app.add_option("COMMAND", do_.words, "COMMAND [PARAM=VALUE]... [-- COMMAND [PARAM=VALUE]...]...")
            ->required()
            ->type_name("...");
        app.add_option("--select", do_.patterns, "what is selected first, in order: names or paths with * and ?")
            ->take_all()
            ->expected(1)
            ->allow_extra_args(false)
            ->type_name("PATTERN");
        app.add_flag("--display", do_.display, "values are in the scene's display units, not metres and radians");
        app.add_option("--settings", do_.settings, "where parameters are kept from one run to the next")
            ->type_name("SETTINGS");
        app.add_flag("--dry-run", do_.dryRun, "run and report, and write nothing");
        app.add_flag("--json", do_.json, "for machines");
        app.add_option("-o,--output", do_.output, "the scene to write, or a clip if it ends in .bvh (none)")
            ->type_name("OUT");
    }

    void addTrajectory() {
        CLI::App& app = *app_.add_subcommand("trajectory", "Make, change and tell of paths.");
        help_->examples[&app] = trajectoryExamples;
        app.footer(exitCodes);
        app.require_subcommand(1);
        addPathVerb(app, generatePath_, "generate", "Make paths from motion.", generateExamples);
        addPathVerb(app, fitPath_, "fit", "Put few keys with handles in place of dense ones.", fitExamples);
        addPathVerb(app, samplePath_, "sample", "Put straight spans in place of the keys.", samplePathExamples);
        addPathVerb(app, editPath_, "edit", "Move, scale, turn or bend part of a path.", editExamples);
        addPathVerb(app, infoPath_, "info", "Tell what the paths of a file hold.", infoPathExamples);
    }

    // Last word first, as the parser wants them. To the parser "--" ends the options; for `do` it stands between
    // commands, and passes as another word.
    std::vector<std::string> wordsOf(int count, char** arguments) {
        std::vector<std::string> words(std::reverse_iterator(arguments + count), std::reverse_iterator(arguments + 1));
        if (words.back() == "do") std::replace(words.begin(), words.end(), std::string("--"), commandSeparator);
        if (words.back() == "run") takeArguments(words);
        return words;
    }
    // What stands after "--" is for the script, whatever it looks like.
    void takeArguments(std::vector<std::string>& words) {
        auto const separator = std::find(words.rbegin(), words.rend(), "--");
        if (separator == words.rend()) return;
        run_.arguments.assign(separator + 1, words.rend());
        words.erase(words.begin(), separator.base());
    }
    // An unknown verb would be told of as an unexpected argument, which helps nobody.
    static void checkVerb(CLI::App& app, std::vector<std::string> const& words) {
        std::vector<std::wstring> names;
        for (CLI::App const* known : app.get_subcommands({})) names.push_back(Qelutils::fromUtf8(known->get_name()));
        if (names.empty()) return;
        bool const isTop = !app.get_parent();
        if (words.empty())
            throw wrongCall(fmt::format("which verb? `tavo {}--help` lists them", isTop ? "" : app.get_name() + ' '));
        std::string const& verb = words.front();
        if (verb.empty() || verb[0] == '-') return;
        if (std::find(names.begin(), names.end(), Qelutils::fromUtf8(verb)) == names.end())
            throw wrongCall(fmt::format("there is no verb \"{}{}\"", isTop ? "" : app.get_name() + ' ', verb), verb,
                            names);
        checkVerb(*app.get_subcommand(verb), {words.begin() + 1, words.end()});
    }
    CLI::App const& chosenVerb() const {
        CLI::App const* app = &app_;
        while (!app->get_subcommands().empty()) app = app->get_subcommands().front();
        return *app;
    }
    ExitCode tell(CLI::ParseError const& error) {
        if (error.get_exit_code() == 0) {
            app_.exit(error);
            return ExitCode::done;
        }
        std::vector<std::string> const extra = app_.remaining(true);
        auto const option = std::find_if(extra.begin(), extra.end(), [](std::string const& a) { return a[0] == '-'; });
        if (option != extra.end())
            printError(
                wrongCall(fmt::format("there is no option {}", *option), *option, optionNames(chosenVerb())).message);
        else
            printError(error.what());
        return ExitCode::wrongCall;
    }
    static std::vector<std::wstring> optionNames(CLI::App const& verb) {
        std::vector<std::wstring> names;
        for (CLI::Option const* option : verb.get_options())
            for (std::string const& name : option->get_lnames()) names.push_back(L"--" + Qelutils::fromUtf8(name));
        return names;
    }

    CLI::App app_{"Tavo at the command line: motion clips and scenes."};
    std::shared_ptr<Help> help_ = std::make_shared<Help>();
    std::function<void()> chosen_;
    ImportVerb import_;
    ExportVerb export_;
    InfoVerb info_;
    SampleVerb sample_;
    PlayVerb play_;
    SetVerb set_;
    PlotVerb plot_;
    CommandsVerb commands_;
    DoVerb do_;
    GenerateTrajectoryVerb generatePath_;
    FitTrajectoryVerb fitPath_;
    SampleTrajectoryVerb samplePath_;
    EditTrajectoryVerb editPath_;
    InfoTrajectoryVerb infoPath_;
    IkVerb ik_;
    RetargetVerb retarget_;
    RunVerb run_;
    ReplVerb repl_;
};

}  // namespace
}  // namespace host

int main(int count, char** arguments) { return int(host::CommandLine().run(count, arguments)); }
