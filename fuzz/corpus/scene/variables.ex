[variables.EX]
0 = { axes = [1000, -2000] }
