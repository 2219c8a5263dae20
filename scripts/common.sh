# shellcheck shell=bash
# What the scripts share. They source this file after `set -euo pipefail`, from the top folder.
#
# It takes the option --no-install out of the script's arguments. With it, nothing is installed: what is missing ends
# the script, and those that it starts.
# shellcheck disable=SC2034 # variables used by the scripts that source this file

for argument in "$@"; do
    shift
    if [[ $argument == --no-install ]]; then
        export VIRELOCE_NO_INSTALL=yes
    else
        set -- "$@" "$argument"
    fi
done

# What they need, as PACKAGE:PROBE: a Debian package, and a command or file that shows that it is there.
BUILD_NEEDS=(g++:g++ cmake:cmake ninja-build:ninja)
KIT_NEEDS=("${BUILD_NEEDS[@]}" libcli11-dev:/usr/include/CLI/CLI.hpp
    nlohmann-json3-dev:/usr/include/nlohmann/json.hpp libsqlite3-dev:/usr/include/sqlite3.h
    zlib1g-dev:/usr/include/zlib.h liblzma-dev:/usr/include/lzma.h)
TEST_NEEDS=("${KIT_NEEDS[@]}" libgtest-dev:/usr/include/gtest/gtest.h librapidcheck-dev:/usr/include/rapidcheck.h)
BROWSER_NEEDS=(nodejs:node npm:npm fonts-dejavu-core:/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf)
[[ -n ${CHROMIUM-} ]] || BROWSER_NEEDS+=(chromium:/usr/bin/chromium)
BROWSER_DRIVER=playwright-core:$PWD/tests/browser/node_modules/playwright-core # from npm
KLAYOUT_NEEDS=(klayout:klayout)
SLURM_NEEDS=(slurmctld:/usr/sbin/slurmctld slurmd:/usr/sbin/slurmd slurm-client:sbatch munge:/usr/sbin/munged)
PARALLEL_NEEDS=(parallel:parallel)

say() {
    printf '\n== %s\n' "$*"
}

fail() {
    printf 'FAILED: %s\n' "$*" >&2
    exit 1
}

# Whether a command, or a file by its absolute path (which may hold wildcards), exists.
present() {
    if [[ $1 == /* ]]; then
        compgen -G "$1" >/dev/null
    else
        command -v "$1" >/dev/null
    fi
}

# Puts into `missing` the packages that are missing, of those given as PACKAGE:PROBE, and says that they are about to
# be installed. With --no-install it ends the script instead.
announce_missing() {
    missing=()
    local need
    for need in "$@"; do
        present "${need#*:}" || missing+=("${need%%:*}")
    done
    ((${#missing[@]} > 0)) || return 0
    [[ -z ${VIRELOCE_NO_INSTALL-} ]] || fail "--no-install was given, and these packages are missing: ${missing[*]}"
    say "Installing what is missing (not with --no-install): ${missing[*]}"
}

# Installs Debian packages.
install_packages() {
    present apt-get || fail "there is no apt-get here: please install $* yourself"
    local as_root=()
    if ((EUID != 0)); then
        present sudo || fail "not root and no sudo: please install $* yourself"
        as_root=(sudo)
    fi
    local log
    log=$(mktemp)
    if ! "${as_root[@]}" apt-get -q update >"$log" 2>&1 ||
        ! "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -y install --no-install-recommends \
            "$@" >>"$log" 2>&1 </dev/null; then
        cat "$log" >&2
        rm "$log"
        fail "apt-get could not install $*"
    fi
    rm "$log"
}

# Installs those of the packages that are missing, given as PACKAGE:PROBE.
install_missing() {
    local missing
    announce_missing "$@"
    ((${#missing[@]} == 0)) || install_packages "${missing[@]}"
}

# Builds some programs of the release build if one is not there, unless VIRELOCE_BIN says where programs are.
need_programs() {
    local program
    for program in "$@"; do
        if [[ -z ${VIRELOCE_BIN-} && ! -x build/release/bin/$program ]]; then
            install_missing "${TEST_NEEDS[@]}"
            quietly build/release/configure.log cmake --preset release
            quietly build/release/build.log cmake --build --preset release --target "$@"
            return
        fi
    done
}

# Runs a command with its output in a file, which is shown if the command fails.
quietly() {
    local log=$1
    shift
    mkdir -p "$(dirname "$log")"
    if ! "$@" >"$log" 2>&1 </dev/null; then
        cat "$log" >&2
        fail "$*"
    fi
}

# A report from standard input, with stars for the two CPU times.
mask_times() {
    sed -E 's/(CPU time +=) [0-9]+\.[0-9]{3} s$/\1 * s/'
}
