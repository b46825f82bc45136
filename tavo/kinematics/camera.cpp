#include "tavo/kinematics/camera.h"

namespace Tavo {

void XCamera::onInitialize() {
    XTyped::onInitialize();
    initializeAs(DefaultName, DefaultColour);
    Attribute(L"ViewingAngle").SetFloat(DefaultViewingAngle);
    Attribute(L"ViewingWidth").SetFloat(DefaultViewingWidth);
    Attribute(L"NearClipDistance").SetFloat(DefaultNearClipDistance);
    Attribute(L"FarClipDistance").SetFloat(DefaultFarClipDistance);
    Attribute(L"AspectRatio").SetFloat(DefaultAspectRatio);
}

}  // namespace Tavo
