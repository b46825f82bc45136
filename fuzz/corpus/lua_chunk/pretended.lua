local t = setmetatable({}, {__len = function() return 1 << 62 end, __index = rawlen})
pcall(table.insert, t, 1, 1) pcall(table.sort, t) table.move(t, 1, 1 << 62, 2)
