#include "hosts/tavo/find.h"

#include "hosts/tavo/console.h"
#include "qel/utils/text.h"
#include "tavo/objects/attribute.h"
#include "tavo/objects/scene_graph.h"

#include <algorithm>
#include <fmt/format.h>
#include <set>

namespace host {
namespace {

using namespace Tavo;
using Qelutils::fromUtf8;
using Qelutils::toUtf8;

// Without complaint where there is none.
std::vector<XObject> match(XScene& scene, std::wstring const& pattern) {
    std::vector<sg::Node*> nodes;
    scene.SceneGraph()->Nodes(pattern, nodes);
    return {nodes.begin(), nodes.end()};
}

std::vector<std::wstring> objectNames(XScene& scene) {
    std::set<std::wstring> names;
    for (XObject const& object : match(scene, L"*")) names.insert(object.Name());
    return {names.begin(), names.end()};
}

// Of a pattern what is left without its wildcards.
std::string lastName(std::string const& path) {
    std::string name = path.substr(path.rfind('|') + 1);
    std::erase_if(name, [](char c) { return c == '*' || c == '?'; });
    return name;
}

std::vector<XAttribute> attributesOf(std::vector<XObject> const& objects, std::wstring const& name) {
    std::vector<XAttribute> found;
    for (XObject const& object : objects)
        if (object.HasAttribute(name)) found.push_back(object.Attribute(name));
    return found;
}

}  // namespace

std::vector<XObject> findObjects(XScene& scene, std::string const& pattern) {
    std::vector<XObject> found = match(scene, fromUtf8(pattern));
    if (found.empty())
        throw wrongCall(fmt::format("no object matches \"{}\"", pattern), lastName(pattern), objectNames(scene));
    return found;
}

std::vector<XAttribute> findAttributes(XScene& scene, std::string const& text) {
    std::vector<XObject> seen;  // the objects of the first split that has any
    std::string missing;
    for (std::size_t dot = text.find('.'); dot != std::string::npos; dot = text.find('.', dot + 1)) {
        std::vector<XObject> const objects = match(scene, fromUtf8(text.substr(0, dot)));
        if (objects.empty()) continue;
        std::string const name = text.substr(dot + 1);
        if (std::vector<XAttribute> found = attributesOf(objects, fromUtf8(name)); !found.empty()) return found;
        if (seen.empty()) seen = objects, missing = name;
    }
    if (!seen.empty())
        throw wrongCall(fmt::format("{} has no attribute \"{}\"", toUtf8(seen[0].Name()), missing), missing,
                        attributeNames(seen));
    if (text.find('.') == std::string::npos)
        throw wrongCall(fmt::format("\"{}\" names no attribute: it takes OBJECT.ATTRIBUTE", text));
    findObjects(scene, text.substr(0, text.find('.')));
    throw wrongCall(fmt::format("there is no \"{}\"", text));
}

std::vector<std::wstring> attributeNames(std::vector<XObject> const& objects) {
    std::set<std::wstring> names;
    for (XObject const& object : objects) {
        Qelutils::Vector<std::wstring> own;
        object.AttributeNames(own);
        names.insert(own.begin(), own.end());
    }
    return {names.begin(), names.end()};
}

}  // namespace host
