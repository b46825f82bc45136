// The types of the script side that a host hands to the core: the owner of a script state, and a frame of the user
// interface that is filled by scripts.
#pragma once
#include <string>

namespace LuaPlus {

// Owns a script state. The core borrows it from the host.
class LuaStateOwner {
public:
    virtual ~LuaStateOwner() = default;
};

}  // namespace LuaPlus

namespace qellua {

class LuaFrame {
public:
    virtual ~LuaFrame() = default;
    // Refreshes what is shown under that name.
    virtual void updateUI(std::wstring const& name) = 0;
};

}  // namespace qellua
