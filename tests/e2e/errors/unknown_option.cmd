# command: run --frobnicate %DIR%/wrong_type.kxp
# status: 2
# error: kxhost: The following argument was not expected: --frobnicate
