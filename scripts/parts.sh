# shellcheck shell=bash
# Parts of a test that run one after the other or side by side, in lanes. Sourced after common.sh.
#
# A part is a function. Its output goes to a file in build/parts, and is shown when it ends. Of a part that fails the
# others go on, and `end_parts` fails in the end.
# shellcheck disable=SC2034 # `passed` is for the scripts that source this file

parts=build/parts
passed=true # whether the last part of this lane did
lanes=()

# To be called before the first part. Every lane gets a process group of its own, so that whatever ends the script ends
# all that it has started.
begin_parts() {
    rm -rf "$parts"
    mkdir -p "$parts"
    : >"$parts/failed"
    set -m
    trap stop_lanes EXIT
    trap 'exit 130' INT
    trap 'exit 143' TERM
}

stop_lanes() {
    local group
    for group in $(jobs -p); do
        kill -TERM -- "-$group" 2>/dev/null || true
    done
}

# Runs a part: its name, and the function with its arguments. Never call it in a condition: that would switch
# `set -e` off inside the part.
part() {
    local name=$1 begin=$SECONDS status=0 log=$parts/${1// /-}.log
    shift
    "$@" >"$log" 2>&1 </dev/null &
    wait "$!" || status=$?
    local time=$(((SECONDS - begin) / 60))\ min\ $(((SECONDS - begin) % 60))\ s
    exec {lock}>"$parts/lock"
    flock "$lock" # so that parts do not talk at the same time
    if ((status == 0)); then
        passed=true
        say "Passed: $name, $time"
    else
        passed=false
        echo "$name" >>"$parts/failed"
        say "FAILED: $name, $time"
    fi
    cat "$log"
    exec {lock}>&-
}

# Runs a function that runs parts beside what follows.
beside() {
    "$@" &
    lanes+=($!)
}

# Waits for all lanes, and fails if a part did.
end_parts() {
    local lane
    for lane in "${lanes[@]}"; do
        wait "$lane" || echo "a lane" >>"$parts/failed"
    done
    [[ ! -s $parts/failed ]] || fail "$(paste -sd , "$parts/failed")"
}
