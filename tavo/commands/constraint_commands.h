// What ties transforms to one another.
#pragma once
#include "tavo/commands/command_pattern.h"

namespace Tavo {

class XCreateKinematicsConstraint : public XCommandType<XCreateKinematicsConstraint> {
public:
    static constexpr XWord TypeID = L"CreateKinematicsConstraint";
    static constexpr wchar_t const* Help = L"Lets the first selected transform follow the mean of the others.";
    using XTyped::XTyped;

    TAVO_PARAMETER(8, LockTranslation, L"It follows their place.", boolean, true)
    TAVO_PARAMETER(9, LockRotation, L"It follows their rotation.", boolean, true)

    void onRun() override;
};
using XCreateKinematicsConstraintDef = XTypedDef<XCreateKinematicsConstraint>;

TAVO_COMMAND(XSetConstraintTarget, L"SetConstraintTarget",
             L"Lets the targets of the selected physics constraints follow the last selected transform.")
TAVO_COMMAND(XClearConstraintTarget, L"ClearConstraintTarget",
             L"Lets the targets of the selected physics constraints follow nothing.")
TAVO_COMMAND(XCreateAimConstraint, L"CreateAimConstraint",
             L"Lets the first of three selected transforms point at the second, the third being above.")
TAVO_COMMAND(XCreateSkeletalConstraint, L"CreateSkeletalConstraint",
             L"Lets every transform of the first selected hierarchy follow its namesakes in the others.")
TAVO_COMMAND(XCreatePoleVector, L"CreatePoleVector",
             L"Creates a pole to the side of a chain of two or three selected transforms.")

}  // namespace Tavo
