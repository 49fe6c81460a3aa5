[variables.S]
4 = "hello"
