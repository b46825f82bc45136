// Who is told of a scene: of its changes, of a load, and of what the controller of a viewport does. And the part of a
// renderer that the scene's owner calls; a display library implements it.
#pragma once
#include "qel/db/observer.h"
#include "qel/utils/values.h"
#include <vector>

namespace sg {

class Controller;
class Scene;

class Renderer {
public:
    virtual ~Renderer() = default;
    virtual void requestNeedToRedraw() = 0;
    virtual void zoomToFit() {}        // the active view onto what is selected, or onto everything
    virtual void updateZoomToFit() {}  // one step of a view that is on its way there
};

// All operations do nothing by default. Vectors are in metres and radians.
class SceneObserver : public db::DatabaseObserver {
public:
    void onDatabaseChanged(db::ChangeSet const& changes, bool transient) override {
        onSceneChanged(changes, transient);
    }
    void postDatabaseChanged(db::ChangeSet const& changes, bool transient) override {
        postSceneChanged(changes, transient);
    }
    virtual void onSceneChanged(db::ChangeSet const&, bool /*transient*/) {}
    virtual void postSceneChanged(db::ChangeSet const&, bool /*transient*/) {}
    virtual void onSceneLoaded(Scene*) {}

    virtual void onControllerEnter(Scene*, int /*viewport*/, int /*tool*/, bool, bool, bool) {}
    virtual void onControllerExit(Scene*, int /*viewport*/, int /*tool*/) {}
    virtual void onControllerCancel(Scene*, int /*viewport*/, int /*tool*/) {}
    virtual void onControllerTranslation(Scene*, Qelp::Vector3 const& /*delta*/) {}
    virtual void onControllerRotation(Scene*, float /*angle*/, Qelp::Vector3 const& /*axis*/) {}
    virtual void onControllerRotation(Scene*, Qelp::Vector3 const& /*eulerAngles*/, int /*order*/) {}
    virtual void onControllerScaleEnter(Scene*) {}
    virtual void onControllerScale(Scene*, Qelp::Vector3 const& /*scale*/) {}
    virtual void onControllerReportSelection(Scene*, std::vector<int> const& /*items*/,
                                             std::vector<int> const& /*subItems*/, int /*mode*/) {}
    virtual void onControllerReportCamera(Scene*, int /*viewport*/) {}
};

}  // namespace sg
