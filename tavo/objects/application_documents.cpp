// What XApplication does with its documents as databases: looking them up, committing, the settings file.
#include "qel/db/loader_xml.h"
#include "qel/db/saver_xml.h"
#include "qel/utils/text.h"
#include "tavo/app/application.h"
#include "tavo/objects/scene.h"
#include "tavo/objects/scene_graph.h"
#include "tavo/objects/settings.h"
#include <filesystem>

namespace Tavo {

XDatabase* XApplication::GetDatabaseByID(int id) {
    for (XScene* scene : _scenes)
        if (scene->DatabaseID() == id) return scene;
    return _settings && _settings->DatabaseID() == id ? _settings : nullptr;
}

XScene* XApplication::GetSceneByName(std::wstring const& name) {
    for (XScene* scene : _scenes)
        if (scene->SceneName() == name) return scene;
    return nullptr;
}

void XApplication::Update() {
    if (_settings) _settings->CommitTransient();
    // By index: what a commit tells may add scenes.
    for (std::size_t i = 0; i < _scenes.size(); ++i) _scenes[i]->CommitTransient();
    UpdateFrame();
    UpdateDisplay();
}

bool XApplication::SaveSettings(std::wstring const& file) {
    if (!IsStarted()) return false;
    db::FileOutputStream stream(file);
    db::SaverXML saver(stream, 0);
    bool const saved = saver.save(*_settings->SceneGraph());
    if (!saved) LogError(L"Unable to save the settings to \"%s\": %s", file, saver.error());
    return saved;
}

// A first start finds no file, which is nothing to tell.
bool XApplication::LoadSettings(std::wstring const& file) {
    if (!IsStarted()) return false;
    XSceneGraph& graph = *_settings->SceneGraph();
    _settings->BeginChangeBlock();
    db::FileInputStream stream(file);
    db::LoaderXML loader(stream, 0, nullptr);
    bool const loaded = loader.load(graph);
    if (std::error_code none; !loaded && std::filesystem::exists(Qelutils::toUtf8(file), none))
        LogError(L"Unable to load the settings from \"%s\", so that the defaults stand: %s", file, loader.error());
    loaded ? _settings->Open() : _settings->New();
    _settings->EndChangeBlock();
    graph.clearUndoHistory();
    graph.setCheckpoint();
    loaded ? _settings->NotifySettingsLoaded() : _settings->NotifySettingsCreated();
    return loaded;
}

}  // namespace Tavo
