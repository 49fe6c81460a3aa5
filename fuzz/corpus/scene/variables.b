[variables.B]
0 = 12
5 = 255
