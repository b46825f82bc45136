// The log sink that a host implements. Messages arrive finished, without decoration.
#pragma once
#include <string>

namespace Qelutils {

class BasicLogger {
public:
    enum Level { Information = 0, Warning = 1, Error = 2, Debug = 3 };

    virtual ~BasicLogger() = default;
    virtual void Log(Level level, char const* text) = 0;
    virtual void Log(Level level, wchar_t const* text) = 0;
    virtual void Log(Level level, std::wstring const& text) = 0;
};

}  // namespace Qelutils
