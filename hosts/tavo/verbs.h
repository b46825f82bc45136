// The verbs of the host: what the command line fills in, and what runs. Each stands in a file of its own. They throw a
// Failure when they cannot do what is asked; a file named in `output` appears whole or is left as it was.
#pragma once
#include <optional>
#include <string>
#include <vector>

namespace host {

// Stands between the commands of DoVerb::words, for the "--" of the command line.
inline std::string const commandSeparator = "\x1e";  // the separator of records

// What every verb that reads a file takes. A scene needs no answers; of a clip they are judged unless given.
struct Input {
    std::string file;
    std::string units = "auto";      // mm, cm, m, in, ft, yd
    std::string positions = "auto";  // replace, add
};

struct ImportVerb {
    Input input;
    std::string output;
};
struct ExportVerb {
    Input input;
    std::string output;
    std::string outputUnits;  // empty: those of the clip that was imported, or cm
};
struct InfoVerb {
    Input input;
    bool json = false;
};
struct SampleVerb {
    Input input;
    std::string objects = "*";
    std::string attribute;
    std::optional<double> from, to, step;  // seconds; none: the scene's time range and its frame time
    bool display = false;                  // in the scene's display units
    bool csv = false, json = false;
    std::string output;  // empty: standard output
};
struct PlayVerb {
    Input input;
    std::optional<double> seconds;  // none: once through the playback range
    bool fast = false;
    bool json = false;
};
struct SetVerb {
    Input input;
    std::vector<std::string> assignments;  // OBJECT.ATTRIBUTE=VALUE
    bool display = false;
    std::string output;
};
struct CommandsVerb {
    std::string name;  // empty: all
    bool json = false, markdown = false;
};
struct DoVerb {
    Input input;
    std::vector<std::string> words;     // COMMAND PARAM=VALUE ..., the next after commandSeparator
    std::vector<std::string> patterns;  // of objects to select first
    bool display = false;
    bool dryRun = false;
    bool json = false;
    std::string settings;  // empty: those of a first start, for this run
    std::string output;    // empty: none
};
struct PlotVerb {
    Input input;
    std::vector<std::string> attributes;    // OBJECT.ATTRIBUTE
    std::vector<std::string> trajectories;  // in place of attributes: paths in space
    std::string before;                     // of those, the file of an earlier state; empty: none
    std::string view;                       // from where they are seen; empty: where most is
    bool frames = false;                    // time in frames
    std::string output;
};

void run(ImportVerb const& verb);
void run(ExportVerb const& verb);
void run(InfoVerb const& verb);
void run(SampleVerb const& verb);
void run(PlayVerb const& verb);
void run(SetVerb const& verb);
void run(PlotVerb const& verb);
void plotPaths(PlotVerb const& verb);  // with trajectories
void run(CommandsVerb const& verb);
void run(DoVerb const& verb);

std::string commandsHelp();  // what `do` can run, a line each, for its --help

}  // namespace host
