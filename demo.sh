#!/usr/bin/env bash
# Shows the main job: a host program authenticates through kelda.dll against a real HTTP server and then downloads a
# document that only authenticated requests get: by the credential prompt, and by the server's web login form in the login
# dialog, with WebView2 in it and with the legacy browser. The person at all of them is played with real key presses.
set -u
cd "$(dirname "$0")" || exit 1
# shellcheck source=tools/common.sh
. tools/common.sh

readonly USER_NAME=anna PASSWORD=kelda-demo
readonly BASIC_DOCUMENT=basic/documents/engine FORM_DOCUMENT=documents/engine
readonly DEMO_DIR=$PWD/build/demo
readonly PROMPT_CAPTION='Log in to the viewer' DIALOG_PROMPT='Log in to the document server'

start_server() {
    local announced=$DEMO_DIR/server.txt
    : >"$announced"
    python3 testbed/document_server --port 0 --user "$USER_NAME" --password "$PASSWORD" \
        --log "$DEMO_DIR/requests.jsonl" --exit-with-parent >"$announced" 2>"$LOG_DIR/server.log" </dev/null 9>&- &
    background+=($!)
    wait_until 20 grep -q listening "$announced" || fail "the document server did not start; see build/logs/server.log"
    server=$(sed -n 's/^listening on //p' "$announced")
}

# status_without_login DOCUMENT: what the server answers to who has not logged in.
status_without_login() {
    python3 - "$server/$1" <<'PYTHON'
import sys, urllib.error, urllib.request
try:
    print(urllib.request.urlopen(sys.argv[1]).status)
except urllib.error.HTTPError as answer:
    print(answer.code)
PYTHON
}

# start_viewer NAME OPTION...: in the background; its files have that name.
start_viewer() {
    local name=$1
    shift
    MERIDO_USER_PREFS_LOCAL_DIR="Z:$DEMO_DIR/preferences" tools/run-in-wine "$BIN_DIR/viewer.exe" \
        --server "$server/" --output "Z:$DEMO_DIR/$name.bin" --trace "Z:$DEMO_DIR/$name-trace.txt" \
        --prompt "$DIALOG_PROMPT" --caption "$PROMPT_CAPTION" "$@" >"$LOG_DIR/viewer.log" 2>&1 </dev/null 9>&- &
    current=$!
}

# await_focus TITLE: until a window of that title has the keyboard.
await_focus() {
    wait_until 30 has_focus_or_viewer_ended "$1"
    has_focus "$1" || fail "no window \"$1\" appeared; see build/logs/viewer.log"
}

has_focus() {
    [ "$(xdotool getwindowfocus getwindowname 2>/dev/null)" = "$1" ]
}

has_focus_or_viewer_ended() {
    has_focus "$1" || ! kill -0 "$current"
}

take_picture() {
    import -window root "$DEMO_DIR/$1.png" || fail "no picture of the display could be taken"
}

play_person_at_prompt() {
    await_focus "$PROMPT_CAPTION"
    xdotool type --delay 30 "$USER_NAME"
    xdotool key Tab
    xdotool type --delay 30 "$PASSWORD"
    take_picture prompt
    xdotool key Return
}

# play_person_at_dialog PICTURE
play_person_at_dialog() {
    await_focus "$DIALOG_PROMPT: $server"
    wait_until 30 shows_login_page || fail "the login page did not appear; see build/logs/viewer.log"
    xdotool key Tab
    xdotool type --delay 30 "$USER_NAME"
    xdotool key Tab
    xdotool type --delay 30 "$PASSWORD"
    take_picture "$1"
    xdotool key Return
}

# shows_login_page: whether the band of the login page is there; clicks on it then, for the page to get the keyboard.
shows_login_page() {
    local place
    place=$(PYTHONPATH=testbed python3 -B - <<'PYTHON'
import subprocess
from document_server.login import BAND_COLOUR
picture = subprocess.run(["convert", "x:root", "-depth", "8", "ppm:-"], check=True, capture_output=True).stdout
_, width, height, _ = picture.split(maxsplit=4)[:4]
pixels = picture[-3 * int(width) * int(height):]
found = pixels.find(bytes.fromhex(BAND_COLOUR[1:]) * 100)
print(found // 3 % int(width) + 50, found // 3 // int(width) + 5) if found >= 0 else exit(1)
PYTHON
    ) || return 1
    # shellcheck disable=SC2086  # two numbers
    xdotool mousemove $place click 1
}

# finish_viewer NAME: waits for the viewer; shows its trace and its last line, and compares what it downloaded.
finish_viewer() {
    wait "$current" || fail "the viewer did not get through, see build/logs/viewer.log; it said: $(tail -n 1 "$LOG_DIR/viewer.log")"
    current=
    sed 's/^/  /' "$DEMO_DIR/$1-trace.txt"
    printf '\n%s\n' "$(tail -n 1 "$LOG_DIR/viewer.log")"
    same_document "$1" || fail "build/demo/$1.bin differs from the server's document"
    printf 'The document is the one that the server keeps, byte for byte.\n'
}

same_document() {
    PYTHONPATH=testbed python3 -B - "$DEMO_DIR/$1.bin" <<'PYTHON'
import pathlib, sys
from document_server.documents import document
sys.exit(pathlib.Path(sys.argv[1]).read_bytes() != document("engine"))
PYTHON
}

# announce DOCUMENT HOW: what is to be shown.
announce() {
    local status
    status=$(status_without_login "$1") || fail "the document server did not answer; see build/logs/server.log"
    printf '\nWithout a login, /%s is answered with HTTP %s.\n%s\n\n' "$1" "$status" "$2"
}

begin
install_packages "${COMMON_PACKAGES[@]}" chromium
build_targets viewer webview2_runtime
start_desktop 1

rm -rf "$DEMO_DIR"
mkdir -p "$DEMO_DIR"
stage "Document server"
start_server
stage_done "$server"

announce "$BASIC_DOCUMENT" 'The server challenges, and a person types at the credential prompt ...'
start_viewer prompt --path basic/ --get "$BASIC_DOCUMENT"
play_person_at_prompt
finish_viewer prompt
printf 'Picture of the credential prompt: %s\n' "build/demo/prompt.png"

announce "$FORM_DOCUMENT" 'The server has a web login form, and a person types into it in the login dialog ...'
start_viewer login --get "$FORM_DOCUMENT"
play_person_at_dialog login-dialog
finish_viewer login

announce "$FORM_DOCUMENT" 'The same login once more, as if there were no WebView2: in the legacy browser ...'
MERIDO_ZANWEBBROWSER_IMPLEMENTATION=ie start_viewer legacy-login --get "$FORM_DOCUMENT"
play_person_at_dialog legacy-login-dialog
finish_viewer legacy-login
printf 'Pictures of the login dialog: %s and %s\n' "build/demo/login-dialog.png" "build/demo/legacy-login-dialog.png"
