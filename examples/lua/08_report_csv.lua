-- Reports a clip as a table (CSV): of each joint its keys, how far each of its angles moves, and how fast the feet are.
local scene = app.scene()
local steps = 100

local joints = scene:objectsByType("Joint")
local first, last = math.huge, -math.huge -- seconds
for _, joint in ipairs(joints) do
    local curve = joint.RotationX:inputObject()
    if joint.RotationX:isAnimated() then
        first, last = math.min(first, curve.KeyframeMinX:get()), math.max(last, curve.KeyframeMaxX:get())
    end
end

-- Degrees; empty for an angle without a curve.
local function range(angle)
    if not angle:isAnimated() then return "" end
    local curve = angle:inputObject()
    return string.format("%.1f", math.deg(curve.KeyframeMaxY:get() - curve.KeyframeMinY:get()))
end

-- The mean and the greatest one, in metres a second.
local function speeds(joint)
    local way, most, before = 0, 0, nil
    for i = 0, steps do
        scene:setTime(first + (last - first) * i / steps)
        local place = joint:worldTranslation()
        local step = before and place:distance(before) or 0
        way, most, before = way + step, math.max(most, step), place
    end
    return string.format("%.2f,%.2f", way / (last - first), most * steps / (last - first))
end

local now = scene:time()
print("joint,keys,x,y,z,mean speed,top speed")
for _, joint in ipairs(joints) do
    local foot = joint:name():find("Foot$") and last > first
    print(table.concat({joint:name(), joint.RotationX:keyCount(), range(joint.RotationX), range(joint.RotationY),
                        range(joint.RotationZ), foot and speeds(joint) or ","}, ","))
end
scene:setTime(now)
