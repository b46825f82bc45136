// Tables that are kept while the document is exchanged below them. A document brings the ids of its file, so that a
// table still names the same object after the same document was saved and loaded again. The same rule lets a table of
// one document name whatever has that id in another one that is loaded into the scene; that is pinned here.
#include "qel/db/loader_xml.h"
#include "tests/commands/fixture.h"
#include "tests/extension/lua/script_fixture.h"

namespace Tavo {
namespace {

class KeptTables : public Scripts {
protected:
    std::string saved() { return documentBytes(scene()); }
    void load(std::string const& text) {
        db::StringInputStream stream(text);
        ASSERT_TRUE(db::LoaderXML(stream).load(*scene().SceneGraph()));
        scene().Open();
    }
};

TEST_F(KeptTables, ATableNamesTheSameObjectAfterItsDocumentIsLoadedAgain) {
    run("for i = 1, 20 do scene:createObject('Transform') end local gone = scene:createObject('Joint') "
        "kept = scene:createObject('Joint') kept:setName('hips') kept:addCustomInteger('Load', 7) load = kept.Load "
        "gone:delete()");
    load(saved());
    EXPECT_EQ("true Scene|hips true 7", eval("return kept:isValid(), kept:path(), load:isValid(), load:get()"));
}

TEST_F(KeptTables, ATableOfWhatTheDocumentDoesNotHaveIsInvalid) {
    std::string const empty = saved();
    run("kept = scene:createObject('Joint')");
    load(empty);
    EXPECT_EQ("false", eval("return kept:isValid()"));
}

TEST_F(KeptTables, ATableNamesTheObjectOfItsIdInAnotherDocument) {
    std::string const empty = saved();
    run("first = scene:createObject('Joint') first:setName('mine')");
    std::string const mine = saved();
    load(empty);
    run("scene:createObject('Joint'):setName('theirs')");
    std::string const theirs = saved();
    load(mine);
    EXPECT_EQ("mine", eval("return first:name()"));
    load(theirs);
    EXPECT_EQ("theirs", eval("return first:name()"));
}

TEST_F(KeptTables, AnEmptiedSceneGivesNoIdAgain) {
    run("kept = {} for i = 1, 50 do kept[i] = scene:createObject('Joint') end scene:clear() "
        "for i = 1, 50 do scene:createObject('Joint') end");
    EXPECT_EQ("0", eval("local count = 0 for i = 1, 50 do if kept[i]:isValid() then count = count + 1 end end "
                        "return count"));
}

TEST_F(KeptTables, ADeletedObjectsIdIsNotGivenAgainWhenTheHistoryIsForgotten) {
    run("kept = scene:createObject('Joint') kept:delete()");
    scene().SceneGraph()->ClearUndoHistory();
    run("for i = 1, 50 do scene:createObject('Joint') end");
    EXPECT_EQ("false", eval("return kept:isValid()"));
}

}  // namespace
}  // namespace Tavo
