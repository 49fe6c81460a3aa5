[variables.I]
3 = -1200
