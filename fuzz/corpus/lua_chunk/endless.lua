while true do end
