// The tools of a scene, between the viewport's manipulators and the edits of objects. A tool's parameters are
// attributes of its node, so that scripts can set and run it as events do. Tools refuse deletion, renaming, reparenting
// and selection.
#pragma once
#include "qel/sg/node_types.h"
#include "tavo/objects/scene_object.h"

namespace Tavo {

enum XToolIndex : int {
    NullTool = 0,
    SelectTool = 1,
    CameraTool = 2,
    MoveTool = 3,
    RotateTool = 4,
    ScaleTool = 5,
    TimingTool = 6
};
inline constexpr XWord ToolNames[] = {L"NullTool",   L"SelectTool", L"CameraTool", L"MoveTool",
                                      L"RotateTool", L"ScaleTool",  L"TimingTool"};
enum XToolOrientation : int { WorldOrientation = 0, ObjectOrientation = 1 };

class XTool : public XTyped<XTool, XSceneObject> {
public:
    static constexpr XWord TypeID = L"Tool";
    using XTyped::XTyped;

    bool supportsDeletion() const override { return false; }
    bool supportsRenaming() const override { return false; }
    bool supportsReparenting() const override { return false; }
    bool supportsSelection() const override { return false; }
};
using XToolDef = XTypedDef<XTool>;

class XSelectTool : public XTyped<XSelectTool, XTool, sg::SelectToolNode> {
public:
    static constexpr XWord TypeID = L"SelectTool";
    using XTyped::XTyped;

    TAVO_ATTRIBUTE(Items, 8)           // object ids
    TAVO_ATTRIBUTE(SubItems, 9)        // sub-object ids
    TAVO_ATTRIBUTE(SelectionMode, 10)  // 0 replace, 1 add, 2 toggle, 3 add to the second selection
};
using XSelectToolDef = XTypedDef<XSelectTool>;

class XMoveTool : public XTyped<XMoveTool, XTool, sg::MoveToolNode> {
public:
    static constexpr XWord TypeID = L"MoveTool";
    static constexpr int DefaultOrientation = 0;
    using XTyped::XTyped;

    TAVO_ATTRIBUTE(Orientation, 8)
    TAVO_ATTRIBUTE_XYZ(Translation, 9)  // metres
};
using XMoveToolDef = XTypedDef<XMoveTool>;

class XRotateTool : public XTyped<XRotateTool, XTool, sg::RotateToolNode> {
public:
    static constexpr XWord TypeID = L"RotateTool";
    static constexpr int DefaultOrientation = 0;
    using XTyped::XTyped;

    TAVO_ATTRIBUTE(Orientation, 8)
    TAVO_ATTRIBUTE(RotationAxis, 9)
    TAVO_ATTRIBUTE(RotationAngle, 10)  // radians
};
using XRotateToolDef = XTypedDef<XRotateTool>;

class XScaleTool : public XTyped<XScaleTool, XTool, sg::ScaleToolNode> {
public:
    static constexpr XWord TypeID = L"ScaleTool";
    static constexpr float DefaultMinimumScaleFactor = 0.001f;
    using XTyped::XTyped;

    TAVO_ATTRIBUTE_XYZ(Scale, 8)
};
using XScaleToolDef = XTypedDef<XScaleTool>;

class XTimingTool : public XTyped<XTimingTool, XTool, sg::TimingToolNode> {
public:
    static constexpr XWord TypeID = L"TimingTool";
    static constexpr int DefaultOrientation = 0;
    using XTyped::XTyped;

    TAVO_ATTRIBUTE(Orientation, 8)
    TAVO_ATTRIBUTE(Slide, 9)
    TAVO_ATTRIBUTE(Scale, 10)
};
using XTimingToolDef = XTypedDef<XTimingTool>;

}  // namespace Tavo
