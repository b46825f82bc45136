// A frame of the host's user interface that scripts fill. The core borrows it and asks it to refresh.
#pragma once
#include <string>

namespace qellua {

class LuaFrame {
public:
    virtual ~LuaFrame() = default;
    // Refreshes what is shown under that name.
    virtual void updateUI(std::wstring const& name) = 0;
};

}  // namespace qellua
