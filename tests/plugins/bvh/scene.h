// A started application with an empty scene that hears of motion clips.
#pragma once
#include "plugins/bvh/exporter.h"
#include "plugins/bvh/importer.h"
#include "plugins/bvh/translator.h"
#include "qel/utils/text.h"
#include "tavo/tavo.h"
#include "tests/plugins/bvh/clips.h"

namespace bvh {

class RecordingLog : public Qelutils::BasicLogger {
public:
    void Log(Level level, char const* text) override { add(level, Qelutils::fromUtf8(text)); }
    void Log(Level level, wchar_t const* text) override { add(level, text); }
    void Log(Level level, std::wstring const& text) override { add(level, text); }
    std::vector<std::wstring> errors, informations;

private:
    void add(Level level, std::wstring const& text) {
        if (level == Error) errors.push_back(text);
        if (level == Information) informations.push_back(text);
    }
};

class SceneTest : public testing::Test, public Tavo::XSettingsObserver {
protected:
    SceneTest() {
        Tavo::XApplication& application = Tavo::XApplication::Instance();
        application.AddSceneObserver(&types_).AddSettingsObserver(&types_).AddSettingsObserver(this);
        application.Startup(nullptr, &log, L"");
        application.Settings().New();
        scene().New();
    }
    ~SceneTest() override { Tavo::XApplication::Instance().Shutdown(); }
    void OnSettingsRegistered(Tavo::XSettings& settings) override {
        settings.CoreModule().Register(new Tavo::XBvhTranslatorDef);
    }

    Tavo::XScene& scene() { return Tavo::XApplication::Instance().ActiveScene(); }
    Tavo::XSceneSettings settings() { return scene().SceneSettings(); }
    ImportReport import(Clip const& clip, ImportOptions const& options = {}) {
        static std::wstring const label = L"Import";
        ImportReport report;
        Tavo::XChangeBlock const block(scene(), label);
        EXPECT_TRUE(importClip(clip, scene(), options, &report));
        return report;
    }
    Clip exported(ExportOptions const& options = {}) {
        Clip clip;
        Error error;
        EXPECT_TRUE(exportClip(scene(), clip, error, options)) << error.text();
        return clip;
    }
    Tavo::XJoint joint(ImportReport const& report, std::size_t i) {
        return Tavo::XJoint(scene().Object(report.joints[i]));
    }
    Tavo::XJoint create(Tavo::XObject const& parent, std::wstring const& name) {
        Tavo::XJoint made(scene().CreateObject(Tavo::XJoint::TypeID, parent));
        made.SetName(name);
        return made;
    }
    void go(double seconds) {
        scene().BeginChangeBlock(true);
        settings().Time().SetFloat(float(seconds));
        scene().EndChangeBlock();
    }

    RecordingLog log;

    Tavo::XCoreTypes types_;
};

}  // namespace bvh
