# check.sh - holds what is against what should be. Source it, and close with `finish`.
# shellcheck shell=bash
failures=0

# check WHAT EXPECTED ACTUAL
check() {
    if [ "$2" != "$3" ]; then
        failures=$((failures + 1))
        printf 'FAILED: %s\n' "$1"
        diff <(printf '%s\n' "$2") <(printf '%s\n' "$3") | sed 's/^</expected:/; s/^>/actual:  /'
    fi
}

# The test's status.
finish() { [ "$failures" -eq 0 ]; }
