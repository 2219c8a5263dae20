# shellcheck shell=bash
# A study for the tests, run on one machine for comparison. Sourced by the tests after common.sh.

kit=$VIRELOCE_BIN/vireloce-kit

# Makes $1/plan, the folder of a planned study: gcd and two generated designs over options, and one design that cannot
# be placed, for it names a cell that is not there. Sets `tasks` to the number of its runs.
plan_study() {
    local work=$1
    rm -rf "$work"
    mkdir -p "$work/damaged"
    cp examples/gcd/gcd.* "$work/damaged"
    sed -i '0,/ NAND2_X1 /s// NO_SUCH_CELL /' "$work/damaged/gcd.place"
    ! cmp -s examples/gcd/gcd.place "$work/damaged/gcd.place" || fail "the damaged design is not damaged"
    quietly "$work/gen.log" "$kit" gen "$work/small" --components 1000 --seed 2
    quietly "$work/gen.log" "$kit" gen "$work/large" --components 10000 --seed 3
    cat >"$work/study.json" <<JSON
{
  "designs": [
    {"name": "gcd", "base": "$PWD/examples/gcd/gcd", "cell_path": "$PWD/examples/nangate45_color"},
    {"name": "small", "base": "small", "cell_path": "small.colors"},
    {"name": "large", "base": "large", "cell_path": "large.colors"},
    {"name": "damaged", "base": "damaged/gcd", "cell_path": "$PWD/examples/nangate45_color"}
  ],
  "runs": [
    $(runs_of gcd 0 1 2 3),
    $(runs_of small 0 1 2 3),
    $(runs_of large 0 1 2 3),
    {"design": "damaged", "algo": 1}
  ]
}
JSON
    quietly "$work/plan.log" "$kit" sweep plan "$work/study.json" -o "$work/plan"
    tasks=$(wc -l <"$work/plan/tasks.jsonl")
    ((tasks >= 40)) || fail "the study has $tasks runs"
}

# The runs of a design by the given algorithms with four weights each, as entries of the study's list.
runs_of() {
    local design=$1 algo weight entries=()
    shift
    for algo in "$@"; do
        for weight in 0.3 1 1.4 10; do
            entries+=("{\"design\": \"$design\", \"algo\": $algo, \"weight\": $weight}")
        done
    done
    local IFS=,
    echo "${entries[*]}"
}

# The time in milliseconds.
milliseconds() {
    echo "$((${EPOCHREALTIME/[!0-9]/} / 1000))"
}

# Runs a planned study by one process on this machine, and keeps its table in $1/table.csv. Sets `single_time` to what
# that took, in milliseconds.
run_on_one_machine() {
    local work=$1 status=0 begin
    cp -r "$work/plan" "$work/single"
    begin=$(milliseconds)
    "$kit" sweep run "$work/single" --jobs 2 --quiet >"$work/single.log" 2>&1 || status=$?
    # shellcheck disable=SC2034 # for the tests
    single_time=$(($(milliseconds) - begin))
    ((status == 1)) || fail "one machine: status $status in place of 1, for the run that fails"
    table_of "$work/single" >"$work/table.csv"
}

# The table of a folder without times. A run that fails makes the status 1.
table_of() {
    "$kit" sweep collect "$1" --no-times 2>/dev/null || (($? == 1))
}

# What is wrong with a folder's results, compared with those of one machine; nothing if every run has exactly one.
expect_all_results() {
    local dir=$1 work
    work=$(dirname "$dir")
    diff <(sed -E 's/.*"id": ?"([0-9a-f]+)".*/\1.json/' "$dir/tasks.jsonl" | sort) <(ls "$dir/results") >&2 ||
        fail "$dir: not every run has exactly one result"
    diff "$work/table.csv" <(table_of "$dir") >&2 || fail "$dir: the table is not that of one machine"
}

# The results of a folder with their contents and times, to see later that nothing touched them.
results_of() {
    [[ ! -d $1/results ]] || find "$1/results" -name '*.json' -printf '%f %i %T@\n' | sort
}

# The number of lines of a text.
lines_in() {
    grep -c . <<<"$1" || true
}

# Another run with --resume changes nothing, and leaves no claims or work behind.
expect_nothing_left_to_do() {
    local dir=$1 before status=0
    before=$(results_of "$dir")
    "$kit" sweep run "$dir" --resume --quiet >/dev/null 2>&1 || status=$?
    ((status == 1)) || fail "$dir: another run has status $status in place of 1"
    diff <(echo "$before") <(results_of "$dir") >&2 || fail "$dir: another run made runs again"
    [[ -z $(ls -A "$dir/work") ]] || fail "$dir: left in work: $(ls -A "$dir/work")"
    [[ -z $(ls -A "$dir/claims") ]] || fail "$dir: left in claims: $(ls -A "$dir/claims")"
}

# How many results of a folder say that there is no placement.
count_failures() {
    table_of "$1" | grep -cE ',(failed|timeout|memory|crashed|missing),' || true
}
