// plot: attributes over time as a picture, with the keys of their curves.
#include "hosts/tavo/chart.h"
#include "hosts/tavo/find.h"
#include "hosts/tavo/reading.h"
#include "hosts/tavo/session.h"
#include "hosts/tavo/time_steps.h"
#include "plugins/bvh/exporter.h"
#include "qel/utils/text.h"
#include "tavo/animation/animation.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fmt/format.h>

namespace host {
namespace {

using namespace Tavo;
using Qelutils::toUtf8;

constexpr int fewestSamples = 200, mostSamples = 4000;  // of a line: a picture has a thousand pixels across
constexpr std::size_t mostCurves = 64;

struct Line {
    XAttribute attribute;
    ChartCurve curve;
};

std::vector<Line> linesOf(XScene& scene, PlotVerb const& verb) {
    std::vector<Line> lines;
    for (std::string const& text : verb.attributes)
        for (XAttribute const& attribute : findAttributes(scene, text)) {
            if (!attribute.IsFloat() && !attribute.IsDouble() && !attribute.IsInt() && !attribute.IsBool())
                throw wrongCall(fmt::format("{} is no number that a line could show", toUtf8(attribute.ShortPath())));
            lines.push_back({attribute, {toUtf8(attribute.ShortPath()), {}, {}, {}, {}}});
        }
    if (lines.size() > mostCurves) throw wrongCall(fmt::format("{} curves are too many for a picture", lines.size()));
    return lines;
}

double valueOf(XAttribute const& a) {
    if (a.IsInt() || a.IsBool()) return a.IsInt() ? a.Integer() : a.Boolean();
    return convertUnits(a, ToExternalUnits, a.IsDouble() ? a.Double() : a.Float());
}

void sample(Session& session, std::vector<Line>& lines) {
    double const from = session.settings().StartTime().Float(), to = session.settings().EndTime().Float();
    double const frames = bvh::frameCountOf(session.scene(), bvh::frameTimeOf(session.scene()).seconds);
    int const count = int(std::clamp<double>(std::ceil(fewestSamples / frames) * (frames - 1) + 1, 1, mostSamples));
    TimeSteps steps(session.scene());
    Progress progress("sampling", count);
    for (int i = 0; i < count; ++i) {
        double const time = count == 1 ? from : from + (to - from) * i / (count - 1);
        steps.go(float(time));
        for (Line& line : lines) {
            line.curve.x.push_back(time);
            line.curve.y.push_back(valueOf(line.attribute));
        }
        progress.advance(i + 1);
    }
}

// Those within the time that is shown, if the attribute's curve runs over time.
void addKeys(Session& session, Line& line) {
    XAnimation const curve = line.attribute.Animation();
    if (!curve.IsValid() || curve.InputValue().InputAttribute() != session.settings().Time()) return;
    int inputs = 0, outputs = 0;
    float const* const times = curve.KeyframeInputValues().FloatData(inputs);
    float const* const values = curve.KeyframeOutputValues().FloatData(outputs);
    for (int i = 0; times && values && i < std::min(inputs, outputs); ++i) {
        if (times[i] < line.curve.x.front() || times[i] > line.curve.x.back()) continue;
        line.curve.keyX.push_back(times[i]);
        line.curve.keyY.push_back(convertUnits(line.attribute, ToExternalUnits, values[i]));
    }
}

// Curves of one unit share a panel, in the order of the call.
Chart chartOf(Session& session, std::vector<Line> lines, std::string const& file) {
    Chart chart{std::filesystem::path(file).filename().string(), {}};
    for (Line& line : lines) {
        std::string const unit = displayUnit(session.scene(), line.attribute.Units());
        auto panel = std::find_if(chart.panels.begin(), chart.panels.end(),
                                  [&unit](ChartPanel const& p) { return p.unit == unit; });
        if (panel == chart.panels.end()) panel = chart.panels.insert(panel, {unit, {}});
        panel->curves.push_back(std::move(line.curve));
    }
    return chart;
}

}  // namespace

void run(PlotVerb const& verb) {
    if (!verb.trajectories.empty()) return plotPaths(verb);
    if (verb.attributes.empty()) throw wrongCall("what is to be drawn? it takes OBJECT.ATTRIBUTE or --trajectory PATH");
    Session session(verb.input);
    std::vector<Line> lines = linesOf(session.scene(), verb);
    sample(session, lines);
    for (Line& line : lines) addKeys(session, line);
    std::size_t const count = lines.size();
    writeResult(drawSvg(chartOf(session, std::move(lines), verb.input.file)), verb.output);
    writeResult(fmt::format("{} curve{}\nwrote {}\n", count, count == 1 ? "" : "s", verb.output));
}

}  // namespace host
