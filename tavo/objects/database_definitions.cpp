// The registry of object types and file translators.
#include "qel/utils/text.h"
#include "tavo/app/application.h"
#include "tavo/objects/database.h"
#include "tavo/objects/scene_graph.h"
#include "tavo/objects/translator.h"
#include <algorithm>

namespace Tavo {
namespace {

template<class Map> typename Map::mapped_type find(Map const& map, std::wstring const& key) {
    auto const it = map.find(key);
    return it == map.end() ? nullptr : it->second;
}

std::wstring keyOf(XTranslatorDef const& translator) { return Qelutils::toUpper(translator.Extension()); }

// Takes an entry out that holds this very definition; another of the same name keeps its place.
template<class Map> void eraseEntry(Map& map, std::wstring const& key, XObjectDef const* def) {
    if (auto const it = map.find(key); it != map.end() && it->second == def) map.erase(it);
}

}  // namespace

void XModule::Register(XObjectDef* definition) {
    if (!definition) return;
    definition->setInitialModule(this);
    _database->registerDefinition(this, definition);
}
bool XModule::Unregister(XObjectDef* definition) { return _database->unregisterDefinition(definition); }
bool XModule::Unregister() { return _database->unregisterModule(this); }

XObjectDef* XDatabase::ObjectDefinition(std::wstring const& name) const {
    XObjectDef* const def = find(_objectDefinitions, name);
    return def ? def : find(_nodeDefinitions, name);
}

void XDatabase::ObjectDefinitions(Qelutils::Vector<XObjectDef*>& out) const {
    out.clear();
    for (auto const& [type, definition] : _objectDefinitions) out.push_back(definition);
}

void XDatabase::registerDefinition(XModule* module, XObjectDef* definition) {
    if (!definition) return;
    std::wstring const &objectType = definition->ObjectType(), &nodeType = definition->NodeType();
    if (!objectType.empty()) _objectDefinitions.emplace(objectType, definition);
    if (!nodeType.empty() && nodeType != sg::Node::ClassID) _nodeDefinitions.emplace(nodeType, definition);
    _moduleDefinitions.emplace(module, definition);
    if (!definition->IsTranslator()) return;
    auto* const translator = static_cast<XTranslatorDef*>(definition);
    if (!_translators.emplace(keyOf(*translator), translator).second)
        XApplication::Instance().LogError(L"A translator for the file extension \"%s\" is already registered.You must "
                                          L"un-register it before trying to "
                                          L"register another.",
                                          translator->Extension());
}

bool XDatabase::unregisterDefinition(XObjectDef* definition) {
    if (!definition) return false;
    if (definition->IsTranslator()) {
        auto* const translator = static_cast<XTranslatorDef*>(definition);
        if (!_translators.count(keyOf(*translator)))
            XApplication::Instance().LogError(
                L"Cannot unregister a translator for extension \"%s\" that is not registered", translator->Extension());
        eraseEntry(_translators, keyOf(*translator), definition);
    }
    if (!_objectDefinitions.count(definition->ObjectType())) return false;
    eraseEntry(_objectDefinitions, definition->ObjectType(), definition);
    eraseEntry(_nodeDefinitions, definition->NodeType(), definition);
    std::erase_if(_moduleDefinitions, [&](auto const& entry) { return entry.second == definition; });
    return true;
}

bool XDatabase::unregisterModule(XModule* module) {
    auto const [first, last] = _moduleDefinitions.equal_range(module);
    if (!std::all_of(first, last, [](auto const& entry) { return entry.second->CanUnregister(); })) return false;
    std::vector<XObjectDef*> definitions;
    for (auto it = first; it != last; ++it) definitions.push_back(it->second);
    for (XObjectDef* definition : definitions) {
        unregisterDefinition(definition);
        delete definition;
    }
    std::erase_if(_moduleDefinitions, [&](auto const& entry) { return entry.first == module; });
    return true;
}

// First the registered types in their order, then those whose name was taken: they belong to the database as well.
void XDatabase::deleteDefinitions() {
    std::vector<XObjectDef*> owned;
    for (auto const& [type, definition] : _objectDefinitions) owned.push_back(definition);
    for (auto const& [module, definition] : _moduleDefinitions)
        if (find(_objectDefinitions, definition->ObjectType()) != definition) owned.push_back(definition);
    _objectDefinitions.clear();
    _nodeDefinitions.clear();
    _moduleDefinitions.clear();
    _translators.clear();
    for (XObjectDef* definition : owned) delete definition;
}

}  // namespace Tavo
