# shellcheck shell=bash disable=SC2034  # sourced: what is defined here is used there
# Shared by demo.sh and test.sh: packages, build, Wine prefix, display, and the clean-up of all that was started.
# Sourced by bash scripts that run in the repository's top folder.

readonly BUILD_DIR=$PWD/build/mingw-release
readonly LOG_DIR=$PWD/build/logs
readonly BIN_DIR=$BUILD_DIR/bin
export WINEPREFIX=$PWD/build/wine

readonly COMMON_PACKAGES=(
    cmake ninja-build g++-mingw-w64-x86-64-posix nlohmann-json3-dev googletest
    wine wine64 libgnutls30 fonts-wine fonts-liberation xvfb xdotool imagemagick
    python3 openssl procps
)

stage_started=0

# stage TEXT: one progress line a stage; the time it took is printed when it ends.
stage() {
    stage_started=$(date +%s)
    printf '%-52s' "$1 ..."
}

stage_done() {
    printf ' %s (%d s)\n' "${1:-done}" "$(($(date +%s) - stage_started))"
}

# fail TEXT: the one sentence that a failing script ends with.
fail() {
    printf '\n%s: %s\n' "$(basename "$0")" "$1" >&2
    exit 1
}

# run_logged NAME COMMAND...: runs a command with its output in a log of the build folder; its status is the result.
# In the background, so that a signal is handled at once and not only when the command ends.
run_logged() {
    local log=$LOG_DIR/$1.log status
    shift
    "$@" >"$log" 2>&1 </dev/null 9>&- &
    current=$!
    wait "$current"
    status=$?
    current=
    return "$status"
}

# logged NAME COMMAND...: the same, for commands without which there is no going on.
logged() {
    run_logged "$@" || fail "\"$2\" failed; its output is in build/logs/$1.log"
}

missing_packages() {
    local package
    for package in "$@"; do
        dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || printf '%s\n' "$package"
    done
}

# install_packages PACKAGE...: installs those that are missing, with sudo where this is not root.
install_packages() {
    local missing
    mapfile -t missing < <(missing_packages "$@")
    stage "Packages"
    if [ ${#missing[@]} -eq 0 ]; then
        stage_done "all there"
    else
        install_missing "${missing[@]}"
        stage_done "${#missing[@]} installed"
    fi
    # From here on everything talks to this machine only.
    unset http_proxy https_proxy all_proxy HTTP_PROXY HTTPS_PROXY ALL_PROXY
}

install_missing() {
    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || fail "installing $* needs root or sudo"
        as_root=(sudo)
    fi
    as_root+=(env DEBIAN_FRONTEND=noninteractive)
    logged packages-update "${as_root[@]}" apt-get update
    logged packages-install "${as_root[@]}" apt-get install -y --no-install-recommends "$@"
}

# What a script adds to the configuration.
configure_options=()

# build_targets TARGET...: configures and builds.
build_targets() {
    stage "Build"
    logged configure cmake --preset mingw-release "${configure_options[@]}"
    logged build cmake --build --preset mingw-release --target "$@"
    stage_done
}

# The display has to be there before: the desktop that Wine starts here is the one that all programs use.
prepare_wine_prefix() {
    stage "Wine prefix"
    if [ ! -e "$WINEPREFIX/kelda-ready" ]; then
        rm -rf "$WINEPREFIX"
        logged wine-prefix tools/run-in-wine wineboot --init
        # Wine draws the title bars itself: there is no window manager, and waiting for one costs two seconds a window.
        logged wine-prefix-windows tools/run-in-wine reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /d N /f
        logged wine-prefix-wait wineserver_of_prefix --wait
        touch "$WINEPREFIX/kelda-ready"
        stage_done "made"
    else
        stage_done "there"
    fi
    # A program that was killed may have left the file of a cookie locked, for good: it could not be saved again.
    rm -f "$WINEPREFIX"/drive_c/users/*/AppData/Local/Microsoft/Windows/INetCookies/*
    # The signs on the buttons of title bars. The package has the font where its Wine does not look for it.
    logged wine-font cp /usr/share/wine/fonts/marlett.ttf "$WINEPREFIX/drive_c/windows/Fonts/"
    # Kept running until the end, with its services: every program start is quicker for it.
    logged wineserver wineserver_of_prefix --persistent
    logged wine-services tools/run-in-wine wineboot
}

# The package puts the server beside the loader, not on the PATH.
wineserver_of_prefix() {
    "$(command -v wineserver || echo /usr/lib/wine/wineserver)" "$@"
}

# start_display: a display of our own on a free number.
start_display() {
    local number=$LOG_DIR/display.number
    : >"$number"
    Xvfb -displayfd 3 -screen 0 1280x800x24 -nolisten tcp 3>"$number" >"$LOG_DIR/xvfb.log" 2>&1 </dev/null 9>&- &
    background+=($!)
    wait_until 20 test -s "$number" || fail "the display did not start; see build/logs/xvfb.log"
    DISPLAY=:$(cat "$number")
    export DISPLAY
}

# wait_until SECONDS COMMAND...: true as soon as the command is.
wait_until() {
    local deadline=$(($(date +%s) + $1))
    shift
    until "$@" >/dev/null 2>&1; do
        [ "$(date +%s)" -lt "$deadline" ] || return 1
        sleep 0.05
    done
}

background=()
current=

# end_jobs PID...: ends background jobs with all that they have started; each is a process group of its own.
end_jobs() {
    local pid
    for pid in "$@"; do
        kill -TERM -- "-$pid" 2>/dev/null
    done
    for pid in "$@"; do
        wait "$pid" 2>/dev/null
    done
}

# Ends all that was started here: on success, on failure and on Ctrl+C. What may start programs under Wine goes first.
clean_up() {
    local status=$?
    trap - EXIT
    trap '' INT TERM HUP
    [ -z "$current" ] || end_jobs "$current"
    [ ! -d "$WINEPREFIX" ] || wineserver_of_prefix --kill 2>/dev/null
    end_jobs "${background[@]}"
    exit "$status"
}

# begin: one run at a time in a checkout; whatever ends it, nothing is left behind.
begin() {
    # Each background job gets a process group, so that it can be ended as a whole.
    set -m
    # Nothing of the caller's own Wine, or of an earlier test by hand, is to get in.
    unset WINEARCH WINEDEBUG WINEDLLOVERRIDES KELDA_PROMPT_SCRIPT KELDA_PROMPT_LOG \
        "${!KELDA_TEST_@}" "${!MERIDO_@}" "${!WEBVIEW2_@}"
    mkdir -p "$LOG_DIR" || fail "the folder build/ cannot be written"
    exec 9>"$PWD/build/.lock"
    flock --nonblock 9 || fail "another run is going on in this checkout"
    trap clean_up EXIT
    trap 'exit 130' INT
    trap 'exit 143' TERM
    trap 'exit 129' HUP
}
