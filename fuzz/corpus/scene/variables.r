[variables.R]
10 = 2.5
