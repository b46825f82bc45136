// A started application with a new scene and a silent log, for as long as it lives.
#pragma once
#include "tavo/tavo.h"

namespace bench {

class SilentLog : public Qelutils::BasicLogger {
public:
    void Log(Level, char const*) override {}
    void Log(Level, wchar_t const*) override {}
    void Log(Level, std::wstring const&) override {}
};

class Application {
public:
    Application() {
        application().AddSceneObserver(&types_).AddSettingsObserver(&types_);
        application().Startup(nullptr, &log_, L"");
        application().Settings().New();
        scene().New();
    }
    ~Application() { application().Shutdown(); }
    Application(Application const&) = delete;
    Application& operator=(Application const&) = delete;

    static Tavo::XApplication& application() { return Tavo::XApplication::Instance(); }
    static Tavo::XScene& scene() { return application().ActiveScene(); }

private:
    SilentLog log_;
    Tavo::XCoreTypes types_;
};

}  // namespace bench
