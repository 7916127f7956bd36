# Shared by the project's shell scripts: where things are, how to speak, how to stop.
# shellcheck shell=bash
set -euo pipefail

VESK_TOP=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
VESK_BUILD=$VESK_TOP/build
VESK_DEPS=$VESK_BUILD/deps
VESK_WINE=$VESK_BUILD/wine
export VESK_TOP VESK_BUILD VESK_DEPS VESK_WINE

say() { printf '== %s\n' "$*" >&2; }
fail() { printf '%s: %s\n' "$(basename "$0")" "$*" >&2; exit 1; }

# logged NAME COMMAND...: runs the command quietly; on failure shows the end of its log and stops.
logged() {
    local name=$1 log; shift
    mkdir -p "$VESK_BUILD/logs"
    log=$VESK_BUILD/logs/$name.log
    "$@" >"$log" 2>&1 || { tail -n 60 "$log" >&2; fail "$name failed; all of its output is in build/logs/$name.log"; }
}

# build_preset PRESET [TARGET...]: configures once, then builds.
build_preset() {
    local preset=$1; shift
    cd "$VESK_TOP"
    if [ ! -f "$VESK_BUILD/$preset/build.ninja" ]; then
        say "configure $preset"
        logged "configure-$preset" cmake --preset "$preset"
    fi
    say "build $preset"
    logged "build-$preset" cmake --build --preset "$preset" ${1:+--target "$@"}
}
