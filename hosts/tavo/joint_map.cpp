#include "hosts/tavo/joint_map.h"
#include "hosts/tavo/console.h"
#include "qel/db/streams.h"
#include "qel/utils/text.h"
#include "tavo/objects/scene.h"

#include <algorithm>
#include <fmt/format.h>
#include <set>
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

std::vector<std::wstring> namesOf(XAttribute const& joints) {
    std::vector<std::wstring> names;
    for (int i = 0; i < joints.ArraySize(); ++i) names.push_back(joints.ObjectRef(i).Name());
    return names;
}

int indexOf(std::vector<std::wstring> const& names, std::wstring const& name, char const* which) {
    auto const found = std::find(names.begin(), names.end(), name);
    if (found == names.end())
        throw wrongCall(fmt::format("{} has no joint \"{}\", which the map names", which, toUtf8(name)), toUtf8(name),
                        names);
    return int(found - names.begin());
}

}  // namespace

std::vector<JointMapLine> readMap(std::string const& file) {
    std::vector<JointMapLine> lines;
    std::istringstream text(contents(file));
    std::string line;
    for (int number = 1; std::getline(text, line); ++number) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (line.empty() || line[0] == '#') continue;
        std::size_t const tab = line.find('\t');
        std::string const target =
            tab == std::string::npos ? "" : line.substr(tab + 1, line.find('\t', tab + 1) - tab - 1);
        if (target.empty())
            throw Failure{ExitCode::badInput,
                          fmt::format("{}, line {}: this is not SOURCE, a tab, TARGET", file, number)};
        lines.push_back({fromUtf8(line.substr(0, tab)), fromUtf8(target)});
    }
    return lines;
}

void applyMap(XRetarget const& rig, std::vector<JointMapLine> const& lines) {
    static std::wstring const label = L"Map joints";
    std::vector<std::wstring> const sources = namesOf(rig.SourceJoints()), targets = namesOf(rig.TargetJoints());
    std::set<int> used, usedSource;
    XChangeBlock const block(rig.Database(), label);
    for (JointMapLine const& line : lines) {
        int const target = indexOf(targets, line.target, "the figure");
        if (!used.insert(target).second) throw wrongCall(fmt::format("the map names {} twice", toUtf8(line.target)));
        if (line.source.empty()) {
            XJointRetargetParams const params(
                rig.TargetJoints().ObjectRef(target).FindChildObject(XJointRetargetParams::TypeID, IsObjectType));
            params.Parameters().Attribute(XJointRetargetParams::ActivePart).SetBoolean(false);
            continue;
        }
        int const source = indexOf(sources, line.source, "the clip");
        if (!usedSource.insert(source).second)
            throw wrongCall(fmt::format("the map names {} twice", toUtf8(line.source)));
        rig.MappedSources().AddInteger(source);
        rig.MappedTargets().AddInteger(target);
    }
}

}  // namespace host
