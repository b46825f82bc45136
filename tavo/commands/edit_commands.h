// What is done to the selected objects.
#pragma once
#include "tavo/commands/command_pattern.h"

namespace Tavo {

TAVO_COMMAND(XDelete, L"Delete", L"Deletes the selected objects and all below them.")
TAVO_COMMAND(XRemove, L"Remove", L"Deletes the selected objects; their children move up.")
TAVO_COMMAND(XParent, L"Parent", L"Makes the last selected object the parent of the others.")
TAVO_COMMAND(XUnparent, L"Unparent", L"Moves the selected objects directly below the scene's origin.")
TAVO_COMMAND(XCopy, L"Copy", L"For the host, which owns the clipboard; changes nothing.")
TAVO_COMMAND(XPaste, L"Paste", L"For the host, which owns the clipboard; changes nothing.")
TAVO_COMMAND(XSetKey, L"SetKey", L"Keys, on the selected objects, what the active tool changes, at the current time.")

class XGroup : public XCommandType<XGroup> {
public:
    static constexpr XWord TypeID = L"Group";
    static constexpr XWord NodeClassID = L"GroupCommand";  // the other word is that of the groups of objects
    static constexpr wchar_t const* Help = L"Moves the selected objects below a new transform.";
    using XTyped::XTyped;

    void onRun() override;
};
using XGroupDef = XTypedDef<XGroup>;

class XAlignAxis : public XCommandType<XAlignAxis> {
    static constexpr wchar_t const* axes[] = {L"XAxis", L"YAxis", L"ZAxis"};
    static constexpr wchar_t const* directions[] = {L"AlignToFirstChild", L"AlignToChildAverage"};

public:
    static constexpr XWord TypeID = L"AlignAxis";
    static constexpr wchar_t const* Help = L"Points an axis of each selected transform at its children, which stay.";
    using XTyped::XTyped;

    TAVO_PARAMETER(8, Axis, L"The axis that is turned.", enumeration, axes)
    TAVO_PARAMETER(9, Direction, L"What it is to point at.", enumeration, directions)

    void onRun() override;
};
using XAlignAxisDef = XTypedDef<XAlignAxis>;

class XFreezeTransform : public XCommandType<XFreezeTransform> {
public:
    static constexpr XWord TypeID = L"FreezeTransform";
    static constexpr wchar_t const* Help = L"Makes the present place of the selected transforms their place of rest.";
    using XTyped::XTyped;

    TAVO_PARAMETER(8, FreezeTranslation, L"Moves the translation to the pre translation.", boolean, true)
    TAVO_PARAMETER(9, FreezeRotation, L"Moves the rotation to the pre rotation.", boolean, true)

    void onRun() override;
};
using XFreezeTransformDef = XTypedDef<XFreezeTransform>;

}  // namespace Tavo
