-- Makes a path of how an object moves, bends it around a corner and lifts it there, keeping the feel of its timing.
-- tavo run examples/lua/03_bend_a_path.lua examples/walk.bvh -o out.tavo
-- Arguments: the object, "Hips" if there is none, and the corner in degrees, 90 if there is none.
local name, degrees = arg and arg[1] or "Hips", arg and tonumber(arg[2]) or 90
local scene = app.scene()
local path = scene:object("Scene|" .. name):createTrajectory():setName(name .. "_path")

-- A key of the path has its position third, after its number and its in handle.
local keys, count = path.TranslationKeyframesArray, path.TranslationKeyframesArray:attributeCount()
local function cm(length) return math.floor(100 * length + 0.5) end
local function position(i) return keys:attribute(i):attribute(3):get() end

-- The timing: how far along the path the object is, as a fraction. The curve of an attribute of our own drives it.
local way = { 0 }
for i = 2, count do way[i] = way[i - 1] + position(i):distance(position(i - 1)) end
local progress, from, to = path:addCustomFloat("Progress"), scene:startTime(), scene:endTime()
for i = 1, count do progress:setKey(from + (to - from) * (i - 1) / count, way[i] / way[count]) end
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
path:bendTranslationKeyframePosition(corner, 0, { 0, math.rad(degrees / #corner), 0 })
path:editTranslationKeyframePosition(middle, { range = 0.8, mode = "CurveDropoff" }, 0, 0.3, 0)
show("after")
