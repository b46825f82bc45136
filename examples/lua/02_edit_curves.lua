-- Edits the curves of a walk: the left leg steps later, the right arm swings wider, and the whole of it loops.
local delay, wider = 0.1, 1.5 -- seconds, times
local always = math.huge
local joints = app.scene():objectsByType("Joint")

-- The animated channels of the joints whose name fits the pattern.
local function channels(pattern)
    local found = {}
    for _, joint in ipairs(joints) do
        for _, kind in ipairs({"TranslationX", "TranslationY", "TranslationZ", "RotationX", "RotationY", "RotationZ"}) do
            local fits = joint:name():find(pattern) and joint[kind]:isAnimated()
            if fits then found[#found + 1] = joint[kind] end
        end
    end
    return found
end

local leg = channels("^Left.*Leg$")
for _, channel in ipairs(leg) do channel:moveKeys(-always, always, delay, 0) end
print(string.format("left leg: %d channels start %.2f s later", #leg, leg[1]:keyAtIndex(1):x()))

for _, swing in ipairs(channels("^Right.*Arm$")) do
    local curve = swing:inputObject()
    local low, high = curve.KeyframeMinY:get(), curve.KeyframeMaxY:get() -- radians
    swing:scaleKeys(-always, always, 1, wider, 0, (low + high) / 2)
    local after = curve.KeyframeMaxY:get() - curve.KeyframeMinY:get()
    print(string.format("%s of %s: %.1f instead of %.1f degrees", swing:name(), swing:object():name(), math.deg(after),
                        math.deg(high - low)))
end

for _, channel in ipairs(channels("")) do
    local mode = channel:units() == "linear" and "offsetCyclic" or "cyclic" -- places go on where the last round ended
    channel:setPreExtrapolation(mode):setPostExtrapolation(mode)
end
print(#channels("") .. " channels loop")
