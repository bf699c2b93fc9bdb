# A folder is no patch: a usage error, exit status 2.
# command: run %DIR%
# status: 2
# error: kxhost: .*errors is a folder; kxhost run takes a patch file \(.kxp\)
