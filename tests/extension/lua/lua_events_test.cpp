#include "tests/extension/lua/script_fixture.h"

namespace Tavo {
namespace {

class LuaEventsTest : public Scripts {
protected:
    // Notes each event of that name in the global `heard`.
    void listen(std::string const& event) {
        run("heard = heard or '' scene:addEventHandler('" + event + "', function(e) heard = heard .. '" + event +
            "(' .. tostring(e.id or '') .. ') ' end)");
    }
    std::string heard() { return eval("return heard"); }
    void forget() { run("heard = ''"); }
    void goTo(float seconds) {
        static std::wstring const label = L"Go";
        XChangeBlock const block(scene(), label);
        time().Time().SetFloat(seconds);
    }
};

TEST_F(LuaEventsTest, UnknownNamesAndWhatIsNoFunctionAreRefused) {
    EXPECT_EQ("false false true true false",
              eval("local f = function() end return scene:addEventHandler('OnNothing', f), "
                   "scene:addEventHandler('OnSceneChanged', 5), scene:addEventHandler('OnSceneChanged', f), "
                   "scene:removeEventHandler('OnSceneChanged', f), scene:removeEventHandler('onscenechanged', f)"));
}

TEST_F(LuaEventsTest, TellsOfTimeSelectionAndLoad) {
    for (char const* event : {"OnSceneLoaded", "OnSelectionChanged", "OnSceneTimeChanged"}) listen(event);
    forget();
    goTo(1);
    EXPECT_EQ("OnSceneTimeChanged() ", heard());
    forget();
    scene().Selection().SelectAll();
    EXPECT_EQ("OnSelectionChanged() ", heard());
    forget();
    scene().New();
    EXPECT_NE(std::string::npos, heard().find("OnSceneLoaded() "));
}

TEST_F(LuaEventsTest, AFailingHandlerIsLoggedAndDoesNotStopTheOthers) {
    run("scene:addEventHandler('OnSceneTimeChanged', function() error('no', 0) end)");
    listen("OnSceneTimeChanged");
    forget();
    goTo(2);
    EXPECT_EQ("OnSceneTimeChanged() ", heard());
    ASSERT_EQ(1u, log.errors().size());
    EXPECT_EQ(0u, log.errors()[0].find(L"Error running script: no"));
}

TEST_F(LuaEventsTest, AHandlerMayRemoveItselfAndAddOthers) {
    run("count, later = 0, 0 function once() count = count + 1 scene = app.scene() "
        "scene:removeEventHandler('OnSceneTimeChanged', once) "
        "scene:addEventHandler('OnSceneTimeChanged', function() later = later + 1 end) end "
        "scene:addEventHandler('OnSceneTimeChanged', once)");
    goTo(1);
    EXPECT_EQ("1 0", eval("return count, later"));
    goTo(2);
    EXPECT_EQ("1 1", eval("return count, later"));
}

TEST_F(LuaEventsTest, WhatAHandlerChangesIsAStepOfItsOwn) {
    run("scene:addEventHandler('OnSceneTimeChanged', function() app.scene():createObject('Joint') end)");
    int const before = undoCount();
    goTo(3);
    EXPECT_TRUE(scene().IsObject(L"Scene|joint"));
    EXPECT_EQ(before + 2, undoCount());
}

TEST_F(LuaEventsTest, HandlersThatCauseEachOtherWithoutEndAreStopped) {
    run("scene:addEventHandler('OnSceneChanged', function() app.scene():createObject('Joint') end)");
    goTo(1);
    ASSERT_FALSE(log.errors().empty());
    EXPECT_EQ(L"Error running script: handlers of OnSceneChanged cause each other without end", log.errors().front());
}

TEST_F(LuaEventsTest, ObjectsAreToldByTheirId) {
    for (char const* event : {"OnObjectCreated", "OnObjectDeleted", "OnObjectRenamed"}) listen(event);
    forget();
    int const id = [&] {
        static std::wstring const label = L"Edit";
        XChangeBlock const block(scene(), label);
        XObject joint = scene().CreateObject(XJoint::TypeID);
        joint.SetName(L"hips");
        int const made = joint.ObjectID();
        joint.Delete();
        return made;
    }();
    std::string const text = "(" + std::to_string(id) + ") ";
    EXPECT_EQ("OnObjectCreated" + text + "OnObjectRenamed" + text + "OnObjectDeleted" + text, heard());
}

}  // namespace
}  // namespace Tavo
