// Any bytes as a chunk in a sandboxed state: it ends in time, within its memory, and leaves the state usable.
#include "qel/lua/lua_state.h"
#include <cstdint>
#include <cstdlib>

namespace {

constexpr LuaPlus::LuaLimits limits{.bytes = 16u << 20, .seconds = 0.2};

void check(bool condition) {
    if (!condition) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    LuaPlus::LuaStateOwner owner(LuaPlus::LuaLibraries::Sandboxed);
    owner->SetGlobal("print", owner->GetGlobal("tostring"));  // nothing is written
    owner.SetLimits(limits);
    std::string error;
    int const status = owner->DoString({reinterpret_cast<char const*>(data), size}, "=chunk", error);
    check(owner->GetTop() == 0 && (status != 0) == !error.empty() && owner.BytesInUse() <= limits.bytes);
    owner.SetLimits({.bytes = owner.BytesInUse() + (1u << 20)});
    check(owner->DoString("local x = {1, 2}", "=after", error) == 0);
    return 0;
}
