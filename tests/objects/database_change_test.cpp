#include "tests/objects/fixture.h"

namespace Tavo {
namespace {

using testing::ElementsAre;

// Asks its question at each change of the scene.
class DatabaseChange : public ObjectModel, public XSceneObserver {
protected:
    DatabaseChange() { application().AddSceneObserver(this); }
    ~DatabaseChange() override {
        if (application().IsStarted()) application().RemoveSceneObserver(this);
    }
    void OnSceneChanged(XSceneChange const& change, bool transient) override {
        ++told;
        wasTransient = transient;
        if (ask) ask(change);
    }
    // What the question gives for the change that the edit makes.
    template<class Edit, class Question> auto during(Edit const& edit, Question const& question) {
        decltype(question(std::declval<XSceneChange const&>())) answer{};
        bool first = true;
        scene().CommitTransient();
        ask = [&](XSceneChange const& change) {
            if (first) answer = question(change);
            first = false;
        };
        inBlock(edit);
        ask = nullptr;
        EXPECT_FALSE(first) << "nothing was told";
        return answer;
    }

    std::function<void(XSceneChange const&)> ask;
    int told = 0;
    bool wasTransient = false;
};

TEST_F(DatabaseChange, AnsweredFromWhatTheCommitChanged) {
    XJoint joint(make(L"Joint"));
    XObject other = make(L"Joint");
    struct Answers {
        bool object, other, attribute, otherAttribute, byNumber, byOtherNumber, byDefinition, byBase, type, kind,
            kindOf;
    };
    int const type = sg::JointNode::Def.getTypeID();
    auto const a = during([&] { joint.TranslationX().Object().Attribute(21).SetFloat(3); },
                          [&](auto const& c) {
                              return Answers{c.IsObjectChanged(joint),
                                             c.IsObjectChanged(other),
                                             c.IsAttributeChanged(joint.TranslationX()),
                                             c.IsAttributeChanged(joint.TranslationY()),
                                             c.IsAttributeChanged(type, 21),
                                             c.IsAttributeChanged(type, 22),
                                             c.IsAttributeChanged(&XJoint::Definition(), 21),
                                             c.IsAttributeChanged(&XTransform::Definition(), 21),
                                             c.IsTypeChanged(&XJoint::Definition()),
                                             c.IsTypeChanged(&XTransform::Definition()),
                                             c.IsAttributeTypeChanged(4)};
                          });
    EXPECT_TRUE(a.object && a.attribute && a.byNumber && a.byDefinition && a.byBase && a.type && a.kindOf);
    EXPECT_FALSE(a.other || a.otherAttribute || a.byOtherNumber || a.kind);
}

TEST_F(DatabaseChange, NothingIsChangedWhereThereIsNothing) {
    bool const any = during([&] { named(L"a"); },
                            [&](auto const& c) {
                                return c.IsTypeChanged(nullptr) || c.IsObjectChanged(XObject()) ||
                                       c.IsNameChanged(XObject()) || c.IsAttributeChanged(XAttribute()) ||
                                       c.IsAttributeChanged(nullptr, 0) || c.IsAttributeChanged(-1, 0) ||
                                       c.IsAttributeChanged(9999, -1) || c.IsSubAttributeInArrayChanged(9999, 0, 0);
                            });
    EXPECT_FALSE(any);
}

TEST_F(DatabaseChange, ChangesInsideCompoundsAndArraysAreFoundOneLevelDown) {
    XJoint joint(make(L"Joint"));
    XAttribute w = joint.RotationQuaternion().Attribute(3);
    EXPECT_TRUE(during([&] { w.SetFloat(0.5f); },
                       [](auto const& c) { return c.IsAttributeChanged(sg::JointNode::Def.getTypeID(), 45, 3); }));
    XObject const blend = graph().CreateNode(L"BlendShape", L"b");
    XAttribute weight = blend.Attribute(8).AddAttribute().Attribute(1);
    int const type = sg::BlendShapeNode::Def.getTypeID();
    scene().CommitTransient();
    EXPECT_TRUE(
        during([&] { weight.SetFloat(1); }, [&](auto const& c) { return c.IsSubAttributeInArrayChanged(type, 8, 1); }));
    EXPECT_FALSE(
        during([&] { weight.SetFloat(2); }, [&](auto const& c) { return c.IsSubAttributeInArrayChanged(type, 8, 0); }));
}

TEST_F(DatabaseChange, NamesAndReferencesAreTold) {
    XObject a = named(L"a"), b = named(L"b");
    XAttribute reference(a.getNode()->addDynamic(db::AttributeType::Pointer, L"reference"));
    EXPECT_TRUE(during([&] { a.SetName(L"c"); },
                       [&](auto const& c) {
                           Qelutils::Vector<XObject> renamed;
                           c.RenamedObjects(renamed);
                           return c.IsNameChanged(a) && !c.IsNameChanged(b) &&
                                  c.IsNameChanged(Qelutils::Vector<XObject>{b, a}) &&
                                  renamed == Qelutils::Vector<XObject>{a} && !c.IsAttributeReferenceChanged();
                       }));
    EXPECT_TRUE(
        during([&] { reference.SetObjectRef(b); }, [](auto const& c) { return c.IsAttributeReferenceChanged(); }));
}

TEST_F(DatabaseChange, ConnectionsAreNoObjectsButAreListed) {
    XObject a = named(L"a"), b = named(L"b");
    XAttribute x = a.AddFloatAttribute(L"x"), y = b.AddFloatAttribute(L"y");
    EXPECT_TRUE(during([&] { y.ConnectInputTo(x); },
                       [](auto const& c) {
                           Qelutils::Vector<XObject> created;
                           c.CreatedObjects(created);
                           return !c.IsObjectCreated() && c.IsConnectionCreated() && created.size() == 1;
                       }));
    EXPECT_TRUE(during([&] { y.DisconnectInput(); },
                       [](auto const& c) {
                           Qelutils::Vector<XObject> deleted;
                           c.DeletedObjects(deleted);
                           return !c.IsObjectDeleted() && c.IsConnectionDeleted() && deleted.size() == 1;
                       }));
}

TEST_F(DatabaseChange, ObjectsComeGoAndMove) {
    XObject made, parent = make(L"Transform");
    EXPECT_TRUE(during([&] { made = make(L"Joint"); },
                       [](auto const& c) { return c.IsObjectCreated() && !c.IsObjectDeleted(); }));
    EXPECT_TRUE(during([&] { made.SetParent(parent); },
                       [&](auto const& c) {
                           Qelutils::Vector<XObject> moved;
                           c.ReparentedObjects(moved);
                           return c.IsObjectReparented() && moved == Qelutils::Vector<XObject>{made};
                       }));
    int const id = made.ObjectID();
    EXPECT_TRUE(during([&] { made.Delete(); },
                       [&](auto const& c) {
                           Qelutils::Vector<XObject> gone;
                           c.DeletedObjects(gone);
                           return c.IsObjectDeleted() && gone.size() == 1 && gone[0].ObjectID() == id &&
                                  !gone[0].IsValid();
                       }));
}

TEST_F(DatabaseChange, ADeletedAttributeIsTold) {
    XAttribute f = named(L"a").AddFloatAttribute(L"f");
    EXPECT_TRUE(during([&] { f.getAttribute()->remove(); },
                       [](auto const& c) { return c.IsAttributeDeleted() && !c.IsObjectDeleted(); }));
}

TEST_F(DatabaseChange, ModifiedObjectsAreAddedOnce) {
    XObject joint = make(L"Joint"), camera = make(L"Camera"), null = named(L"null");
    EXPECT_TRUE(during(
        [&] {
            joint.Attribute(21).SetFloat(1);
            camera.Attribute(21).SetFloat(1);
            null.SetName(L"n");
        },
        [&](auto const& c) {
            Qelutils::Vector<XObject> out{joint};
            c.ModifiedObjects(&XTransform::Definition(), out);
            c.ModifiedObjects(nullptr, out);
            return out.size() == 2 && out[1] == camera;
        }));
}

TEST_F(DatabaseChange, WhatAScenesChangeMeans) {
    XJoint joint(make(L"Joint"));
    scene().CommitTransient();
    XSceneSettings settings = scene().SceneSettings();
    XAttribute now = settings.Time();
    EXPECT_TRUE(during([&] { now.SetFloat(1); },
                       [](auto const& c) {
                           return c.IsTimeChange() && c.IsSceneSettingsChange() && !c.IsSelectionChange() &&
                                  !c.IsToolChange();
                       }));
    XAttribute items = scene().Selection().Entities();
    EXPECT_TRUE(during([&] { items.AddObjectRef(joint); },
                       [](auto const& c) { return c.IsSelectionChange() && !c.IsTimeChange(); }));
    XAttribute x = joint.TranslationX();
    EXPECT_TRUE(during([&] { x.SetFloat(1); }, [](auto const& c) { return c.IsSelectedObjectChanged(); }));
    XAttribute tool = scene().MoveTool().Orientation();
    EXPECT_TRUE(during([&] { tool.SetInteger(1).SetEnumeration(1); }, [](auto const& c) { return c.IsToolChange(); }));
}

TEST_F(DatabaseChange, TransientChangesSaySo) {
    XAttribute f = named(L"a").AddFloatAttribute(L"f");
    scene().CommitTransient();
    scene().BeginChangeBlock(true);
    f.SetFloat(1);
    scene().CommitTransient();
    EXPECT_TRUE(wasTransient);
    scene().EndChangeBlock();
    inBlock([&] { f.SetFloat(2); });
    EXPECT_FALSE(wasTransient);
}

TEST_F(DatabaseChange, AnObserverMayEditAndUnregisterWhileItIsTold) {
    XAttribute f = named(L"a").AddFloatAttribute(L"f");
    scene().CommitTransient();
    told = 0;
    ask = [&](XSceneChange const&) {
        ask = nullptr;
        inBlock([&] { f.SetFloat(2); });
        application().RemoveSceneObserver(this);
    };
    inBlock([&] { f.SetFloat(1); });
    EXPECT_EQ(f.Float(), 2);
    int const before = told;
    inBlock([&] { f.SetFloat(3); });
    EXPECT_EQ(told, before);
}

}  // namespace
}  // namespace Tavo
