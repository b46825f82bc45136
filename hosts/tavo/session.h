// The application while the host runs, with one document: the file that a verb works on, a clip or a scene alike.
#pragma once
#include "hosts/tavo/console.h"
#include "hosts/tavo/verbs.h"
#include "plugins/bvh/importer.h"
#include "plugins/bvh/reader.h"
#include "qel/widgets/app_main_loop.h"
#include "tavo/app/application.h"
#include "tavo/extension/core_types.h"
#include "tavo/objects/settings.h"

#include <functional>
#include <optional>

namespace host {

// What is known of a clip beyond the scene that it became.
struct OpenedClip {
    bvh::Clip clip;
    bvh::Notes notes;
    bvh::ImportReport report;
};

class Session {
public:
    // Starts the application, with an empty scene. Scripts run in `state`, or in a state of the application's own.
    explicit Session(LuaPlus::LuaStateOwner* state = nullptr);
    // And opens the file.
    explicit Session(Input const& input);
    ~Session();
    Session(Session const&) = delete;
    Session& operator=(Session const&) = delete;

    // Throws a Failure: bad input when the file cannot be read as what it is, a wrong call when the options make no
    // sense.
    void open(Input const& input);

    Tavo::XScene& scene() { return Tavo::XApplication::Instance().ActiveScene(); }
    Tavo::XSceneSettings settings() { return scene().SceneSettings(); }
    wxUtils::AppMainLoop& mainLoop() { return mainLoop_; }
    std::optional<OpenedClip> const& clip() const { return clip_; }
    ConsoleLog& log() { return log_; }

    // What is logged as an error while `work` runs; it is not printed meanwhile.
    std::vector<std::string> errorsOf(std::function<void()> const& work);

    // As a clip when the name ends in ".bvh", otherwise as a scene.
    void save(std::string const& file);
    // What was written.
    bvh::Clip saveClip(std::string const& file, std::optional<bvh::Unit> unit);

private:
    class Formats : public Tavo::XSettingsObserver {
        void OnSettingsRegistered(Tavo::XSettings& settings) override;
    };

    void openClip(std::string const& file, bvh::ImportOptions const& options);
    void openScene(std::string const& file);
    void saveScene(std::string const& file);

    wxUtils::AppMainLoop mainLoop_;
    ConsoleLog log_;
    Tavo::XCoreTypes coreTypes_;
    Formats formats_;
    std::optional<OpenedClip> clip_;
};

// "mm" and so on; none for "auto". Throws for anything else.
std::optional<bvh::Unit> unitOf(std::string const& word);

}  // namespace host
