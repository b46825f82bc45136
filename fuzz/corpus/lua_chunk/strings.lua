for k, v in pairs(string) do pcall(v, "%d%s(.-)", "%b()", 3, -1) end goto done ::done::
