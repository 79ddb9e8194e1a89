#!/usr/bin/env bash
# Installs what is missing, builds, runs the linters and all tests. The last line reads "N passed, N failed".
set -u
cd "$(dirname "$0")" || exit 1
# shellcheck source=tools/common.sh
. tools/common.sh

begin
install_packages "${COMMON_PACKAGES[@]}" chromium libnss3-tools g++ clang-format clang-tidy cppcheck shellcheck pyflakes3
configure_options=(-DKELDA_REQUIRE_LINTERS=ON)
build_targets all
start_display
prepare_wine_prefix

# Everything is a test of CTest, so that it is counted: the linters, the cases of the unit tests, the flow tests.
stage "Linters (quick where nothing changed)"
if run_logged lint cmake --build --preset mingw-release --target lint -- -k 0; then
    stage_done
else
    stage_done "not clean"
fi

stage "Tests"
rm -f "$LOG_DIR/test.xml"
run_logged test ctest --preset mingw-release --parallel 2 --no-tests=error --output-junit "$LOG_DIR/test.xml"
stage_done

[ -e "$LOG_DIR/test.xml" ] || fail "the tests could not be run; see build/logs/test.log"
python3 tools/count_tests.py "$LOG_DIR/test.xml" build/logs/test.log
