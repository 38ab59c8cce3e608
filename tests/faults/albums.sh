# shellcheck shell=bash
# What the tests of faults share: a place of their own, albums that are compared, and talomake; sourced by them.
# Pages tell when they were made, and are compared without that line.

# Also read by whoever sources this.
export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=1} LC_ALL=C
bin=$(cd "$1" && pwd)
place=$(mktemp -d)
mkdir "$place/home"
export HOME=$place/home
# Of a disk that is still mounted the namespace gets rid.
trap 'rm -rf "$place" 2>/dev/null' EXIT

fail() {
    echo "failed: $*" >&2
    if [ -s "$place/errors" ]; then
        echo "standard error of the last command:" >&2
        tail -n 20 "$place/errors" >&2
    fi
    exit 1
}

check() {
    "$@" || fail "this does not hold: $*"
}

skip() {
    echo "skipped: $*"
    exit 77
}

# What differs between two albums, a line each.
differences() {
    diff -raq -I '^HTML Generated: ' "$1" "$2" || [ $? -eq 1 ]
}

#   is_same <album> <album>
is_same() {
    local found
    found=$(differences "$1" "$2")
    [ -z "$found" ] || fail "these albums differ: $found"
}

# Whatever bears a final name is complete: as in one of the references. Temporaries stand outside the listed directories.
#   has_whole_files <album> <reference>...
has_whole_files() {
    local album=$1 line file reference
    shift
    [ -d "$album" ] || return 0
    while read -r line; do
        case $line in
            "Only in $1"*) continue ;; # not there yet
            "Only in $album: .taloram-"*) continue ;;
            "Only in $album/"*": .taloram-new-"*) # above a readers' copy is no directory of its own
                [[ ${name-} == "readers' copy"* ]] || fail "this is not what it should be: $line"
                continue
                ;;
            "Only in $album"*) file=$(sed 's/^Only in //; s|: |/|' <<<"$line") ;;
            "Files $1"*) file=$(sed 's/.* and //; s/ differ$//' <<<"$line") ;;
            *) fail "unexpected: $line" ;;
        esac
        for reference in "${@:2}" none; do
            [ "$reference" != none ] || fail "this is not what it should be: $line"
            if [ -z "$(differences "$reference/${file#"$album"/}" "$file" 2>&1)" ]; then
                break
            fi
        done
    done < <(differences "$1" "$album")
}

# Runs a command that has to end with a status.
#   ends_with <status> <command>...
ends_with() {
    local wanted=$1 status=0
    shift
    "$@" >"$place/output" 2>"$place/errors" || status=$?
    [ $status -eq "$wanted" ] || fail "status $status instead of $wanted: $*"
}

# Runs a command with system calls that fail; tests/support/failing_calls.cpp tells which.
#   failing <calls> <command>...
failing() {
    FAILING_CALLS=$1 LD_PRELOAD=$bin/failing_calls.so ASAN_OPTIONS=$ASAN_OPTIONS:verify_asan_link_order=0 "${@:2}"
}
