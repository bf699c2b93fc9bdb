# kxhost list on the test bundle: T_Ghost is described but the bundle lacks it.
# command: list
# error: T_Ghost +MISSING
# error: T_AddOne +yes +- +Add One
