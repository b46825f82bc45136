// Scripts of random calls on tables that are kept much too long: over deleting, undoing, emptying the scene, closing
// it. Whatever a kept table once named, it names that or nothing. Each object bears a number of its own as a custom
// attribute, by which a wrong one shows.
#include "tests/extension/lua/script_fixture.h"
#include <random>

namespace Tavo {
namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr int stepsInAll = 100000;
#else
constexpr int stepsInAll = 1000000;
#endif
constexpr int stepsInAScript = 200;
constexpr int mostObjects = 120;  // of a scene, before it is emptied

// Of Lua, `check` and `step` are all that is called from here.
char const* const prelude = R"lua(
local random = math.random
kept, size, serial = {}, 96, 0
keptAttributes, keptKeys = {}, {}
living, clears = {}, {}          -- scenes by their ids: whether they are open, and how often they were emptied
reached, wrong = {}, nil         -- how often each kind of step did something; the first thing that went wrong
revived, invalid = 0, 0          -- kept tables that were found so
local names = {'hips', 'spine', 'leg', 'a|b', '', 'hips1', 'Scene', 'ä'}
local types = {'Joint', 'Transform', 'Primitive', 'Trajectory', 'Joint', 'Transform', 'NoSuchType'}

local function fail(what, e)
    wrong = wrong or what .. ' at step ' .. total .. (e and ', serial ' .. e.serial or '')
    error(wrong)
end

local function scene() return scenes[random(#scenes)] end
local function any() return kept[random(size)] end

local function keep(object, number)
    kept[random(size)] = {table = object, serial = number, scene = object.__sceneID, clears = clears[object.__sceneID]}
end

local function isItself(e, t)
    if e.table.__sceneID ~= e.scene then fail('another scene', e) end
    if not living[e.scene] then fail('valid in a closed scene', e) end
    if clears[e.scene] ~= e.clears then fail('valid over a clear', e) end
    if t:get() ~= e.serial then fail('another object: ' .. tostring(t:get()), e) end
end

function check(e)
    if not e then return false end
    local object = e.table
    if not object:isValid() then
        e.wasInvalid, invalid = true, invalid + 1
        if object:name() ~= '' or object:parent() or #object:children() ~= 0 then fail('the dead answer', e) end
        return false
    end
    if e.wasInvalid then e.wasInvalid, revived = false, revived + 1 end
    local kept, fresh = object.Serial, object:attribute('Serial')
    if not kept or not fresh:isValid() then fail('no serial', e) end
    if not (kept == fresh) then fail('an attribute of its own', e) end
    isItself(e, kept)
    return true
end

local function checkAttribute(e)
    if e and e.table:isValid() then isItself(e, e.table) end
end

-- ---- steps ----

local steps = {}

function steps.create()
    local home, parent = scene(), random(3) == 1 and any()
    if parent and check(parent) then
        home = parent.table
        for _, open in ipairs(scenes) do if open.__sceneID == parent.scene then open:beginUndo() end end
    else
        home:beginUndo()
    end
    local object = home:createObject(types[random(#types)])
    if object then
        serial = serial + 1
        object:addCustomInteger('Serial', serial)
        object:addCustomFloat('Load', 0)
        keep(object, serial)
    end
    for _, open in ipairs(scenes) do if open.__sceneID == home.__sceneID then open:endUndo('Create') end end
end
function steps.delete()
    local e = any()
    if not check(e) then return end
    e.table:delete()
    if e.table:isValid() then fail('deleted, but valid', e) end
end
function steps.remove()
    local e = any()
    if check(e) then e.table:remove() end
end
function steps.deleteChildren()
    local e = any()
    if check(e) and random(4) == 1 then e.table:deleteChildren() end
end
function steps.rename()
    local e = any()
    if e then e.table:setName(names[random(#names)]) end
end
function steps.reparent()
    local a, b = any(), any()
    if a and b then a.table:setParent(b.table, random(2) == 1) end
    check(a)
    check(b)
end
function steps.unparent()
    local e = any()
    if e then e.table:unparent() end
end
function steps.undo()
    for _ = 1, random(3) do scene():undo() end
    check(any())
end
function steps.redo()
    for _ = 1, random(3) do scene():redo() end
    check(any())
end
function steps.save()
    local e = any()
    if not check(e) then return end
    local found = {e.table:parent(), e.table:child(1), scene():object(e.table:id())}
    for _, child in ipairs(e.table:children()) do found[#found + 1] = child end
    for _, object in pairs(found) do
        local number = object:attribute('Serial')
        if number:isValid() then keep(object, number:get()) end
    end
end
function steps.saveAttribute()
    local e = any()
    if not check(e) then return end
    keptAttributes[random(size)] = {table = e.table:attribute('Serial'), serial = e.serial, scene = e.scene,
                                    clears = e.clears}
end
function steps.write()
    local e = any()
    if not e then return end
    local load, x = e.table.Load, e.table.TranslationX
    if load then load:set(random()) load:setSize(random(4)) end
    if x then
        x:set(random(10))
        x:setKey(random(5), random())
        keptKeys[random(size)] = x:keyAtIndex(random(5))
    end
end
function steps.key()
    local key = keptKeys[random(size)]
    if not key then return end
    key:setY(random())
    key:setX(random(100))
    local _ = key:index(), key:x(), tostring(key)
    if random(10) == 1 then key:delete() end
end
function steps.read()
    local e = any()
    if not e then return end
    local t = e.table
    local _ = t:name(), t:path(), t:type(), #t:attributes(), #t:descendants(), tostring(t), t:hasParent(), t:types()
    if random(20) == 1 then for name, value in pairs(t) do local _ = tostring(value) end end
    local other = any()
    if other and check(e) and check(other) and (t == other.table) ~= (e.serial == other.serial) then
        fail('== does not tell objects apart', e)
    end
end
function steps.select()
    local e = any()
    if e then e.table:selectAppend() e.table:deselect() end
end

-- ---- what a script is made of ----

local order = {}
for name, weight in pairs{create = 14, delete = 5, remove = 3, deleteChildren = 2, rename = 4, reparent = 8,
                          unparent = 2, undo = 6, redo = 5, save = 6, saveAttribute = 2, write = 4, key = 2, read = 6,
                          select = 2} do
    for _ = 1, weight do order[#order + 1] = name end
end
table.sort(order)

function step()
    total = total + 1
    local name = order[random(#order)]
    local inBlock = random(8) == 1 and scene()
    if inBlock then inBlock:beginUndo() end
    steps[name]()
    if inBlock then inBlock:endUndo('Block') end
    reached[name] = (reached[name] or 0) + 1
    check(any())
    checkAttribute(keptAttributes[random(size)])
    if random(4000) == 1 then
        local emptied = scene()
        emptied:clear()  -- handlers run in it
        clears[emptied.__sceneID] = clears[emptied.__sceneID] + 1
    end
end
total = 0
)lua";

class RandomScripts : public Scripts {
protected:
    RandomScripts() { run(prelude); }

    // Tells Lua which scenes are open; at once, since handlers may run in between.
    void giveScenes() {
        run("open = {}");
        for (unsigned i = 0; i < application().SceneCount(); ++i) {
            lua().PushScene(application().GetScene(int(i)));
            lua().State()->SetGlobal("one", lua().State()->Stack(-1));
            lua().State()->Pop();
            run("open[#open + 1] = one clears[one.__sceneID] = clears[one.__sceneID] or 0");
        }
        run("scenes, living = open, {} for _, one in ipairs(open) do living[one.__sceneID] = true end "
            "assert(not wrong, wrong)");
    }
    void script(int count) { run("for _ = 1, " + std::to_string(count) + " do step() end"); }
    void noteClear(XScene& emptied) {
        std::string const id = "[" + std::to_string(emptied.DatabaseID()) + "]";
        emptied.New();
        run("clears" + id + " = clears" + id + " + 1");
    }
    void keepScenesSmall() {
        for (unsigned i = 0; i < application().SceneCount(); ++i) {
            Qelutils::Vector<XObject> all;
            application().GetScene(int(i)).Objects(L"", all);
            if (int(all.size()) > mostObjects) noteClear(application().GetScene(int(i)));
        }
    }
    // Between scripts: the history goes on, and scenes come and go.
    void betweenScripts(std::mt19937& random) {
        XScene& any = application().GetScene(int(random() % application().SceneCount()));
        switch (random() % 12) {
        case 0:
        case 1: any.Undo(); break;
        case 2: any.Redo(); break;
        case 3: application().SetActiveScene(int(random() % application().SceneCount())); break;
        case 4:
            if (application().SceneCount() < 4) application().AddScene(), application().ActiveScene().New();
            break;
        case 5: application().RemoveScene(int(random() % application().SceneCount())); break;
        case 6: any.CommitTransient(); break;
        default: break;
        }
        giveScenes();
        run("for i = 1, size do check(kept[i]) end");
    }
};

TEST_F(RandomScripts, AKeptTableNeverNamesAnotherObject) {
    unsigned const seed = 20260917;
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    run("math.randomseed(" + std::to_string(seed) +
        ") app.scene():addEventHandler('OnSceneChanged', function() "
        "check(kept[math.random(size)]) end)");
    for (int done = 0; done < stepsInAll && !HasFailure(); done += stepsInAScript) {
        SCOPED_TRACE("step " + std::to_string(done));
        giveScenes();
        script(stepsInAScript);
        betweenScripts(random);
        keepScenesSmall();
        EXPECT_TRUE(log.texts(Qelutils::BasicLogger::Warning).empty());
        log.clear();
    }
    EXPECT_EQ("nil true true", eval("return wrong, revived > total / 1000, invalid > total / 1000"));
}

}  // namespace
}  // namespace Tavo
