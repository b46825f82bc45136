#include "hosts/tavo/joint_map.h"
#include "hosts/tavo/console.h"
#include "qel/db/streams.h"
#include "qel/utils/text.h"
#include "tavo/objects/scene.h"

#include <algorithm>
#include <fmt/format.h>
#include <sstream>

namespace host {
namespace {

using namespace Tavo;
using Qelutils::fromUtf8;
using Qelutils::toUtf8;

std::string contents(std::string const& file) {
    db::FileInputStream stream{fromUtf8(file)};
    std::string text(stream.sizeHint() + 1, '\0'), all;
    while (std::size_t const count = stream.read(text.data(), text.size())) all.append(text, 0, count);
    if (!stream.ok()) throw Failure{ExitCode::badInput, toUtf8(stream.error())};
    return all;
}

// One of the two figures, and which of its joints lines have named.
struct Side {
    Side(char const* name, XAttribute const& joints) : which(name), taken(std::size_t(joints.ArraySize())) {
        for (int i = 0; i < joints.ArraySize(); ++i) names.push_back(joints.ObjectRef(i).Name());
    }

    int take(std::wstring const& name, std::string const& place) {
        auto const found = std::find(names.begin(), names.end(), name);
        if (found == names.end())
            throw wrongCall(fmt::format("{}: {} has no joint \"{}\"", place, which, toUtf8(name)), toUtf8(name), names);
        if (std::find(found + 1, names.end(), name) != names.end())
            throw wrongCall(fmt::format("{}: {} has several joints \"{}\"", place, which, toUtf8(name)));
        auto const index = std::size_t(found - names.begin());
        if (taken[index]) throw wrongCall(fmt::format("{}: {} stands in a line before", place, toUtf8(name)));
        taken[index] = true;
        return int(index);
    }

    char const* which;
    std::vector<std::wstring> names;
    std::vector<bool> taken;
};

void leaveAlone(XObject const& joint) {
    XJointRetargetParams const params(joint.FindChildObject(XJointRetargetParams::TypeID, IsObjectType));
    params.Parameters().Attribute(XJointRetargetParams::ActivePart).SetBoolean(false);
}

}  // namespace

std::vector<JointMapLine> readMap(std::string const& file) {
    std::vector<JointMapLine> lines;
    std::istringstream text(contents(file));
    std::string line;
    for (int number = 1; std::getline(text, line); ++number) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (line.empty() || line[0] == '#') continue;
        std::string const place = fmt::format("{}, line {}", file, number);
        std::size_t const tab = line.find('\t');
        std::string const target =
            tab == std::string::npos ? "" : line.substr(tab + 1, line.find('\t', tab + 1) - tab - 1);
        if (target.empty()) throw Failure{ExitCode::badInput, place + ": this is not SOURCE, a tab, TARGET"};
        lines.push_back({place, fromUtf8(line.substr(0, tab)), fromUtf8(target)});
    }
    return lines;
}

void applyMap(XRetarget const& rig, std::vector<JointMapLine> const& lines) {
    static std::wstring const label = L"Map joints";
    Side source("the clip", rig.SourceJoints()), target("the figure", rig.TargetJoints());
    XChangeBlock const block(rig.Database(), label);
    for (JointMapLine const& line : lines) {
        int const follower = target.take(line.target, line.place);
        if (line.source.empty()) {
            leaveAlone(rig.TargetJoints().ObjectRef(follower));
            continue;
        }
        rig.MappedSources().AddInteger(source.take(line.source, line.place));
        rig.MappedTargets().AddInteger(follower);
    }
}

}  // namespace host
