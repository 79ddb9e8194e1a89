#!/usr/bin/env bash
# Runs the formatter and the linters. The last line reads "N passed, N failed" and counts the linters. An interrupted run is
# continued by the next one.
#   --alone   also compiles each source by itself, without unity files and precompiled headers
set -u
cd "$(dirname "$0")" || exit 1
# shellcheck source=tools/common.sh
. tools/common.sh

readonly LINT_STEPS=build/lint/lint/steps.ninja
linters=(lint-format lint-scripts lint-includes lint-cppcheck lint-tidy)
case "$*" in
'') ;;
--alone) linters+=(lint-alone) ;;
*) fail "the only option is --alone" ;;
esac

# run_linter LINTER: runs its steps whose files have changed, and prints the findings.
run_linter() {
    stage "$1"
    if run_logged "$1" ninja -f "$LINT_STEPS" -j2 -k 0 "$1"; then
        stage_done
        return 0
    fi
    stage_done "failed"
    # Ninja's own lines are left out: the progress, the name of a failed step, and its command.
    awk '/^FAILED: / { getline; next } !/^\[[0-9]+\/[0-9]+\] / && !/^ninja: build stopped/' "$LOG_DIR/$1.log"
    return 1
}

begin
install_packages cmake ninja-build g++ g++-mingw-w64-x86-64-posix nlohmann-json3-dev googletest python3 \
    clang-format clang-tidy cppcheck shellcheck pyflakes3
stage "Steps"
logged lint-configure cmake --preset lint
logged lint-steps cmake --build --preset lint --target lint-steps
stage_done

passed=0
failed=0
for linter in "${linters[@]}"; do
    if run_linter "$linter"; then
        passed=$((passed + 1))
    else
        failed=$((failed + 1))
    fi
done
echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ]
