# shellcheck shell=bash
# What the tests of the launcher and the package share; sourced, never run.

work=$(mktemp -d)
started=()

cleanup() {
    local process
    for process in "${started[@]}"; do
        kill "$process" 2>/dev/null || true
    done
    rm -rf -- "$work"
}
trap cleanup EXIT

die() {
    printf 'FAILED: %s\n' "$*" >&2
    exit 1
}

# check CLAIM COMMAND...: ends the test when the command fails.
check() {
    local claim=$1
    shift
    "$@" || die "$claim"
    printf 'ok: %s\n' "$claim"
}

# eventually COMMAND...: true as soon as it succeeds, false after 20 seconds.
eventually() {
    local end=$((SECONDS + 20))
    until "$@"; do
        ((SECONDS < end)) || return 1
        sleep 0.1
    done
}

# has_five_tables CATALOGUE: the schema stands as text in the database file.
has_five_tables() {
    [[ -f $1/Data/bahnakte.dat ]] || return 1
    local tables
    tables=$(grep -aoE 'CREATE TABLE (loc_model|loc_picture|loc_seen|locomotive|settings) ' "$1/Data/bahnakte.dat" |
        sort -u | wc -l)
    ((tables == 5))
}

# pids_of PROGRAM: of the processes that run that file.
pids_of() {
    local process
    for process in /proc/[0-9]*; do
        [[ $(readlink "$process/exe" 2>/dev/null) == "$1" ]] && printf '%s\n' "${process#/proc/}"
    done
    return 0
}

# end PROGRAM: ends it and waits until it is gone.
end() {
    local process
    for process in $(pids_of "$1"); do
        kill "$process"
    done
    eventually is_gone "$1"
}

is_gone() {
    [[ -z $(pids_of "$1") ]]
}

runs() {
    [[ -n $(pids_of "$1") ]]
}
