// import and export: a file in, a file out, and a few lines on what it was.
#include "hosts/tavo/session.h"
#include "plugins/bvh/exporter.h"
#include "qel/utils/text.h"

#include <fmt/format.h>

namespace host {
namespace {

std::string describe(OpenedClip const& opened) {
    bvh::Clip const& clip = opened.clip;
    std::string text = fmt::format("{}, {}, {} of {} s\n", counted(clip.joints.size(), "joint"),
                                   counted(std::size_t(clip.channels), "channel"),
                                   counted(std::size_t(clip.frames), "frame"), clip.frameTimeText);
    text += fmt::format("unit {}: {}\n", bvh::symbolOf(opened.report.unit), opened.report.unitReason);
    if (!opened.report.renamed.empty())
        text += fmt::format("{} had to be changed; export gives the old back\n",
                            counted(opened.report.renamed.size(), "name"));
    return text;
}

void warnOfSuspicious(OpenedClip const& opened) {
    if (opened.notes.suspiciousCount == 0) return;
    bvh::Suspicious const& first = opened.notes.suspicious.front();
    printWarning(fmt::format("{} beyond all reason, the first at line {}, column {}; info lists them",
                             counted(opened.notes.suspiciousCount, "value"), first.line, first.column));
}

}  // namespace

void run(ImportVerb const& verb) {
    Session session(verb.input);
    session.save(verb.output);
    if (!session.clip()) return writeResult(fmt::format("wrote {}\n", verb.output));
    warnOfSuspicious(*session.clip());
    writeResult(fmt::format("{}wrote {}\n", describe(*session.clip()), verb.output));
}

void run(ExportVerb const& verb) {
    std::optional<bvh::Unit> unit;
    if (!verb.outputUnits.empty()) unit = unitOf(verb.outputUnits);
    Session session(verb.input);
    bvh::Clip const clip = session.saveClip(verb.output, unit);
    writeResult(fmt::format("{}, {}, {} of {} s\nwrote {}\n", counted(clip.joints.size(), "joint"),
                            counted(std::size_t(clip.channels), "channel"), counted(std::size_t(clip.frames), "frame"),
                            clip.frameTimeText, verb.output));
}

}  // namespace host
