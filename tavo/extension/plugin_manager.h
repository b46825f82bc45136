// XPluginManager: finds and loads the shared libraries that extend the application.
#pragma once
#include "tavo/app/word.h"

namespace Tavo {

class XPluginManager {
public:
    static constexpr XWord PluginFileExtension = L"tvl";  // without a dot
};

}  // namespace Tavo
