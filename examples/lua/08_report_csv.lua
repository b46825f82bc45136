-- Reports a clip as a table (CSV): of each joint how far each of its angles moves, and how fast it goes.
-- tavo run examples/lua/08_report_csv.lua examples/walk.bvh -- report.csv
local scene, file = app.scene(), ...
local joints = scene:objectsByType("Joint")
local from, rate = scene:startTime(), scene:frameRate()
local frames = math.floor((scene:endTime() - from) * rate + 0.5)

-- Degrees between the lowest and the highest key; 0 for an angle without a curve.
local function range(angle)
    local curve = angle:inputObject()
    return angle:isAnimated() and math.deg(curve.KeyframeMaxY:get() - curve.KeyframeMinY:get()) or 0
end

-- Where all joints are at each frame: frame by frame, as the whole scene goes to a time.
local way, fastest, before = {}, {}, {}
for frame = 0, frames do
    scene:setTime(from + frame / rate)
    for i, joint in ipairs(joints) do
        local place = joint:worldTranslation()
        local step = before[i] and place:distance(before[i]) or 0
        way[i], fastest[i], before[i] = (way[i] or 0) + step, math.max(fastest[i] or 0, step * rate), place
    end
end

local report = file and assert(io.open(file, "w")) or io.stdout
report:write("joint,x degrees,y degrees,z degrees,way m,fastest m/s\n")
for i, joint in ipairs(joints) do
    report:write(string.format("%s,%.1f,%.1f,%.1f,%.3f,%.2f\n", joint:name(), range(joint.RotationX),
                               range(joint.RotationY), range(joint.RotationZ), way[i], fastest[i]))
end
if file then
    report:close()
    print(#joints .. " joints, " .. frames + 1 .. " frames in " .. file)
end
