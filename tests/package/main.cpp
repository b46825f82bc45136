// What a user's first program does with the installed library: a document, a joint, a step back. run.sh compares what
// it prints.
#include <iostream>
#include <tavo/tavo.h>

namespace {

struct Quiet : Qelutils::BasicLogger {
    void Log(Level, char const*) override {}
    void Log(Level, wchar_t const*) override {}
    void Log(Level, std::wstring const&) override {}
};

}  // namespace

int main() {
    Quiet log;
    Tavo::XCoreTypes types;
    Tavo::XApplication& application = Tavo::XApplication::Instance();
    application.AddSceneObserver(&types).AddSettingsObserver(&types);
    application.Startup(nullptr, &log, L"");
    Tavo::XScene& scene = application.ActiveScene();
    scene.New();

    scene.BeginChangeBlock();
    Tavo::XJoint const joint(scene.CreateObject(std::wstring(Tavo::XJoint::TypeID)));
    joint.TranslationY().SetFloat(2);
    scene.EndChangeBlock(L"make a joint");
    bool const made = joint.IsValid() && joint.WorldTranslation().Y() == 2;
    scene.Undo();
    std::cout << (made && !joint.IsValid() ? "linked: Tavo\n" : "wrong\n");
    application.Shutdown();
}
