// A scene with some objects, short words for its selection, and what the notices said.
#pragma once
#include "tests/app/fixture.h"
#include "tests/app/recorder.h"

namespace Tavo {

using Objects = std::vector<XObject>;
using Paths = std::vector<std::wstring>;

class SelectionFixture : public StartedApplication {
protected:
    static XSelection selection() { return scene().Selection(); }
    static Objects selected() {
        Qelutils::Vector<XObject> out;
        return selection().Objects(out);
    }
    XObject joint(XObject const& parent = {}) { return scene().CreateObject(XJoint::TypeID, parent); }
    // Without the scene's rule that a tool keeps its place.
    XObject toolBelow(XObject const& parent) {
        XObject tool = scene().CreateNode(sg::MoveToolNode::ClassID);
        parent.getNode()->addChild(*tool.getNode());
        return tool;
    }
    // A mode that the controllers would have to accept: stored behind the class's back.
    static void setStoredMode(int mode) { selection().SubEntityType().SetInteger(mode); }
    void inOneStep(std::function<void()> const& edit) {
        scene().BeginChangeBlock();
        edit();
        scene().EndChangeBlock();
    }

    XObject a = joint(), b = joint(a), c = scene().CreateObject(XGrid::TypeID);
};

}  // namespace Tavo
