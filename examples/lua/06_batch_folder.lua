-- Measures every clip of a folder: how long it takes, how far its figure goes and how fast.
--   tavo run examples/lua/06_batch_folder.lua -- examples summary.csv
local scene = app.scene()
local folder, summary = arg and arg[1] or ".", arg and arg[2] or "summary.csv"

-- The topmost joint of the figure that a clip holds.
local function root()
    for _, joint in ipairs(scene:objectsByType("Joint")) do
        if not joint:parent():isType("Joint") then return joint end
    end
end

-- Along the ground, from frame to frame.
local function wayOf(joint)
    local way, lastX, lastZ = 0, nil, nil
    local from, count = scene:startTime(), math.floor((scene:endTime() - scene:startTime()) * scene:frameRate() + 0.5)
    for frame = 0, count do
        scene:setTime(from + frame / scene:frameRate())
        local at = joint:worldTranslation()
        if lastX then way = way + math.sqrt((at.x - lastX) ^ 2 + (at.z - lastZ) ^ 2) end
        lastX, lastZ = at.x, at.z
    end
    return way
end

local rows = {"clip,seconds,metres,metres per second"}
local quoted = "'" .. folder:gsub("'", "'\\''") .. "'"
for name in assert(io.popen("ls " .. quoted)):lines() do
    if name:match("%.bvh$") then
        scene:clear()
        app.command("ImportFile").File:set(folder .. "/" .. name)
        scene:run("ImportFile")
        local seconds, metres = scene:endTime() - scene:startTime(), wayOf(root())
        rows[#rows + 1] = ("%s,%.3f,%.3f,%.3f"):format(name, seconds, metres, metres / math.max(seconds, 1e-9))
    end
end
assert(io.open(summary, "w")):write(table.concat(rows, "\n"), "\n"):close()
print(("%d clips in %s"):format(#rows - 1, summary))
