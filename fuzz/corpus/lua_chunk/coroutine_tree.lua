local function f() for i = 1, 10 do coroutine.resume(coroutine.create(f)) end end while true do f() end
