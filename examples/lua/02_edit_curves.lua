-- Edits the curves of a walk: the left leg steps later, the right arm swings wider, and all of it goes on for ever.
-- tavo run examples/lua/02_edit_curves.lua examples/walk.bvh -o loop.tavo
local delay, wider = 0.1, 1.5 -- seconds, times
local always = math.huge
local scene = app.scene()

-- The animated channels of the joints whose name fits a pattern.
local function channels(pattern)
    local found = {}
    for _, joint in ipairs(scene:objects(pattern)) do
        for _, attribute in ipairs(joint:isType("Joint") and joint:attributes() or {}) do
            if attribute:isAnimated() then found[#found + 1] = attribute end
        end
    end
    return found
end

for _, channel in ipairs(channels("Left*Leg")) do channel:moveKeys(-always, always, delay, 0) end

for _, swing in ipairs(channels("Right*Arm")) do
    local curve = swing:inputObject()
    local low, high = curve.KeyframeMinY:get(), curve.KeyframeMaxY:get() -- radians
    swing:scaleKeys(-always, always, 1, wider, 0, (low + high) / 2)
    local range = curve.KeyframeMaxY:get() - curve.KeyframeMinY:get()
    print(string.format("%s: %.1f instead of %.1f degrees", swing:path(), math.deg(range), math.deg(high - low)))
end

-- Angles begin anew; places go on where the last round ended.
for _, channel in ipairs(channels("*")) do
    local mode = channel:units() == "linear" and "offsetCyclic" or "cyclic"
    channel:setPreExtrapolation(mode):setPostExtrapolation(mode)
end
print(#channels("Left*Leg") .. " channels start later, " .. #channels("*") .. " go on")
