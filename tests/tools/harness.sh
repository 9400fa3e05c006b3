# What the command-line test scripts share: their arguments, a fresh work folder, failures
# counted, and the case run by name.
#   source harness.sh STREAMGEN EXAMPLES_DIR WORK_DIR CASE
# Exit 0 pass, 1 fail, 77 skipped.
set -uo pipefail
SG=$1
EX=$2
WORK=$3
CASE=$4
rm -rf "$WORK" && mkdir -p "$WORK" || exit 1
cd "$WORK" || exit 1

failures=0
fail() {
    echo "FAIL: $*" >&2
    failures=$((failures + 1))
}

# has FILE TEXT: FILE contains TEXT (fixed string).
has() {
    grep -qF -- "$2" "$1" || fail "$1 lacks '$2' ($(head -c 300 "$1"))"
}

# Runs case_$CASE and ends the script with its verdict.
finish_case() {
    "case_$CASE"
    if [ "$failures" -ne 0 ]; then
        echo "$CASE: $failures failure(s)" >&2
        exit 1
    fi
    echo "$CASE: ok"
    exit 0
}
