// The application's list of scenes: adding, removing and switching clear selections, so it stands on this floor.
#include "tavo/app/application.h"
#include "tavo/interaction/selection.h"
#include "tavo/objects/scene.h"

namespace Tavo {

XScene& XApplication::SetActiveScene(int index) {
    if (index < 0 || index >= int(_scenes.size())) return *_activeScene;
    XScene* const scene = _scenes[std::size_t(index)];
    if (!scene || scene == _activeScene) return *_activeScene;
    _activeScene->Selection().Clear();
    _activeScene = scene;
    _activeScene->NotifySceneLoaded();
    return *_activeScene;
}

XScene& XApplication::activateNeighbour(int step) {
    int const count = int(_scenes.size());
    if (count < 2) return *_activeScene;
    _activeScene->Selection().Clear();
    return SetActiveScene((ActiveSceneIndex() + step + count) % count);
}

XScene& XApplication::ActivateNextScene() { return activateNeighbour(1); }

XScene& XApplication::ActivatePreviousScene() { return activateNeighbour(-1); }

int XApplication::AddScene() {
    _activeScene->Selection().Clear();
    _activeScene = _scenes.emplace_back(new XScene);
    int const index = int(_scenes.size()) - 1;
    XScene& scene = *_activeScene;
    scene.Register();
    scene.New();
    scene.NotifySceneLoaded();
    return index;
}

// Without the scene's Unregister, unlike the form with an index: it stays.
XScene& XApplication::RemoveScene() {
    int const index = ActiveSceneIndex();
    if (index < 1) return *(_activeScene = _scenes.front());
    _activeScene->Selection().Clear();
    SetActiveScene(0);
    delete _scenes[std::size_t(index)];
    _scenes.erase(_scenes.begin() + index);
    return *_activeScene;
}

XScene& XApplication::RemoveScene(int index) {
    if (index < 1 || index >= int(_scenes.size())) return *_activeScene;
    _activeScene->Selection().Clear();
    SetActiveScene(0);
    XScene* const scene = _scenes[std::size_t(index)];
    scene->Unregister();
    delete scene;
    _scenes.erase(_scenes.begin() + index);
    return *(_activeScene = _scenes.front());
}

XScene& XApplication::RemoveScenes() {
    _activeScene->Selection().Clear();
    while (_scenes.size() > 1) {
        _activeScene = _scenes.back();
        _activeScene->Unregister();
        delete _activeScene;
        _scenes.pop_back();
    }
    _activeScene = _scenes.front();
    return _activeScene->New();
}

XScene& XApplication::ClearScenes() {
    _activeScene->Selection().Clear();
    for (XScene* scene : _scenes) scene->New();
    return *_activeScene;
}

}  // namespace Tavo
