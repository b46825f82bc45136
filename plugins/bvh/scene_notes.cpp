#include "plugins/bvh/scene_notes.h"

#include "plugins/bvh/lexical.h"
#include "qel/utils/text.h"

#include <algorithm>

namespace bvh {
namespace {

using Qelutils::fromUtf8;
using Qelutils::toUtf8;
using Tavo::XJoint;
using Tavo::XWord;

constexpr XWord nameNote = L"BvhName", channelsNote = L"BvhChannels", offsetNote = L"BvhOffset",
                endSitesNote = L"BvhEndSites", frameTimeNote = L"BvhFrameTime", unitNote = L"BvhUnit",
                positionsNote = L"BvhPositions";

void put(XJoint& joint, XWord const& name, std::string const& text) {
    if (joint.HasAttribute(name))
        joint.Attribute(name).SetString(fromUtf8(text));
    else
        joint.AddStringAttribute(name, fromUtf8(text));
}

std::optional<std::string> get(XJoint const& joint, XWord const& name) {
    if (!joint.HasAttribute(name)) return {};
    return toUtf8(joint.Attribute(name).String());
}

std::string toText(Vec3 const& v) {
    return Qelutils::number(v[0]) + ' ' + Qelutils::number(v[1]) + ' ' + Qelutils::number(v[2]);
}

// The next word, which is taken off `text` together with the blank after it.
std::string_view takeWord(std::string_view& text) {
    std::size_t const end = std::min(text.find(' '), text.size());
    std::string_view const word = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return word;
}

bool takeVector(std::string_view& text, Vec3& v) {
    return std::all_of(v.begin(), v.end(), [&text](double& x) { return Qelutils::parseNumber(takeWord(text), x); });
}

std::string toText(std::vector<Channel> const& channels) {
    std::string text;
    for (Channel const channel : channels) {
        if (!text.empty()) text += ' ';
        text += channelNames[static_cast<std::size_t>(channel)];
    }
    return text;
}

bool parse(std::string_view text, std::vector<Channel>& channels) {
    while (!text.empty()) {
        std::string_view const word = takeWord(text);
        auto const found = std::find_if(channelNames.begin(), channelNames.end(),
                                        [word](char const* name) { return sameWord(word, name); });
        if (found == channelNames.end()) return false;
        auto const channel = static_cast<Channel>(found - channelNames.begin());
        if (std::find(channels.begin(), channels.end(), channel) != channels.end()) return false;
        channels.push_back(channel);
    }
    return true;
}

bool parseEndSites(XJoint const& joint, std::vector<EndSite>& endSites) {
    if (!joint.HasAttribute(endSitesNote)) return true;
    for (std::wstring const& entry : joint.Attribute(endSitesNote).Strings()) {
        std::string const text = toUtf8(entry);
        std::string_view rest = text;
        EndSite site;
        if (!takeVector(rest, site.offset)) return false;
        site.label = rest;
        endSites.push_back(site);
    }
    return true;
}

}  // namespace

void keep(XJoint& joint, JointNotes const& notes) {
    if (!notes.name.empty()) put(joint, nameNote, notes.name);
    put(joint, channelsNote, toText(notes.channels));
    put(joint, offsetNote, toText(notes.offset));
    if (notes.endSites.empty()) return;
    Tavo::XAttribute sites = joint.AddStringAttribute(endSitesNote, {}, true);
    for (EndSite const& site : notes.endSites) sites.AddString(fromUtf8(toText(site.offset) + ' ' + site.label));
}

void keep(XJoint& root, ClipNotes const& notes) {
    put(root, frameTimeNote, notes.frameTime);
    put(root, unitNote, symbolOf(notes.unit));
    put(root, positionsNote, notes.positions == Positions::add ? "add" : "replace");
}

std::optional<JointNotes> recallJoint(XJoint const& joint) {
    std::optional<std::string> const channels = get(joint, channelsNote), offset = get(joint, offsetNote);
    if (!channels || !offset) return {};
    JointNotes notes;
    notes.name = get(joint, nameNote).value_or("");
    std::string_view rest = *offset;
    if (!parse(*channels, notes.channels) || !takeVector(rest, notes.offset) || !parseEndSites(joint, notes.endSites))
        return {};
    return notes;
}

std::optional<ClipNotes> recallClip(XJoint const& root) {
    std::optional<std::string> const frameTime = get(root, frameTimeNote), unit = get(root, unitNote);
    ClipNotes notes;
    if (!frameTime || !unit || !parseUnit(*unit, notes.unit)) return {};
    notes.frameTime = *frameTime;
    parsePositions(get(root, positionsNote).value_or("replace"), notes.positions);
    return notes;
}

std::wstring sceneName(std::string const& fileName) {
    std::wstring name = fromUtf8(fileName);
    std::replace_if(
        name.begin(), name.end(), [](wchar_t c) { return c == L'|' || c < L' '; }, L'_');
    return name.empty() ? XJoint::DefaultName.str() : name;
}

}  // namespace bvh
