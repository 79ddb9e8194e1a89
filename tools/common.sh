# shellcheck shell=bash disable=SC2034  # sourced: what is defined here is used there
# Shared by demo.sh, test.sh and lint.sh: packages, build, Wine prefix, display, and the clean-up of all that was started.
# Sourced by bash scripts that run in the repository's top folder.

readonly BUILD_DIR=$PWD/build/mingw-release
readonly LOG_DIR=$PWD/build/logs
readonly BIN_DIR=$BUILD_DIR/bin
# Each desktop is a folder with a display and a Wine prefix.
readonly DESKTOPS=$PWD/build/desktops
readonly PREFIX_TEMPLATE=$DESKTOPS/template/wine

COMMON_PACKAGES=(
    cmake ninja-build g++-mingw-w64-x86-64-posix nlohmann-json3-dev googletest
    wine wine64 libgnutls30 fonts-wine fonts-liberation xvfb xdotool imagemagick
    python3 openssl procps
)
# Debian 12's Wine needs its preloader: without it the heap covers a page that Wine needs, in one start of some 8,000, and the
# program ends with status 1 and no output.
! grep -q '^VERSION_ID="12"' /etc/os-release || COMMON_PACKAGES+=(wine64-preloader)
readonly COMMON_PACKAGES

# A socket's name has room for 107 characters, and Chromium adds some 55 to the folder's.
readonly LONGEST_TEST_FOLDER=45

stage_started=0
stage_text=

# stage TEXT: one progress line a stage; the time it took is printed when it ends.
stage() {
    stage_started=$(date +%s)
    stage_text=$1
    printf '%-52s' "$1 ..."
}

stage_done() {
    ! [ -t 1 ] || printf '\r\033[K%-52s' "$stage_text ..."
    printf ' %s (%d s)\n' "${1:-done}" "$(($(date +%s) - stage_started))"
}

# show_progress LOG: on a terminal, the last "[steps done/all of them]" of a log, the failures in it and the time behind the
# stage's text, over and over.
show_progress() {
    local steps failures
    while sleep 0.5; do
        steps=$(grep -o '^\[[0-9]*/[0-9]*\]' "$1" | tail -n 1)
        failures=$(grep -c '^FAILED: ' "$1")
        [ "$failures" -eq 0 ] || steps+=" $failures failed,"
        printf '\r\033[K%-52s %s %d s' "$stage_text ..." "$steps" "$(($(date +%s) - stage_started))"
    done
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
    if [ -t 1 ]; then
        show_progress "$log" 9>&- &
        progress=$!
    fi
    wait "$current"
    status=$?
    if [ -n "$progress" ]; then
        end_jobs "$progress"
        progress=
    fi
    current=
    return "$status"
}

# run_in_terminal COMMAND...: runs a command that shows its own progress; its status is the result.
run_in_terminal() {
    local status
    "$@" </dev/null 9>&- &
    current=$!
    wait "$current"
    status=$?
    current=
    return "$status"
}

# logged NAME COMMAND...: run_logged for commands without which there is no going on.
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
        # Asked for here, as the commands below run in the background.
        sudo --validate || fail "installing $* needs root or sudo"
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

# start_desktop NAME: starts a display on a free number, with a Wine prefix of its own, and makes them those of this shell.
start_desktop() {
    local folder=$DESKTOPS/$1
    mkdir -p "$folder"
    start_display "$folder/display"
    stage "Desktop $1"
    [ -e "$PREFIX_TEMPLATE/kelda-ready" ] || make_prefix_template
    export WINEPREFIX=$folder/wine
    [ -e "$WINEPREFIX/kelda-ready" ] || copy_prefix_template
    start_wine
    stage_done
}

# start_display FILE: the display's name is written to the file.
start_display() {
    local number=$LOG_DIR/display.number
    : >"$number"
    Xvfb -displayfd 3 -screen 0 1280x800x24 -nolisten tcp 3>"$number" >"$LOG_DIR/xvfb.log" 2>&1 </dev/null 9>&- &
    background+=($!)
    wait_until 20 test -s "$number" || fail "the display did not start; see build/logs/xvfb.log"
    DISPLAY=:$(cat "$number")
    export DISPLAY
    printf '%s\n' "$DISPLAY" >"$1"
}

make_prefix_template() {
    export WINEPREFIX=$PREFIX_TEMPLATE
    rm -rf "$DESKTOPS"/*/wine
    mkdir -p "$(dirname "$WINEPREFIX")"
    logged wine-prefix tools/run-in-wine wineboot --init
    # Wine draws the title bars itself: there is no window manager, and waiting for one costs two seconds a window.
    set_registry_value 'HKCU\Software\Wine\X11 Driver' Managed REG_SZ N
    # Programs under Wine get the folder for temporary files from the registry only; tools/run-in-wine sets the variable.
    set_registry_value 'HKCU\Environment' TEMP REG_EXPAND_SZ %KELDA_TEMP%
    set_registry_value 'HKCU\Environment' TMP REG_EXPAND_SZ %KELDA_TEMP%
    # The signs on the buttons of title bars. The package has the font in a folder that its Wine does not search.
    logged wine-font cp /usr/share/wine/fonts/marlett.ttf "$WINEPREFIX/drive_c/windows/Fonts/"
    logged wine-prefix-wait wineserver_of_prefix --wait
    touch "$WINEPREFIX/kelda-ready"
}

# Windows' own files are linked, not copied: they are never written, and take 700 MB.
copy_prefix_template() {
    rm -rf "$WINEPREFIX"
    mkdir -p "$WINEPREFIX/drive_c"
    logged wine-prefix-link cp -al "$PREFIX_TEMPLATE/drive_c/windows" "$WINEPREFIX/drive_c/"
    (
        set -o pipefail
        tar -C "$PREFIX_TEMPLATE" --exclude ./drive_c/windows --exclude ./kelda-ready -cf - . | tar -C "$WINEPREFIX" -xf -
    ) || fail "no prefix could be made"
    touch "$WINEPREFIX/kelda-ready"
}

# set_registry_value KEY NAME TYPE VALUE
set_registry_value() {
    logged wine-registry tools/run-in-wine reg add "$1" /v "$2" /t "$3" /d "$4" /f
}

# The display has to be there before: the desktop that Wine starts here is the one that all programs use.
start_wine() {
    # A program that was killed may have left the file of a cookie locked, and the cookie could never be saved again.
    rm -f "$WINEPREFIX"/drive_c/users/*/AppData/Local/Microsoft/Windows/INetCookies/*
    # Kept running until the end, with its services: every program start is quicker for it.
    logged wineserver wineserver_of_prefix --persistent
    logged wine-services tools/run-in-wine wineboot
    hold_desktop
}

# Wine's desktop ends a second after its last program, and starting it anew delays the next one. cmd waits for its input, and
# counts as a program.
hold_desktop() {
    sleep infinity 9>&- | tools/run-in-wine cmd >/dev/null 2>&1 9>&- &
    background+=($!)
    tools/run-in-wine explorer /desktop >"$LOG_DIR/wine-desktop.log" 2>&1 </dev/null 9>&- &
    background+=($!)
}

# The package puts the server beside the loader, not on the PATH. Its socket is below TMPDIR: see tools/run-in-wine.
wineserver_of_prefix() {
    TMPDIR=/tmp "$(command -v wineserver || echo /usr/lib/wine/wineserver)" "$@"
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

# make_test_folder: the folder for the tests' temporary files, gone at the end of this script. Below build/ unless the names
# in it would be too long for sockets, which Chromium makes there.
make_test_folder() {
    KELDA_TEST_TEMP=$PWD/build/tmp
    if [ ${#KELDA_TEST_TEMP} -gt $LONGEST_TEST_FOLDER ]; then
        KELDA_TEST_TEMP=$(mktemp -d /tmp/kelda-XXXXXX) || fail "no folder for temporary files could be made"
    fi
    test_folder=$KELDA_TEST_TEMP
    mkdir -p "$test_folder"
    export KELDA_TEST_TEMP
}

background=()
current=
progress=
test_folder=

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
    local status=$? prefix
    trap - EXIT
    trap '' INT TERM HUP
    [ -z "$progress" ] || end_jobs "$progress"
    [ -z "$current" ] || end_jobs "$current"
    for prefix in "$DESKTOPS"/*/wine; do
        [ ! -d "$prefix" ] || WINEPREFIX=$prefix wineserver_of_prefix --kill 2>/dev/null
    done
    end_jobs "${background[@]}"
    # A Chromium that has just lost its host may still write there.
    [ -z "$test_folder" ] || wait_until 10 rm -rf "$test_folder" || echo "$test_folder could not be removed" >&2
    exit "$status"
}

# begin: one run at a time in a checkout; whatever ends it, nothing is left behind.
begin() {
    # Each background job gets a process group, so that it can be ended as a whole.
    set -m
    # Nothing of the caller's own Wine, or of an earlier test by hand, is to get in.
    unset WINEPREFIX WINEARCH WINEDEBUG WINEDLLOVERRIDES KELDA_PROMPT_SCRIPT KELDA_PROMPT_LOG \
        KELDA_DESKTOPS "${!KELDA_TEST_@}" "${!MERIDO_@}" "${!WEBVIEW2_@}"
    mkdir -p "$LOG_DIR" || fail "the folder build/ cannot be written"
    exec 9>"$PWD/build/.lock"
    flock --nonblock 9 || fail "another run is going on in this checkout"
    # Of an earlier run that was killed, or had more desktops: their displays are gone.
    rm -f "$DESKTOPS"/*/display
    trap clean_up EXIT
    trap 'exit 130' INT
    trap 'exit 143' TERM
    trap 'exit 129' HUP
}
