-- Keeps a log of what happens in a scene: objects made, renamed and deleted, what is selected, where the time is.
-- tavo run examples/lua/07_watch_events.lua examples/walk.bvh
local scene = app.scene()

-- Handlers are called after a step of the history was made: by then an object may be gone again.
local function nameOf(event)
    local object = scene:object(event.id)
    return object and object:name() or "what is gone"
end

local handlers = {
    OnObjectCreated = function(event) print("created " .. nameOf(event)) end,
    OnObjectRenamed = function(event) print("renamed " .. nameOf(event)) end,
    OnObjectDeleted = function() print("deleted something") end,
    OnSelectionChanged = function() print(scene:selectionCount() .. " selected") end,
    OnSceneTimeChanged = function() print(string.format("at %.2f s", scene:time())) end,
}
for event, handler in pairs(handlers) do scene:addEventHandler(event, handler) end

-- A script is one step. Here undo ends what was done so far as a step, and takes it back; redo makes it again.
print("-- a ball is made, and selected half a second on")
local ball = scene:createObject("Transform"):setName("ball")
scene:select(ball):setTime(scene:startTime() + 0.5)
scene:undo()
print("-- and again")
scene:redo()

print("-- it is deleted, and no selection is told any more")
scene:removeEventHandler("OnSelectionChanged", handlers.OnSelectionChanged)
ball:delete()
