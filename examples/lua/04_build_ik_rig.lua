-- Builds an IK rig for a leg, lets the foot make a high step, and tells how the knee bends and how near the foot comes.
-- tavo run examples/lua/04_build_ik_rig.lua examples/walk.bvh -o rigged.tavo -- LeftUpLeg LeftFoot
local scene, hipName, footName = app.scene(), ...
local start, seconds = scene:startTime(), 1

local function find(name) return scene:objects(name)[1] end -- wherever it is in the hierarchy
local hip, foot = find(hipName or "LeftUpLeg"), find(footName or "LeftFoot")
local knee = foot:parent()

-- The command makes a handle where the foot is, called after it. The hip is to stay where it is.
if not find(foot:name() .. "_IK") then
    scene:setTime(start):select({hip, foot}):run("CreateIKRig").RootLocked:set(true)
end
local handle = find(foot:name() .. "_IK")

-- Up, forward and down again: parts of the time, and parts of the leg's length from where the foot stood.
scene:setTime(start)
local place, length = handle:translation(), hip:worldTranslation():distance(foot:worldTranslation())
for _, key in ipairs({{0, 0, 0}, {0.25, 0.3, -0.1}, {0.5, 0.35, 0.1}, {1, 0.05, 0.1}}) do
    local part, up, forward = table.unpack(key)
    handle.TranslationY:setKey(start + part * seconds, place.y + up * length)
    handle.TranslationZ:setKey(start + part * seconds, place.z + forward * length)
end

for i = 0, 4 do
    scene:setTime(start + seconds * i / 4)
    local thigh = knee:worldTranslation():subtract(hip:worldTranslation()):normalize()
    local shin = foot:worldTranslation():subtract(knee:worldTranslation()):normalize()
    local bend = math.deg(math.acos(math.min(1, thigh:dotProduct(shin))))
    local miss = foot:worldTranslation():distance(handle:worldTranslation())
    print(string.format("%.2f s: the knee bends by %2.0f degrees, the foot is off by %.1f mm", scene:time(), bend,
                        1000 * miss))
end
