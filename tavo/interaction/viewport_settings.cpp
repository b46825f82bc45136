#include "tavo/interaction/viewport_settings.h"
#include "tavo/kinematics/camera.h"
#include "tavo/objects/scene.h"

namespace Tavo {

void XViewportSettings::onInitialize() {
    XSceneObject::onInitialize();
    XCamera const cameras[] = {Scene().PerspectiveCamera(), Scene().TopCamera(), Scene().FrontCamera(),
                               Scene().SideCamera()};
    Camera().SetArraySize(XScene::ViewportCount);
    for (int i = 0; i < XScene::ViewportCount; ++i) Camera().SetString(cameras[i].Path(), i);
}

}  // namespace Tavo
