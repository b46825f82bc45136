// XCamera: a point of view. A scene has four of its own: perspective, top, front and side.
#pragma once
#include "tavo/kinematics/transform.h"

namespace Tavo {

class XCamera : public XTyped<XCamera, XTransform, sg::CameraNode> {
public:
    static constexpr XWord TypeID = L"Camera", DefaultName = L"camera", PerspectiveCameraName = L"perspective",
                           TopCameraName = L"top", FrontCameraName = L"front", SideCameraName = L"side";
    static constexpr float DefaultViewingAngle = 60;                                        // degrees
    static constexpr float DefaultViewingWidth = 3;                                         // metres
    static constexpr float DefaultNearClipDistance = 0.01f, DefaultFarClipDistance = 1000;  // metres
    static constexpr float DefaultAspectRatio = 1.85f;
    static constexpr float DefaultPerspectiveTX = 1.8f, DefaultPerspectiveTY = 0.5f, DefaultPerspectiveTZ = 1.8f,
                           DefaultTopTX = 0, DefaultTopTY = 20, DefaultTopTZ = 0, DefaultFrontTX = 0,
                           DefaultFrontTY = 0, DefaultFrontTZ = 20, DefaultSideTX = 20, DefaultSideTY = 0,
                           DefaultSideTZ = 0;
    static constexpr XColour DefaultColour{0.5f, 0.2f, 0, 1};
    using XTyped::XTyped;

    void onInitialize() override;
};
using XCameraDef = XTypedDef<XCamera>;

}  // namespace Tavo
