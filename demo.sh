#!/usr/bin/env bash
# Shows the main job: a host program authenticates through kelda.dll against a real HTTP server and then downloads a
# document that only authenticated requests get. A person at the credential prompt is played with real key presses.
set -u
cd "$(dirname "$0")" || exit 1
# shellcheck source=tools/common.sh
. tools/common.sh

readonly USER_NAME=anna PASSWORD=kelda-demo DOCUMENT=basic/documents/engine
readonly DEMO_DIR=$PWD/build/demo

start_server() {
    local announced=$DEMO_DIR/server.txt
    : >"$announced"
    python3 testbed/document_server --port 0 --user "$USER_NAME" --password "$PASSWORD" \
        --log "$DEMO_DIR/requests.jsonl" --exit-with-parent >"$announced" 2>"$LOG_DIR/server.log" </dev/null 9>&- &
    background+=($!)
    wait_until 20 grep -q listening "$announced" || fail "the document server did not start; see build/logs/server.log"
    server=$(sed -n 's/^listening on //p' "$announced")
}

# status_without_login: what the server answers to who has not logged in.
status_without_login() {
    python3 - "$server/$DOCUMENT" <<'PYTHON'
import sys, urllib.error, urllib.request
try:
    print(urllib.request.urlopen(sys.argv[1]).status)
except urllib.error.HTTPError as answer:
    print(answer.code)
PYTHON
}

# Types into the credential prompt, takes its picture and presses Enter.
play_person() {
    # The prompt is ready once it has taken the focus.
    wait_until 30 prompt_has_focus_or_viewer_ended
    prompt_has_focus || fail "no credential prompt appeared; see build/logs/viewer.log"
    xdotool type --delay 30 "$USER_NAME"
    xdotool key Tab
    xdotool type --delay 30 "$PASSWORD"
    import -window root "$DEMO_DIR/prompt.png" || fail "no picture of the prompt could be taken"
    xdotool key Return
}

prompt_has_focus() {
    xdotool getwindowfocus getwindowname 2>/dev/null | grep -q '^Log in to the viewer$'
}

prompt_has_focus_or_viewer_ended() {
    prompt_has_focus || ! kill -0 "$current"
}

same_document() {
    PYTHONPATH=testbed python3 -B - "$DEMO_DIR/engine.bin" <<'PYTHON'
import pathlib, sys
from document_server.documents import document
sys.exit(pathlib.Path(sys.argv[1]).read_bytes() != document("engine"))
PYTHON
}

begin
install_packages "${COMMON_PACKAGES[@]}"
build_targets viewer
start_display
prepare_wine_prefix

rm -rf "$DEMO_DIR"
mkdir -p "$DEMO_DIR"
stage "Document server"
start_server
stage_done "$server"

status=$(status_without_login) || fail "the document server did not answer; see build/logs/server.log"
printf '\nWithout a login, %s answers HTTP %s.\n' "/$DOCUMENT" "$status"
printf 'The viewer logs in through kelda.dll and downloads it; a person types at the prompt ...\n\n'

tools/run-in-wine "$BIN_DIR/viewer.exe" --server "$server/" --path basic/ --get "$DOCUMENT" \
    --output "Z:$DEMO_DIR/engine.bin" --trace "Z:$DEMO_DIR/trace.txt" --caption "Log in to the viewer" \
    >"$LOG_DIR/viewer.log" 2>&1 </dev/null 9>&- &
current=$!
play_person
wait "$current" || fail "the viewer did not get through, see build/logs/viewer.log; it said: $(tail -n 1 "$LOG_DIR/viewer.log")"
current=

sed 's/^/  /' "$DEMO_DIR/trace.txt"
printf '\n%s\n' "$(tail -n 1 "$LOG_DIR/viewer.log")"
same_document || fail "build/demo/engine.bin differs from the server's document"
printf 'The document is the one that the server keeps, byte for byte.\n'
printf 'Picture of the credential prompt: %s\n' "build/demo/prompt.png"
