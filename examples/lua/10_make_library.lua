-- Makes a library of a clip's poses, a Lua file; then brings the first one back, so that the clip ends as it began.
-- tavo run examples/lua/10_make_library.lua examples/walk.bvh -o loop.tavo -- poses.lua 4
local scene, file, count = app.scene(), ...
local angles = {"RotationX", "RotationY", "RotationZ"}
local joints = scene:objectsByType("Joint")
file, count = file or "poses.lua", tonumber(count) or 4

-- An entry for each pose, with the angles of each joint in radians.
local library = assert(io.open(file, "w"))
library:write("return {\n")
for i = 1, count do
    scene:setTime(scene:startTime() + (scene:endTime() - scene:startTime()) * (i - 1) / count)
    library:write("    {\n")
    for _, joint in ipairs(joints) do
        local turn = joint:rotation()
        library:write(string.format("        [%q] = {%.6f, %.6f, %.6f},\n", joint:name(), turn.x, turn.y, turn.z))
    end
    library:write("    },\n")
end
library:write("}\n"):close()

-- Where the joints are looked up by name, a pose fits any figure with such names.
local poses = dofile(file)
local time, most = scene:endTime(), 0
scene:setTime(time)
for name, turn in pairs(poses[1]) do
    local joint = scene:objects(name)[1]
    for axis, angle in ipairs(angles) do
        most = math.max(most, math.abs(joint[angle]:get() - turn[axis]))
        joint[angle]:setKey(time, turn[axis])
    end
end
local line = "%d poses of %d joints in %s; at the end joints turn by %.1f degrees at most"
print(line:format(#poses, #joints, file, math.deg(most)))
