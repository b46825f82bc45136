// What script engines hear of objects: what counts as what, in which order, and when it is told.
#include "tests/app/recorder.h"
#include "tests/objects/fixture.h"
#include <map>
#include <memory>
#include <random>

namespace Tavo {
namespace {

using Lines = ObjectListener::Lines;

std::string created(XObject const& object) { return ObjectListener::line("Created", object); }
std::string deleted(XObject const& object) { return ObjectListener::line("Deleted", object); }
std::string removed(XObject const& object) { return ObjectListener::line("Removed", object); }
std::string renamed(XObject const& object) { return ObjectListener::line("Renamed", object); }
std::string reparented(XObject const& object) { return ObjectListener::line("Reparented", object); }

class ObjectEvents : public ObjectModel {
protected:
    ObjectEvents() {
        top.SetName(L"hip"), middle.SetName(L"knee"), leaf.SetName(L"foot"), other.SetName(L"other");
        settle();
    }

    // What was prepared is told and forgotten.
    void settle() {
        scene().CommitTransient();
        engine.take();
    }
    XObject joint(XObject const& parent = {}) { return make(XJoint::TypeID, parent); }
    // What one block tells.
    template<class Edit> Lines of(Edit const& edit) {
        inBlock(edit);
        return engine.take();
    }

    XObject top = joint(), middle = joint(top), leaf = joint(middle), other = joint();
    ObjectListener engine;
};

// ---- what is told ----

TEST_F(ObjectEvents, ANewObjectIsCreatedAndNothingElse) {
    XObject atTop, below;
    Lines const lines = of([&] { atTop = joint(), below = joint(top); });
    EXPECT_EQ(lines, (Lines{created(atTop), created(below)}));
}

TEST_F(ObjectEvents, AShapeIsCreatedWithItsTransform) {
    XObject shape;
    Lines const lines = of([&] { shape = make(XGrid::TypeID); });
    EXPECT_EQ(lines, (Lines{created(shape), created(shape.Parent())}));
}

TEST_F(ObjectEvents, ACopyIsCreatedWithAllBelowItParentsFirst) {
    XObject copy;
    Lines lines = of([&] { copy = top.Copy(L"other"); });
    EXPECT_EQ(lines, (Lines{created(copy), created(copy.Child(0)), created(copy.Child(0).Child(0))}));
    lines = of([&] { copy = leaf.Copy(); });
    EXPECT_EQ(lines, Lines{created(copy)});
    EXPECT_TRUE(copy.Parent() == middle);
}

TEST_F(ObjectEvents, ADeletionTellsEachObjectThatGoesParentsFirst) {
    EXPECT_EQ(of([&] { top.Delete(); }), (Lines{deleted(top), deleted(middle), deleted(leaf)}));
    EXPECT_FALSE(top.IsValid());
}

TEST_F(ObjectEvents, WhatADeletedObjectAloneWasFedByIsDeletedBehindIt) {
    XAttribute bound = leaf.Attribute(L"TranslationX");
    bound.CreateAnimation();
    XObject const curve = bound.InputObject();
    settle();
    ASSERT_TRUE(curve.IsValid());
    EXPECT_EQ(of([&] { leaf.Delete(); }), (Lines{deleted(leaf), deleted(curve)}));
}

TEST_F(ObjectEvents, AChildThatDoesNotSupportDeletionIsDeletedWithItsParentAllTheSame) {
    XObject const tool = scene().CreateNode(sg::MoveToolNode::ClassID);
    middle.getNode()->addChild(*tool.getNode());
    settle();
    EXPECT_EQ(of([&] { middle.Delete(); }), (Lines{deleted(middle), deleted(leaf), deleted(tool)}));
    EXPECT_FALSE(tool.IsValid());
}

TEST_F(ObjectEvents, APrimitiveIsDeletedOnceWithTheTransformThatGoesWithIt) {
    XObject const shape = make(XPrimitive::TypeID);
    if (!shape.IsValid()) GTEST_SKIP();
    XObject const transform = shape.Parent();
    settle();
    EXPECT_EQ(of([&] { XObject(transform).Delete(); }), (Lines{deleted(transform), deleted(shape)}));
}

TEST_F(ObjectEvents, ARemovedObjectLeavesItsChildrenToItsParent) {
    EXPECT_EQ(of([&] { middle.Remove(); }), (Lines{reparented(leaf), removed(middle)}));
    EXPECT_TRUE(leaf.Parent() == top);
}

TEST_F(ObjectEvents, ChildrenAreDeletedByNameIndexAndAltogether) {
    EXPECT_EQ(of([&] { middle.DeleteChild(0); }), Lines{deleted(leaf)});
    EXPECT_EQ(of([&] { top.DeleteChild(middle.Name()); }), Lines{deleted(middle)});
    XObject const one = joint(other), two = joint(other);
    settle();
    EXPECT_EQ(of([&] { other.DeleteChildObjects(); }), (Lines{deleted(one), deleted(two)}));
}

TEST_F(ObjectEvents, AnotherNameIsARenaming) {
    EXPECT_EQ(of([&] { leaf.SetName(L"hand"); }), Lines{renamed(leaf)});
    EXPECT_EQ(of([&] { leaf.SetName(L"hand"); }), Lines());
}

TEST_F(ObjectEvents, ANameThatIsWrittenAsAnAttributeIsARenaming) {
    EXPECT_EQ(of([&] { leaf.Attribute(0).SetString(L"hand"); }), Lines{renamed(leaf)});
    EXPECT_EQ(leaf.Name(), L"hand");
}

TEST_F(ObjectEvents, AnotherParentIsAReparenting) {
    EXPECT_EQ(of([&] { leaf.SetParent(other); }), Lines{reparented(leaf)});
    EXPECT_EQ(of([&] { leaf.Unparent(); }), Lines{reparented(leaf)});
    EXPECT_TRUE(leaf.Parent() == scene().RootObject());
}

TEST_F(ObjectEvents, ANewPlaceAmongTheSameSiblingsIsNone) {
    EXPECT_EQ(of([&] { middle.SetParent(top); }), Lines());
    EXPECT_EQ(of([&] { top.SetParent(leaf); }), Lines()) << "below itself";
}

TEST_F(ObjectEvents, ANameThatANewParentChangesIsToldBehindIt) {
    XObject const namesake = joint(other);
    XObject(namesake).SetName(L"hand");
    leaf.SetName(L"hand");
    settle();
    EXPECT_EQ(of([&] { leaf.SetParent(other); }), (Lines{reparented(leaf), renamed(leaf)}));
    EXPECT_EQ(leaf.Name(), L"hand1");
}

TEST_F(ObjectEvents, EditsByPatternTellTheSame) {
    scene().RenameObjects(L"foot", L"hand");
    EXPECT_EQ(engine.take(), Lines{renamed(leaf)});
    scene().ReparentObjects(L"hand", other.Path());
    EXPECT_EQ(engine.take(), Lines{reparented(leaf)});
    scene().UnparentObjects(std::vector<std::wstring>{L"hand"});
    EXPECT_EQ(engine.take(), Lines{reparented(leaf)});
    scene().RemoveObjects(L"hip");
    EXPECT_EQ(engine.take(), (Lines{reparented(middle), removed(top)}));
    scene().DeleteObjects(L"knee");
    EXPECT_EQ(engine.take(), Lines{deleted(middle)});
    scene().CopyObjects({L"other"});
    EXPECT_EQ(engine.take(), Lines{created(scene().Object(other.Path() + L"_copy"))});
}

TEST_F(ObjectEvents, WhatHappenedIsToldInItsOrder) {
    XObject made;
    Lines const lines = of([&] {
        leaf.SetName(L"hand");
        made = joint();
        leaf.SetParent(made);
        middle.Delete();
    });
    EXPECT_EQ(lines, (Lines{renamed(leaf), created(made), reparented(leaf), deleted(middle)}));
}

TEST_F(ObjectEvents, WhatCameAndWentInOneCommitIsToldTwice) {
    XObject made;
    Lines const lines = of([&] { (made = joint()).Delete(); });
    EXPECT_EQ(lines, (Lines{created(made), deleted(made)}));
}

// ---- when it is told ----

TEST_F(ObjectEvents, NothingIsToldBeforeTheCommitAndAllBehindTheNoticeOfIt) {
    engine.withChanges = true;
    inBlock([&] {
        engine.take();
        leaf.SetName(L"hand");
        scene().BeginChangeBlock();
        other.SetName(L"toe");
        scene().EndChangeBlock();
        EXPECT_EQ(engine.take(), Lines());
    });
    EXPECT_EQ(engine.take(), (Lines{"Changed", renamed(leaf), renamed(other)}));
}

TEST_F(ObjectEvents, WhatHappensOutsideAnyBlockIsToldWithTheNextCommit) {
    leaf.SetName(L"hand");
    EXPECT_EQ(engine.take(), Lines());
    EXPECT_EQ(of([&] { other.SetName(L"toe"); }), (Lines{renamed(leaf), renamed(other)}));
}

TEST_F(ObjectEvents, AnObjectIsCompleteWhenItsCreationIsTold) {
    std::wstring name;
    bool isBelowTop = false;
    engine.answers["Created"] = [&](XObject const& object) {
        name = object.Name();
        isBelowTop = object.Parent() == top;
    };
    joint(top);
    scene().CommitTransient();
    EXPECT_EQ(name, L"joint");
    EXPECT_TRUE(isBelowTop);
}

TEST_F(ObjectEvents, AShapeStandsBelowItsTransformWhenItsCreationIsTold) {
    std::vector<bool> havingParents;
    engine.answers["Created"] = [&](XObject const& object) { havingParents.push_back(object.HasParent()); };
    make(XGrid::TypeID);
    EXPECT_EQ(havingParents, std::vector<bool>(2, true));
}

TEST_F(ObjectEvents, ATransientCommitTellsAndTheFinalOneDoesNotRepeatIt) {
    scene().BeginChangeBlock(true);
    leaf.SetName(L"hand");
    scene().CommitTransient();
    EXPECT_EQ(engine.take(), Lines{renamed(leaf)});
    scene().EndChangeBlock();
    scene().CommitTransient();
    EXPECT_EQ(engine.take(), Lines());
}

TEST_F(ObjectEvents, ACancelledBlockDropsWhatWasNotedInItAndLeavesWhatWasPending) {
    leaf.SetName(L"hand");
    scene().BeginChangeBlock();
    joint();
    top.Delete();
    scene().CancelChangeBlock();
    scene().CommitTransient();
    EXPECT_EQ(engine.take(), Lines{renamed(leaf)});
    EXPECT_TRUE(top.IsValid());
}

TEST_F(ObjectEvents, ACancelledGestureTakesBackWhatWasPendingBeforeIt) {
    leaf.SetName(L"hand");
    scene().BeginChangeBlock(true);
    other.SetName(L"toe");
    scene().CancelChangeBlock();
    scene().CommitTransient();
    EXPECT_EQ(engine.take(), Lines());
    EXPECT_EQ(leaf.Name(), L"foot");
}

TEST_F(ObjectEvents, UndoAndRedoTellNothing) {
    inBlock([&] { leaf.SetName(L"hand"), joint(), top.Delete(); });
    engine.take();
    scene().Undo();
    EXPECT_TRUE(top.IsValid());
    scene().Redo();
    EXPECT_FALSE(top.IsValid());
    scene().CommitTransient();
    EXPECT_EQ(engine.take(), Lines());
}

TEST_F(ObjectEvents, AnUndoTellsWhatIsPendingBeforeItTakesItBack) {
    leaf.SetName(L"hand");
    scene().Undo();
    EXPECT_EQ(engine.take(), Lines{renamed(leaf)});
    EXPECT_EQ(leaf.Name(), L"foot");
}

TEST_F(ObjectEvents, ANewDocumentAndOneThatIsOpenedTellNothing) {
    scene().New();
    EXPECT_EQ(engine.take(), Lines());
    scene().Open();
    scene().CommitTransient();
    EXPECT_EQ(engine.take(), Lines());
    XObject made;
    Lines const lines = of([&] { made = joint(); });
    EXPECT_EQ(lines, Lines{created(made)});
}

TEST_F(ObjectEvents, SettingsTellNothing) {
    XObject object = application().Settings().CreateObject(XSceneSettings::TypeID);
    ASSERT_TRUE(object.IsValid());
    EXPECT_FALSE(XObjectEvents::AreNoted(object));  // nobody would ever take them
    EXPECT_TRUE(XObjectEvents::AreNoted(leaf));
    object.SetName(L"mine", true);
    object.Delete();
    application().Settings().CommitTransient();
    EXPECT_EQ(engine.take(), Lines());
}

TEST_F(ObjectEvents, EachSceneTellsItsOwn) {
    application().AddScene();
    XObject const made = scene().CreateObject(XJoint::TypeID);
    leaf.SetName(L"hand");
    scene().CommitTransient();
    EXPECT_EQ(engine.take(), Lines{created(made)});
    application().Update();
    EXPECT_EQ(engine.take(), Lines{renamed(leaf)});
}

// ---- who is told ----

TEST_F(ObjectEvents, WhileNoEngineWantsThemNothingIsNoted) {
    engine.isWanting = false;
    leaf.SetName(L"hand");
    engine.isWanting = true;
    EXPECT_EQ(of([&] { other.SetName(L"toe"); }), Lines{renamed(other)});
}

TEST_F(ObjectEvents, OneThatWantsThemIsEnoughAndAllAreToldInTheirOrder) {
    ObjectListener last(false);
    engine.isWanting = false;
    ObjectListener const wanting;
    int told = 0;
    engine.answers["Renamed"] = [&](XObject const&) { EXPECT_EQ(told++, 0); };
    last.answers["Renamed"] = [&](XObject const&) { EXPECT_EQ(told++, 1); };
    inBlock([&] { leaf.SetName(L"hand"); });
    EXPECT_EQ(told, 2);
}

TEST_F(ObjectEvents, EachEventGoesToAllEnginesBeforeTheNext) {
    Lines both;
    ObjectListener second;
    for (ObjectListener* each : {&engine, &second})
        each->answers["Renamed"] = [&both, each](XObject const&) { both.push_back(each->lines.back()); };
    inBlock([&] { leaf.SetName(L"hand"), other.SetName(L"toe"); });
    EXPECT_EQ(both, (Lines{renamed(leaf), renamed(leaf), renamed(other), renamed(other)}));
}

TEST_F(ObjectEvents, EnginesMayComeAndGoUnderWay) {
    auto second = std::make_unique<ObjectListener>();
    std::unique_ptr<ObjectListener> third;
    engine.answers["Renamed"] = [&](XObject const&) {
        second.reset();
        if (!third) third = std::make_unique<ObjectListener>();
    };
    inBlock([&] { leaf.SetName(L"hand"), other.SetName(L"toe"); });
    EXPECT_EQ(engine.take(), (Lines{renamed(leaf), renamed(other)}));
    EXPECT_EQ(third->take(), Lines{renamed(other)}) << "one that comes is told from the next event on";
}

// ---- who is told may edit ----

TEST_F(ObjectEvents, WhatAHandlerDoesInABlockIsToldByThatCommit) {
    XObject made;
    engine.answers["Renamed"] = [&](XObject const&) {
        inBlock([&] { made = joint(); });
        EXPECT_EQ(engine.lines.back(), created(made));
    };
    engine.answers["Created"] = [](XObject const& object) { EXPECT_TRUE(object.IsValid()); };
    Lines const lines = of([&] { leaf.SetName(L"hand"), other.SetParent(top); });
    EXPECT_EQ(lines, (Lines{renamed(leaf), created(made), reparented(other)}));
}

TEST_F(ObjectEvents, WhatAHandlerDoesOutsideABlockIsToldByTheNextCommit) {
    engine.answers["Renamed"] = [&](XObject const& object) {
        if (object == leaf) other.SetName(L"toe");
    };
    EXPECT_EQ(of([&] { leaf.SetName(L"hand"); }), Lines{renamed(leaf)});
    scene().CommitTransient();
    EXPECT_EQ(engine.take(), Lines{renamed(other)});
}

TEST_F(ObjectEvents, AnAnswerToTheChangeItselfIsToldBehindWhatItAnswers) {
    engine.onChanged = [&] {
        engine.onChanged = nullptr;
        inBlock([&] { other.SetName(L"toe"); });
    };
    EXPECT_EQ(of([&] { leaf.SetName(L"hand"); }), (Lines{renamed(leaf), renamed(other)}));
}

TEST_F(ObjectEvents, AHandlerMayDeleteWhatLaterEventsName) {
    bool wasValid = true;
    engine.answers["Renamed"] = [&](XObject const& object) {
        if (object == other) inBlock([&] { top.Delete(); });
        if (object == leaf) wasValid = leaf.IsValid();
    };
    EXPECT_EQ(of([&] { other.SetName(L"toe"), leaf.SetName(L"hand"); }),
              (Lines{renamed(other), deleted(top), deleted(middle), deleted(leaf), renamed(leaf)}));
    EXPECT_FALSE(wasValid);
}

TEST_F(ObjectEvents, AHandlerMayUndoWhatItIsToldOf) {
    XObject made, second;
    engine.answers["Created"] = [&](XObject const& object) {
        if (object == made) scene().Undo();
    };
    Lines const lines = of([&] { made = joint(), second = joint(); });
    EXPECT_EQ(lines, (Lines{created(made), created(second)}));
    EXPECT_FALSE(made.IsValid() || second.IsValid());
}

TEST_F(ObjectEvents, WhatAHandlerMakesGoneForGoodIsNotNamedAnyMore) {
    engine.answers["Renamed"] = [&](XObject const&) { scene().New(); };
    std::string const first = renamed(leaf);
    EXPECT_EQ(of([&] { leaf.SetName(L"hand"), other.SetName(L"toe"); }), Lines{first});
}

TEST_F(ObjectEvents, WhatIsDoneWhileACreationIsHalfDoneIsToldAsAnyOther) {
    engine.onChanged = [&] {
        engine.onChanged = nullptr;
        inBlock([&] { leaf.SetName(L"hand"); });
    };
    XObject const made = joint(top);  // commits when it is given its parent
    EXPECT_EQ(engine.take(), Lines{renamed(leaf)});
    scene().CommitTransient();
    EXPECT_EQ(engine.take(), Lines{created(made)});
}

TEST_F(ObjectEvents, AnswersWithoutEndAreStoppedWithOneError) {
    int count = 0;
    engine.answers["Created"] = [&](XObject const&) {
        for (int i = 0; i < 2; ++i, ++count) inBlock([&] { joint(), joint(); });
    };
    inBlock([&] { joint(), joint(); });
    EXPECT_EQ(int(engine.take().size()), XObjectEvents::MostNestedTellings);
    EXPECT_EQ(count, 2 * XObjectEvents::MostNestedTellings);
    EXPECT_EQ(errors(), Names{L"Scripts answer every event with another: they are not told of what follows"});
}

TEST_F(ObjectEvents, AfterAnswersWithoutEndTheNextCommitTellsAgain) {
    engine.answers["Created"] = [&](XObject const&) { inBlock([&] { joint(); }); };
    inBlock([&] { joint(); });
    engine.answers.clear();
    engine.take();
    EXPECT_EQ(of([&] { leaf.SetName(L"hand"); }), Lines{renamed(leaf)});
}

TEST_F(ObjectEvents, ChangesThatAnswerEveryChangeAreStoppedToo) {
    engine.onChanged = [&] { inBlock([&] { joint(); }); };
    inBlock([&] { joint(); });
    engine.onChanged = nullptr;
    EXPECT_FALSE(errors().empty());
    engine.take();
    EXPECT_EQ(of([&] { leaf.SetName(L"hand"); }), Lines{renamed(leaf)});
}

// ---- a listener that believes what it is told knows the scene ----

// What is where under which name, kept up by nothing but events.
class Mirror : public ObjectListener {
public:
    struct Entry {
        std::wstring name;
        int parent;
        bool operator==(Entry const&) const = default;
        friend void PrintTo(Entry const& entry, std::ostream* out) {
            *out << Qelutils::toUtf8(entry.name) << " below " << entry.parent;
        }
    };
    using Entries = std::map<int, Entry>;

    explicit Mirror(XScene& scene) : entries(of(scene)) {
        for (char const* each : {"Created", "Renamed", "Reparented"})
            answers[each] = [this](XObject const& object) { update(object); };
        for (char const* each : {"Deleted", "Removed"})
            answers[each] = [this](XObject const& object) { entries.erase(object.ObjectID()); };
    }
    static Entries of(XScene& scene) {
        Entries found;
        Qelutils::Vector<XObject> all;
        scene.Objects(all);
        for (XObject const& each : all) found.emplace(each.ObjectID(), entryOf(each));
        return found;
    }

    Entries entries;

private:
    static Entry entryOf(XObject const& object) { return {object.Name(), object.Parent().ObjectID()}; }
    void update(XObject const& object) {
        if (object.IsValid()) entries[object.ObjectID()] = entryOf(object);
    }
};

class RandomObjectEvents : public ObjectEvents, public testing::WithParamInterface<unsigned> {
protected:
    int number(int count) { return std::uniform_int_distribution<>(0, count - 1)(random); }
    XObject any() {
        Qelutils::Vector<XObject> joints;
        scene().Objects(XTransform::TypeID, SupportsObjectType, joints);
        std::erase_if(joints, [](XObject const& each) { return each.IsType(XCamera::TypeID); });
        return joints[std::size_t(number(int(joints.size())))];
    }
    void create() {
        static constexpr XWord types[] = {XJoint::TypeID, XNull::TypeID, XGrid::TypeID, XCharacter::TypeID};
        make(types[number(4)], number(2) ? any() : XObject());
    }
    void edit() {
        static wchar_t const* const names[] = {L"a", L"b", L"c"};
        switch (number(10)) {
        case 0: return any().Delete();
        case 1: return any().Remove();
        case 2: return void(any().Copy());
        case 3:
        case 4: return void(any().SetName(names[number(3)]));
        case 5: return void(any().SetParent(any()));
        case 6: return void(any().Unparent());
        case 7: return scene().RemoveObjects(names[number(3)]);
        default: return create();
        }
    }
    void editSomeInABlock() {
        scene().BeginChangeBlock();
        for (int i = number(4); i >= 0; --i) edit();
        number(4) ? scene().EndChangeBlock() : scene().CancelChangeBlock();
    }

    std::mt19937 random{GetParam()};
};

TEST_P(RandomObjectEvents, KeepAMirrorOfTheScene) {
    scene().CommitTransient();
    Mirror const mirror(scene());
    for (int i = 0; i < 100; ++i) {
        number(2) ? editSomeInABlock() : edit();
        scene().CommitTransient();
        for (auto const& [id, entry] : Mirror::of(scene())) {
            ASSERT_TRUE(mirror.entries.count(id)) << id << ", after edit " << i;
            ASSERT_EQ(mirror.entries.at(id), entry) << id << ", after edit " << i;
        }
        ASSERT_EQ(mirror.entries.size(), Mirror::of(scene()).size()) << "after edit " << i;
    }
}
INSTANTIATE_TEST_SUITE_P(Seeds, RandomObjectEvents, testing::Range(1u, 9u));

}  // namespace
}  // namespace Tavo
