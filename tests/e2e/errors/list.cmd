# kxhost list on the test bundle: T_Ghost is described but the bundle lacks it. Each identifier shows its
# category and summary; one whose description gives neither shows "-" and its name.
# command: list
# error: T_Ghost +MISSING
# error: T_AddOne +yes +- +Test logic +Sends its input plus one\.
# error: T_Thrower +yes +- +- +Thrower
