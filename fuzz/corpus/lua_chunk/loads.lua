load(string.dump(function() end), "n", "b") load("return " .. ("("):rep(500))
