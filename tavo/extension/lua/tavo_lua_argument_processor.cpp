#include "tavo/extension/lua/tavo_lua_argument_processor.h"

namespace Tavo {

void TavoLuaArgumentProcessor::beginArguments(LuaPlus::LuaState*, bool isMethod) {
    _processor.emplace();
    _isMethod = isMethod;
}

void TavoLuaArgumentProcessor::addArgument(std::string name) {
    if (_processor) _processor->addOptional(std::move(name));
}

void TavoLuaArgumentProcessor::endArguments(LuaPlus::LuaState* state) {
    if (_processor) _processor->process(state, _isMethod);
}

bool TavoLuaArgumentProcessor::getValue(std::string_view name, bool& out) const {
    return _processor && _processor->getArgAsBool(name, out);
}
bool TavoLuaArgumentProcessor::getValue(std::string_view name, int& out) const {
    return _processor && _processor->getArgAsInt(name, out);
}
bool TavoLuaArgumentProcessor::getValue(std::string_view name, float& out) const {
    return _processor && _processor->getArgAsFloat(name, out);
}
bool TavoLuaArgumentProcessor::getValue(std::string_view name, std::wstring& out) const {
    return _processor && _processor->getArgAsString(name, out);
}
bool TavoLuaArgumentProcessor::getValue(std::string_view name, std::vector<float>& out) const {
    return _processor && _processor->getArgAsFloatList(name, out);
}
bool TavoLuaArgumentProcessor::getValue(std::string_view name, std::vector<std::wstring>& out) const {
    return _processor && _processor->getArgAsStringList(name, out);
}

}  // namespace Tavo
