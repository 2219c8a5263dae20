# shellcheck shell=bash
# A Slurm cluster of two nodes on this machine, with an authentication daemon of its own, all in one folder. Needs
# no root. Sourced by the tests after common.sh; they call slurm_down in their EXIT trap.

# Set by slurm_up: the cluster's folder, and the process ids of its daemons by their names.
cluster=
declare -A daemons=()

# What gives a node its own space of process ids, so that processes of one cannot see those of the other, as on two
# machines; empty where that is not allowed. Set by slurm_up.
separate=()

# The port and the two behind it on which nothing listens.
free_ports() {
    local base port
    while :; do
        base=$((20000 + RANDOM % 10000))
        for port in "$base" "$((base + 1))" "$((base + 2))"; do
            if (exec 3<>"/dev/tcp/127.0.0.1/$port") 2>/dev/null; then
                continue 2
            fi
        done
        echo "$base"
        return
    done
}

# Starts a daemon in the foreground of its own session, so that a Ctrl-C at the terminal reaches the tests alone.
start_daemon() {
    local name=$1
    shift
    daemons[$name]=$(setsid "$@" >"$cluster/$name.out" 2>&1 </dev/null & echo $!)
}

# Whether all daemons that were started are there.
daemons_run() {
    local pid
    for pid in "${daemons[@]}"; do
        kill -0 "$pid" 2>/dev/null || return 1
    done
}

# Stops a daemon, by force if it takes more than some seconds.
stop_daemon() {
    local pid=${daemons[$1]-}
    [[ -n $pid ]] || return 0
    unset "daemons[$1]"
    kill "$pid" 2>/dev/null || return 0
    for _ in {1..50}; do
        kill -0 "$pid" 2>/dev/null || return 0
        sleep 0.1
    done
    kill -KILL "$pid" 2>/dev/null || true
}

# The processes of nodes, given as a pattern that is both a wildcard and a regular expression: daemons and job steps
# have the node's log open, and the jobs' processes have the node's name in their environment.
node_daemons() {
    find /proc/[0-9]*/fd -lname "$cluster/$1.log" 2>/dev/null | cut -d / -f 3 | sort -u || true
}
node_jobs() {
    grep -lzx "SLURMD_NODENAME=$1" /proc/[0-9]*/environ 2>/dev/null |
        xargs -r grep -lzxF "SLURM_CONF=$SLURM_CONF" 2>/dev/null | cut -d / -f 3 || true
}

# Lets nodes die as in a power cut: the job steps before their processes, so that none reports an end.
kill_node() {
    local pids
    for _ in {1..20}; do
        mapfile -t pids < <(node_daemons "$1"; node_jobs "$1")
        if ((${#pids[@]} == 0)); then
            return 0 # in a trap, a bare return would pass on the status from before
        fi
        kill -KILL "${pids[@]}" 2>/dev/null || true
        sleep 0.1
    done
    fail "processes of $1 are left: ${pids[*]}"
}

# Starts the daemons in an empty folder and waits until both nodes take jobs. Status 1 if they do not.
try_slurm() {
    local port
    rm -rf "$cluster"
    mkdir -p "$cluster"/{state,n1,n2}
    chmod 700 "$cluster"
    (umask 077 && head -c 128 /dev/urandom >"$cluster/munge.key")
    port=$(free_ports)
    sed -e "s|@FOLDER@|$cluster|; s|@USER@|$(id -un)|; s|@HOST@|$(hostname -s)|" \
        -e "s|@PORT0@|$port|; s|@PORT1@|$((port + 1))|; s|@PORT2@|$((port + 2))|" tests/cluster/slurm.conf >"$SLURM_CONF"

    # --force: the folders above need not belong to root.
    start_daemon munged munged --foreground --force --num-threads=2 --key-file="$cluster/munge.key" \
        --socket="$cluster/munge.socket" --pid-file="$cluster/munged.pid" --log-file="$cluster/munged.log" \
        --seed-file="$cluster/munged.seed"
    for _ in {1..50}; do
        [[ ! -S $cluster/munge.socket ]] || break
        sleep 0.1
    done
    start_daemon slurmctld slurmctld -D -c
    start_daemon n1 "${separate[@]}" slurmd -D -N n1
    start_daemon n2 "${separate[@]}" slurmd -D -N n2
    local deadline=$((SECONDS + 20))
    while ((SECONDS < deadline)) && daemons_run; do
        if [[ $(timeout 5 sinfo --noheader --Node --format=%t 2>/dev/null | tr '\n' ' ') == 'idle idle ' ]]; then
            return 0
        fi
        sleep 0.2
    done
    return 1
}

# Brings the cluster up in a folder, at the second try if need be. Status 1 if it cannot start here.
slurm_up() {
    cluster=$1
    export SLURM_CONF=$cluster/slurm.conf
    PATH=$PATH:/usr/sbin
    separate=(unshare --pid --fork --mount-proc --kill-child)
    ((EUID == 0)) || separate+=(--user --map-current-user)
    "${separate[@]}" true 2>/dev/null || separate=()
    # The path of a socket has at most 107 bytes.
    if ((${#cluster} > 80)) || [[ $cluster == *[!A-Za-z0-9._/+-]* ]]; then
        echo "the path is too long, or has characters that Slurm does not take: $cluster" >&2
        return 1
    fi
    kill_node '*' # what a run that was killed left: all daemons have a log in this folder
    for _ in 1 2; do
        if try_slurm; then
            return 0
        fi
        slurm_down
        echo "Slurm does not start:" >&2
        tail -n 5 "$cluster"/*.out >&2
    done
    return 1
}

# Stops what slurm_up started, and all that the nodes still run.
slurm_down() {
    [[ -n $cluster ]] || return 0
    stop_daemon slurmctld
    kill_node 'n[12]'
    stop_daemon munged
}
