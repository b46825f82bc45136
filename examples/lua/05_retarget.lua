-- Lets a second figure, of another size and with other names, follow the first one, and tells how alike they move.
-- tavo run examples/lua/05_retarget.lua examples/walk.bvh -o both.tavo -- examples/figure.bvh
local scene, file = app.scene(), ...

local function figures() -- their topmost joints
    local found = {}
    for _, joint in ipairs(scene:objectsByType("Joint")) do
        if not joint:parent():isType("Joint") then found[#found + 1] = joint end
    end
    return found
end

-- What follows is all that is below a transform: each figure gets a group of its own.
local function groupOf(joint)
    if joint:parent():path() == "Scene" then scene:select(joint):run("Group") end
    return joint:parent()
end

local leader = figures()[1]
local import = app.command("ImportFile")
import.File:set(file or "examples/figure.bvh")
import.ResetTimeline:set(false) -- the time range stays that of the first clip
scene:run("ImportFile")
local follower = figures()[#figures()]
scene:select({groupOf(leader), groupOf(follower)}):run("RetargetAttach")
print(follower:name() .. " follows " .. leader:name())

-- The follower makes the same way in its own size: at all times it has come equally far, measured by its legs.
local function places(part)
    scene:setTime(scene:startTime() + part * (scene:endTime() - scene:startTime()))
    return leader:worldTranslation(), follower:worldTranslation()
end
local a, b = places(0)
for i = 1, 4 do
    local led, followed = places(i / 4)
    led, followed = led:distance(a), followed:distance(b)
    local line = "after %.2f s: %.3f m and %.3f m, that is %.3f of it"
    print(line:format(scene:time(), led, followed, followed / math.max(led, 1e-6)))
end
