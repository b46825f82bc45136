// What the tests of the object model share: a started document with a readable log, and short ways to edit it.
#pragma once
#include "tests/app/fixture.h"

namespace Tavo {

class ObjectModel : public StartedApplication {
protected:
    XObject make(std::wstring const& type, XObject const& parent = {}) { return scene().CreateObject(type, parent); }
    XObject named(std::wstring const& name, XObject const& parent = {}) {
        return make(XNull::TypeID, parent).SetName(name);
    }
    XSceneGraph& graph() { return *scene().SceneGraph(); }

    // What the edit changed, as one undo step. What was changed outside any block before is a step of its own.
    template<class Edit> void inBlock(Edit const& edit) {
        static std::wstring const label = L"Edit";
        scene().CommitTransient();
        XChangeBlock const block(scene(), label);
        edit();
    }
    std::vector<std::wstring> errors() {
        auto const found = log.errors();
        log.clear();
        return found;
    }
    static std::vector<std::wstring> none() { return {}; }
    static std::vector<std::wstring> namesOf(Qelutils::Vector<XObject> const& objects) {
        std::vector<std::wstring> names;
        for (XObject const& object : objects) names.push_back(object.Name());
        return names;
    }
    using Names = std::vector<std::wstring>;
};

// A document of its own, without what a scene adds. Children stay in the graph's order.
class TestDocument : public XDatabase {
public:
    TestDocument() {
        Register();
        XCoreTypes::RegisterSceneTypes(*this);
    }
    using XDatabase::clearNodes;
    using XDatabase::findMatchingDeletableObjectPaths;
    using XDatabase::findMatchingPaths;
    using XDatabase::getAttribute;
    using XDatabase::getNode;

    void reparent(XObject& object, XObject const& parent, bool, bool) override {
        if (parent.IsValid()) parent.getNode()->addChild(*object.getNode());
    }
    void unparent(XObject& object) override {
        if (object.HasParent()) object.Parent().getNode()->removeChild(*object.getNode());
    }
    bool queryIsEditable(XObject const&) const override { return editable; }
    bool queryIsCopyable(XObject const&) const override { return copyable; }

    bool editable = true, copyable = true;
};

}  // namespace Tavo
