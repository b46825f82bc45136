-- Makes a path of how a joint moves, bends it around a corner and lifts it there, keeping the feel of its timing.
-- tavo run examples/lua/03_bend_a_path.lua examples/walk.bvh -o bent.tavo -- Hips 90
local scene, name, degrees = app.scene(), ...
local joint = name and scene:objects(name)[1] or scene:objectsByType("Joint")[1]
local path = joint:createTrajectory():setName(joint:name() .. "_path")

-- A key of the path has its position third, after its number and its in handle.
local keys, count = path.TranslationKeyframesArray, path.TranslationKeyframesArray:attributeCount()
local function cm(length) return math.floor(100 * length + 0.5) end
local function position(i) return keys:attribute(i):attribute(3):get() end

-- The timing: how far along the path the object is, as a fraction. The curve of an attribute of our own drives it.
local way = {0}
for i = 2, count do way[i] = way[i - 1] + position(i):distance(position(i - 1)) end
local progress, from, to = path:addCustomFloat("Progress"), scene:startTime(), scene:endTime()
for i = 1, count do progress:setKey(from + (to - from) * (i - 1) / count, way[i] / math.max(way[count], 1e-6)) end
progress:inputObject().OutputValue:connect(path.InputValue)

-- With path and timing sampled, smart editing repairs the timing when the path changes.
progress:inputObject().IsCurveSampled:set(true)
path.IsTranslationCurveSampled:set(true)
path.SmartEditing:set("retainFeel")

local function show(title)
    local arrival = progress:keyAtIndex(progress:keyCount()):x()
    print(string.format("%-6s %.2f m, arrives at %.2f s", title, path.MaxArcLength:get(), arrival))
    for i = 1, count, count // 4 do
        local at = position(i)
        print(string.format("  key %3d at (%d, %d, %d) cm", i - 1, cm(at.x), cm(at.y), cm(at.z)))
    end
end

show("before")
-- The corner is soft: 21 keys share it. The lift takes those in 0.8 m around its middle along.
local corner, middle = {}, count // 2
for key = middle - 10, middle + 10 do corner[#corner + 1] = key end
path:bendTranslationKeyframePosition(corner, 0, {0, math.rad((tonumber(degrees) or 90) / #corner), 0})
path:editTranslationKeyframePosition(middle, {range = 0.8, mode = "CurveDropoff"}, 0, 0.3, 0)
show("after")
