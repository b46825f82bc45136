local t = {} for w in ("a b c"):gmatch("%a") do t[#t + 1] = w end print(table.concat(t, ","), utf8.char(8364), os.date("%Y"), math.tointeger(3.0))
