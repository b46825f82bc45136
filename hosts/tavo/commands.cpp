// commands: what the catalogue offers, told from the rows of the commands: a list, one command in full, for machines,
// and as the reference page.
#include "hosts/tavo/command_list.h"
#include "hosts/tavo/json.h"
#include "hosts/tavo/reading.h"
#include "hosts/tavo/session.h"
#include "qel/utils/text.h"

#include <algorithm>
#include <fmt/format.h>

namespace host {
namespace {

using namespace Tavo;
using db::AttributeDef;
using db::AttributeType;
using Qelutils::toUtf8;

std::string numberText(AttributeDef const& row, double value) {
    return row.type == AttributeType::Float ? Qelutils::number(float(value)) : Qelutils::number(value);
}

// As `do` takes it.
std::string defaultText(AttributeDef const& row) {
    std::string text;
    switch (row.type) {
    case AttributeType::Boolean: return row.initial[0] != 0 ? "true" : "false";
    case AttributeType::Enumeration: return toUtf8(row.getString(int(row.initial[0])));
    case AttributeType::String: return toUtf8(row.initialText);
    case AttributeType::Vector3:
        return fmt::format("{},{},{}", numberText(row, row.initial[0]), numberText(row, row.initial[1]),
                           numberText(row, row.initial[2]));
    case AttributeType::Compound:
        for (AttributeDef const& part : row.children) text += (text.empty() ? "" : ",") + defaultText(part);
        return text;
    default: return kindOf(row.type) ? numberText(row, row.initial[0]) : "";
    }
}

std::string kindText(AttributeDef const& row) {
    ValueKind const* const kind = kindOf(row.type);
    if (!kind) return "not from a text";
    if (row.type == AttributeType::Compound) return fmt::format("{} values with commas", row.children.size());
    return kind->takes + rangeText(row);
}

std::string wordsText(AttributeDef const& row) {
    std::string text;
    for (wchar_t const* word : row.strings) text += (text.empty() ? "" : ", ") + toUtf8(word);
    return text;
}

// A row as it is shown: a parameter, or a part of one, "Colour.Red".
struct Line {
    std::string name, kind, initial, help;
};

void addLines(std::vector<Line>& lines, std::string const& prefix, AttributeDef const& row) {
    std::string const unit = internalUnit(row.units), words = wordsText(row);
    std::string help = toUtf8(row.documentation);
    if (!words.empty()) help += (help.empty() ? "" : " ") + fmt::format("One of {}.", words);
    lines.push_back({prefix + toUtf8(row.name), kindText(row), defaultText(row) + (unit.empty() ? "" : ' ' + unit),
                     std::move(help)});
    for (AttributeDef const& part : row.children) addLines(lines, prefix + toUtf8(row.name) + '.', part);
}

std::vector<Line> linesOf(XCommandInfo const& info) {
    std::vector<Line> lines;
    for (AttributeDef const* parameter : info.parameters) addLines(lines, "", *parameter);
    return lines;
}

template<class Items, class Text> std::size_t widest(Items const& items, Text const& text) {
    std::size_t width = 0;
    for (auto const& item : items) width = std::max(width, text(item).size());
    return width;
}

// ---- for people ----

std::string listText(std::vector<XCommandInfo> const& all, char const* indent = "") {
    std::size_t const width = widest(all, [](XCommandInfo const& info) { return toUtf8(info.name); });
    std::string text;
    for (XCommandInfo const& info : all)
        text += fmt::format("{}{:<{}}  {}\n", indent, toUtf8(info.name), width, toUtf8(info.help));
    return text;
}

std::string stepText(XCommandInfo const& info) {
    return info.isUndoable ? "A run is one step of the history." : "Acts directly: a run opens no step of the history.";
}

std::string fullText(XCommandInfo const& info) {
    std::vector<Line> const lines = linesOf(info);
    std::size_t const name = widest(lines, [](Line const& line) { return line.name; });
    std::size_t const kind = widest(lines, [](Line const& line) { return line.kind; });
    std::size_t const initial = widest(lines, [](Line const& line) { return line.initial; });
    std::string text = fmt::format("{}\n  {}\n  {}\n", toUtf8(info.name), toUtf8(info.help), stepText(info));
    text += lines.empty() ? "no parameters\n" : "parameters, with their defaults\n";
    for (Line const& line : lines) {
        std::string row = fmt::format("  {:<{}}  {:<{}}  {:<{}}  {}", line.name, name, line.kind, kind, line.initial,
                                      initial, line.help);
        text += row.substr(0, row.find_last_not_of(' ') + 1) + '\n';
    }
    return text;
}

// ---- for machines ----

void addDefault(Json& json, AttributeDef const& row) {
    double const value = row.initial[0];
    switch (row.type) {
    case AttributeType::Boolean: json.member("default", value != 0); break;
    case AttributeType::Integer: json.member("default", int(value)); break;
    case AttributeType::Float: json.member("default", float(value)); break;
    case AttributeType::Double: json.member("default", value); break;
    case AttributeType::Enumeration:
    case AttributeType::String: json.member("default", defaultText(row)); break;
    case AttributeType::Vector3:
        json.key("default").open('[').value(value).value(row.initial[1]).value(row.initial[2]).close(']');
        break;
    default: break;
    }
}

void addRange(Json& json, AttributeDef const& row) {
    AttributeDef const unlimited;
    if (row.minimum > unlimited.minimum) json.member("minimum", row.minimum);
    if (row.maximum < unlimited.maximum) json.member("maximum", row.maximum);
}

void addRow(Json& json, AttributeDef const& row) {
    ValueKind const* const kind = kindOf(row.type);
    json.open('{').member("name", std::wstring(row.name)).member("kind", kind ? kind->word.str() : L"");
    addDefault(json, row);
    if (std::string const unit = internalUnit(row.units); !unit.empty()) json.member("unit", unit);
    addRange(json, row);
    if (!row.strings.empty()) {
        json.key("words").open('[');
        for (wchar_t const* word : row.strings) json.value(std::wstring(word));
        json.close(']');
    }
    if (row.documentation[0]) json.member("help", std::wstring(row.documentation));
    if (!row.children.empty()) {
        json.key("parts").open('[');
        for (AttributeDef const& part : row.children) addRow(json, part);
        json.close(']');
    }
    json.close('}');
}

void addCommand(Json& json, XCommandInfo const& info) {
    json.open('{').member("name", info.name).member("help", info.help).member("undoable", info.isUndoable);
    json.key("parameters").open('[');
    for (AttributeDef const* parameter : info.parameters) addRow(json, *parameter);
    json.close(']').close('}');
}

std::string toJson(std::vector<XCommandInfo> const& all, bool single) {
    Json json;
    if (single) {
        addCommand(json, all.front());
        return json.take();
    }
    json.open('[');
    for (XCommandInfo const& info : all) addCommand(json, info);
    return json.close(']').take();
}

// ---- the reference page ----

constexpr char const* pageHead = R"(# Commands

Everything that a user can invoke by name, by `tavo do`, a script or a menu. This page is what `tavo commands --markdown`
prints, from the rows in which the commands are declared ([`tavo/commands`](../tavo/commands)); `make readme` writes it
anew. Lengths are in metres, angles in radians.

| command | does | history |
|---|---|---|
)";

std::string rowMarkdown(XCommandInfo const& info) {
    std::string const name = toUtf8(info.name);
    std::string const shown = info.parameters.empty()
                                  ? fmt::format("`{}`", name)
                                  : fmt::format("[`{}`](#{})", name, toUtf8(Qelutils::toLower(info.name)));
    return fmt::format("| {} | {} | {} |\n", shown, toUtf8(info.help), info.isUndoable ? "one step" : "");
}

std::string fullMarkdown(XCommandInfo const& info) {
    std::string text = fmt::format("## {}\n\n{}\n", toUtf8(info.name), toUtf8(info.help));
    std::vector<Line> const lines = linesOf(info);
    if (!lines.empty()) text += "\n| parameter | takes | default | |\n|---|---|---|---|\n";
    for (Line const& line : lines)
        text += fmt::format("| `{}` | {} | {} | {} |\n", line.name, line.kind, line.initial, line.help);
    return text;
}

std::string page(std::vector<XCommandInfo> const& all) {
    std::string text = pageHead;
    for (XCommandInfo const& info : all) text += rowMarkdown(info);
    for (XCommandInfo const& info : all)
        if (!info.parameters.empty()) text += '\n' + fullMarkdown(info);
    return text;
}

}  // namespace

void run(CommandsVerb const& verb) {
    Session session;
    bool const single = !verb.name.empty();
    std::vector<XCommandInfo> all = XCommandCatalogue::List(XApplication::Instance().Settings());
    if (single) all = {findCommand(all, verb.name)};
    if (verb.json) return writeResult(toJson(all, single));
    if (verb.markdown) return writeResult(single ? fullMarkdown(all.front()) : page(all));
    writeResult(single ? fullText(all.front()) : listText(all));
}

std::string commandsHelp() {
    XDatabase settings;
    settings.Register();
    XCommandCatalogue::Register(settings);
    return "Commands (`tavo commands NAME` tells the parameters):\n" +
           listText(XCommandCatalogue::List(settings), "  ");
}

}  // namespace host
