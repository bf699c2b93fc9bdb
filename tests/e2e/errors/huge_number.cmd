# kxhost list over a description holding a number beyond double range: an error naming the file, exit 2.
# command: list
# args: --descriptions %DIR%/huge_number
# status: 2
# error: huge_number/huge.json: malformed JSON: number overflow parsing '3e666'
