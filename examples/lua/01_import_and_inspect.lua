-- Imports a clip and tells what is in it: how long it takes, its skeleton, and how long the bones are.
-- tavo run examples/lua/01_import_and_inspect.lua -- examples/walk.bvh
local scene, file = app.scene(), ...
if file then -- otherwise the scene is told as it is
    app.command("ImportFile").File:set(file)
    scene:run("ImportFile")
end

local joints = scene:objectsByType("Joint")
local seconds, rate = scene:endTime() - scene:startTime(), scene:frameRate()
local frames = math.floor(seconds * rate + 0.5) + 1
print(string.format("%d joints, %d frames at %d a second: %.2f s", #joints, frames, rate, seconds))

-- The joint and all below it, each with its distance from its parent.
local function tell(joint, indent)
    print(string.format("%-30s %5.1f cm", indent .. joint:name(), 100 * joint:translation():magnitude()))
    for _, child in ipairs(joint:children("Joint")) do tell(child, indent .. "  ") end
end

scene:setTime(scene:startTime())
for _, joint in ipairs(joints) do
    local isRoot = not joint:parent():isType("Joint")
    if isRoot then tell(joint, "") end
end
