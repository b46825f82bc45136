-- Draws a figure from its side as an SVG picture: a stick figure every few frames, the later the darker.
-- tavo run examples/lua/09_write_svg.lua examples/walk.bvh -- walk.svg 15
local scene, file, every = app.scene(), ...
local step = (tonumber(every) or 15) / scene:frameRate() -- seconds
local pixels, margin = 200, 20 -- of a metre, and around the picture

-- Ahead is right, and up is up.
local low, high = {x = math.huge, y = math.huge}, {x = -math.huge, y = -math.huge}
local function place(joint)
    local at = joint:worldTranslation()
    local x, y = at.z * pixels, -at.y * pixels
    low.x, low.y, high.x, high.y = math.min(low.x, x), math.min(low.y, y), math.max(high.x, x), math.max(high.y, y)
    return string.format("%.1f %.1f", x, y)
end

-- A line from each joint to its parent.
local figures = {}
for time = scene:startTime(), scene:endTime(), step do
    scene:setTime(time)
    local bones = {}
    for _, joint in ipairs(scene:objectsByType("Joint")) do
        local parent = joint:parent()
        if parent:isType("Joint") then bones[#bones + 1] = "M" .. place(parent) .. "L" .. place(joint) end
    end
    figures[#figures + 1] = table.concat(bones)
end

local picture = assert(io.open(file or "figure.svg", "w"))
local width, height = high.x - low.x + 2 * margin, high.y - low.y + 2 * margin
picture:write(string.format('<svg xmlns="http://www.w3.org/2000/svg" viewBox="%.1f %.1f %.1f %.1f">\n', low.x - margin,
                            low.y - margin, width, height))
for i, bones in ipairs(figures) do
    local stroke = string.format('stroke="black" stroke-opacity="%.2f" stroke-width="2"', i / #figures)
    picture:write('<path d="', bones, '" fill="none" ', stroke, "/>\n")
end
picture:write("</svg>\n"):close()
print(#figures .. " figures, " .. math.floor(width) .. " by " .. math.floor(height) .. " pixels")
