// One line gives a test a started application: the core's types, a log that can be read, and a new scene.
//
//     using MyTest = StartedApplication;
//     TEST_F(MyTest, DoesThis) { XObject joint = scene().CreateObject(XJoint::TypeID); ... }
#pragma once
#include "qel/utils/text.h"
#include "tavo/tavo.h"
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace Tavo {

class RecordingLog : public Qelutils::BasicLogger {
public:
    struct Entry {
        Level level;
        std::wstring text;
        bool operator==(Entry const&) const = default;
    };

    void Log(Level level, char const* text) override {
        entries.push_back({level, std::wstring(text, text + std::strlen(text))});
    }
    void Log(Level level, wchar_t const* text) override { entries.push_back({level, text}); }
    void Log(Level level, std::wstring const& text) override { entries.push_back({level, text}); }

    std::vector<std::wstring> texts(Level level) const {
        std::vector<std::wstring> found;
        for (Entry const& entry : entries)
            if (entry.level == level) found.push_back(entry.text);
        return found;
    }
    std::vector<std::wstring> errors() const { return texts(Error); }
    void clear() { entries.clear(); }

    std::vector<Entry> entries;
};

class StartedApplication : public testing::Test {
protected:
    StartedApplication() {
        application().AddSceneObserver(&types).AddSettingsObserver(&types);
        application().Startup(nullptr, &log, L"");
        application().Settings().New();
        scene().New();
        log.clear();
    }
    ~StartedApplication() override {
        if (application().IsStarted()) application().Shutdown();
    }

    static XApplication& application() { return XApplication::Instance(); }
    static XScene& scene() { return application().ActiveScene(); }
    static XSceneSettings time() { return scene().SceneSettings(); }
    static int undoCount() { return int(scene().SceneGraph()->getUndoCount()); }

    RecordingLog log;
    XCoreTypes types;
};

}  // namespace Tavo
