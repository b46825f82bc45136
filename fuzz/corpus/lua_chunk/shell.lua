#!shell
print(1.5 // 0.5, 1 << 62, "\u{20AC}", [[long]])
