// The scripts in examples/lua, each on the clip that it is told for.
#include "tests/plugins/bvh/scene.h"

#include <sstream>

using namespace bvh;
using namespace Tavo;

namespace {

class LuaPathExample : public SceneTest {
protected:
    XLuaScript& lua() { return *XApplication::Instance().LuaScript(); }
    // What the script prints on the walk.
    std::vector<std::string> printed(std::string const& file) {
        import(mustRead(fileText(sourceFolder() / "examples/walk.bvh")));
        EXPECT_EQ(0, lua().RunScript(L"printed = '' function print(text) printed = printed .. text .. '\\n' end"));
        EXPECT_EQ(0, lua().RunScriptFromFile((sourceFolder() / "examples/lua" / file).wstring())) << lua().LastError();
        std::istringstream text(Qelutils::toUtf8(lua().State()->GetGlobal("printed").ToString()));
        std::vector<std::string> lines;
        for (std::string line; std::getline(text, line);) lines.push_back(line);
        return lines;
    }
    int pathCount() {
        Qelutils::Vector<XObject> paths;
        scene().Objects(XTrajectory::TypeID, IsObjectType, paths);
        return int(paths.size());
    }
};

TEST_F(LuaPathExample, APathIsBentAndItsFeelStays) {
    EXPECT_EQ((std::vector<std::string>{
                  "before 5.18 m, arrives at 3.95 s",
                  "  key   0 at (0, 0, 0) cm",
                  "  key  59 at (0, 0, 128) cm",
                  "  key 118 at (0, 1, 256) cm",
                  "  key 177 at (0, 1, 383) cm",
                  "  key 236 at (-1, 1, 511) cm",
                  "after  5.31 m, arrives at 4.05 s",
                  "  key   0 at (0, 0, 0) cm",
                  "  key  59 at (0, 0, 128) cm",
                  "  key 118 at (8, 31, 253) cm",
                  "  key 177 at (134, 1, 262) cm",
                  "  key 236 at (262, 1, 262) cm",
              }),
              printed("03_bend_a_path.lua"));
    EXPECT_TRUE(log.errors.empty());
    EXPECT_EQ(1, pathCount());
    scene().Undo();
    EXPECT_EQ(0, pathCount());
}

}  // namespace
