#!/usr/bin/env bash
# Installs what is missing, builds, and runs all tests. The last line reads "N passed, N failed".
#
#   ./test.sh [TEST...]    runs only these, for example: ./test.sh cookies_test
#
# Of test programs only the named ones are built; for any other test everything is.
set -u
cd "$(dirname "$0")" || exit 1
# shellcheck source=tools/common.sh
. tools/common.sh

# targets_of TEST...: what has to be built. A test program's target has its name; other tests may need any target.
targets_of() {
    local name
    for name in "$@"; do
        if [[ $name != *_test ]]; then
            echo all
            return
        fi
    done
    echo "${@:-all}"
}

[[ "$*" != -* ]] || fail "there are no options; the names of the tests are the arguments"

begin
install_packages "${COMMON_PACKAGES[@]}" chromium libnss3-tools g++
configure_options=(-DKELDA_REQUIRE_NATIVE_TEST=ON)
# shellcheck disable=SC2046  # names without spaces
build_targets $(targets_of "$@")
start_desktop 1
start_desktop 2

# Read by tools/testing.
export KELDA_DESKTOPS=$DESKTOPS KELDA_TEST_RESULTS=$PWD/build/test-results
make_test_folder
printf 'Tests ...\n'
run_in_terminal python3 -B tools/run_tests.py "$BUILD_DIR" "$LOG_DIR/test.log" "$@"
