-- Measures clips: how long each takes, how far its figure goes, and how fast.
-- tavo run examples/lua/06_batch_folder.lua -- examples/*.bvh
local scene = app.scene()

-- How far a joint comes along the ground, in metres, from frame to frame.
local function wayOf(joint)
    local way, before = 0, nil
    local frames = math.floor((scene:endTime() - scene:startTime()) * scene:frameRate() + 0.5)
    for frame = 0, frames do
        scene:setTime(scene:startTime() + frame / scene:frameRate())
        local place = joint:worldTranslation()
        place.y = 0
        way, before = way + place:distance(before or place), place
    end
    return way
end

print(string.format("%-24s %6s %7s %7s %5s", "clip", "joints", "s", "m", "m/s"))
for _, file in ipairs({...}) do
    scene:clear()
    app.command("ImportFile").File:set(file)
    scene:run("ImportFile")
    local joints = scene:objectsByType("Joint")
    if #joints == 0 then
        print(file .. " has no figure")
    else
        local seconds, way = scene:endTime() - scene:startTime(), wayOf(joints[1])
        local name = file:match("[^/]*$")
        print(string.format("%-24s %6d %7.2f %7.2f %5.2f", name, #joints, seconds, way, way / math.max(seconds, 1e-9)))
    end
end
