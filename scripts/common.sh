# shellcheck shell=bash
# What the scripts share. They source this file after `set -euo pipefail`, from the top folder.

# What a build needs, as PACKAGE:PROBE: a Debian package, and a command or file that shows that it is there.
# shellcheck disable=SC2034 # used by the scripts that source this file
BUILD_NEEDS=(g++:g++ cmake:cmake ninja-build:ninja)

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

# Installs those of the packages that are missing, given as PACKAGE:PROBE.
install_missing() {
    local missing=() need
    for need in "$@"; do
        present "${need#*:}" || missing+=("${need%%:*}")
    done
    if ((${#missing[@]} == 0)); then
        return
    fi
    say "Installing ${missing[*]}"
    present apt-get || fail "there is no apt-get here: please install ${missing[*]} yourself"
    local as_root=()
    if ((EUID != 0)); then
        present sudo || fail "not root and no sudo: please install ${missing[*]} yourself"
        as_root=(sudo)
    fi
    local log
    log=$(mktemp)
    if ! "${as_root[@]}" apt-get -q update >"$log" 2>&1 ||
        ! "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -y install --no-install-recommends \
            "${missing[@]}" >>"$log" 2>&1 </dev/null; then
        cat "$log" >&2
        rm "$log"
        fail "apt-get could not install ${missing[*]}"
    fi
    rm "$log"
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
