[variables.P]
1 = { type = "pulse", axes = [0, 0, 0, 0, -40000, 0] }
2 = { type = "base", axes = [1200.5, 0, 800, 180, 0, 0], tool = 1, figure = 4 }
3 = { type = "user", user = 1, axes = [10, 20, 30] }
