-- Draws a figure from its side as an SVG picture: a stick figure every few frames, fresh ones darker.
--   tavo run examples/lua/09_write_svg.lua examples/walk.bvh --set every=10 -- walk.svg
local scene = app.scene()
local path = arg and arg[1] or "figure.svg"
local step = (every or 15) / scene:frameRate()
local margin, pixels = 0.1, 200 -- metres, and how many of the picture one metre takes

-- Where a joint is in the picture: along the walk, and down from above.
local function place(joint)
    local at = joint:worldTranslation()
    return at.z * pixels, -at.y * pixels
end

local left, right, top, bottom = math.huge, -math.huge, math.huge, -math.huge
local figures = {}
for time = scene:startTime(), scene:endTime(), step do
    scene:setTime(time)
    local bones = {}
    for _, joint in ipairs(scene:objectsByType("Joint")) do
        local x, y = place(joint)
        left, right = math.min(left, x), math.max(right, x)
        top, bottom = math.min(top, y), math.max(bottom, y)
        if joint:parent():isType("Joint") then
            bones[#bones + 1] = ("M%.1f %.1fL%.1f %.1f"):format(x, y, place(joint:parent()))
        end
    end
    figures[#figures + 1] = table.concat(bones)
end

local file = assert(io.open(path, "w"))
local edge = margin * pixels
file:write(('<svg xmlns="http://www.w3.org/2000/svg" viewBox="%.0f %.0f %.0f %.0f">\n'):format(
    left - edge, top - edge, right - left + 2 * edge, bottom - top + 2 * edge))
for i, bones in ipairs(figures) do
    local shade = math.floor(200 * (1 - i / #figures))
    file:write(('<path d="%s" stroke="rgb(%d,%d,%d)" stroke-width="2" fill="none"/>\n'):format(bones, shade, shade, shade))
end
file:write("</svg>\n"):close()
print(("%d figures in %s"):format(#figures, path))
