local x <close> = setmetatable({}, {__close = function() error("late") end}) error({})
