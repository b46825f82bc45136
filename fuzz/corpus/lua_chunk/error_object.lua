error(setmetatable({}, {__tostring = function(t) error(t) end}))
