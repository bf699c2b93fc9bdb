# A count out of range: one line and exit status 2, not the argument library's own status and bound.
# command: validate --rounds -1
# status: 2
# error: kxhost: --rounds: takes a whole number from 0 to 1000000, not -1 \(kxhost --help lists the commands\)
# no: [0-9][0-9][0-9][0-9][0-9][0-9][0-9][0-9][0-9][0-9]
