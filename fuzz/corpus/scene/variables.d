[variables.D]
0 = 1_000_000
