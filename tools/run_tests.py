"""Runs tests of CTest and counts their cases. The last line reads "N passed, N failed".

    run_tests.py BUILD_FOLDER LOG [TEST...]

Without names all tests run. A failed case is named at once. On a terminal one line shows how far the run is. The exit status is
0 only if all cases passed: a case that was skipped, or that its program never came to, has failed.
"""

import argparse
import concurrent.futures
import contextlib
import json
import os
import re
import subprocess
import sys
import time
import xml.etree.ElementTree
from collections.abc import Iterator
from pathlib import Path

from testing.results import LONGEST_OUTPUT_LINES, Note, Outcome, folder, parse, read_plan, record_file

PARALLEL = 2
POLL_SECONDS = 0.3


class Run:
    """What is known of a run so far."""

    def __init__(self, tests: list[str]) -> None:
        self.tests = tests
        self.plans = {test: read_plan(test) for test in tests}
        self.outcomes: dict[str, list[Outcome]] = {test: [] for test in tests}
        self.notes: list[str] = []
        self._read = {test: 0 for test in tests}
        self._started = time.monotonic()

    def update(self) -> list[Outcome]:
        """Reads what has been recorded since. Returns the failures in it."""
        failures = []
        for test in self.tests:
            for line in self._new_lines(test):
                entry = parse(line)
                if isinstance(entry, Note):
                    self.notes.append(entry.note)
                else:
                    self.outcomes[test].append(entry)
                    failures += [] if entry.passed else [entry]
        return failures

    def finish(self, statuses: dict[str, tuple[bool, str]]) -> list[Outcome]:
        """Adds what only CTest knows: tests without cases, and cases that have not run. Returns the failures in it."""
        added = []
        for test in self.tests:
            passed, output = statuses.get(test, (False, "CTest did not run it."))
            ended = {outcome.case for outcome in self.outcomes[test]}
            missing = [case for case in self.plans[test] if case not in ended]
            new = [Outcome(case, False, 0, f"It did not run.\n{output}") for case in missing]
            without_cases = not self.plans[test] and not self.outcomes[test]
            if without_cases or not passed and not new and all(each.passed for each in self.outcomes[test]):
                new.append(Outcome(test, passed, 0, output))
            self.outcomes[test] += new
            added += new
        return [outcome for outcome in added if not outcome.passed]

    def counts(self) -> tuple[int, int]:
        """How many cases have passed, and how many have failed."""
        ended = [outcome for outcomes in self.outcomes.values() for outcome in outcomes]
        passed = sum(outcome.passed for outcome in ended)
        return passed, len(ended) - passed

    def progress(self) -> str:
        passed, failed = self.counts()
        cases = sum(max(1, len(plan)) for plan in self.plans.values())
        return f"{passed + failed} of {cases} cases, {failed} failed, {time.monotonic() - self._started:.0f} s"

    def _new_lines(self, test: str) -> Iterator[str]:
        file = record_file(test)
        if file.exists():
            text = file.read_bytes()[self._read[test]:]
            complete = text[:text.rfind(b"\n") + 1]
            self._read[test] += len(complete)
            yield from complete.decode().splitlines()


class StatusLine:
    """One line of a terminal that is overwritten; nothing where there is no terminal."""

    def __init__(self) -> None:
        self._shown = sys.stdout.isatty()

    def show(self, text: str) -> None:
        if self._shown:
            print(f"\r\033[K{text}", end="", flush=True)


def find_tests(build: str, names: list[str]) -> list[dict]:
    """The tests with these names, or all, as CTest describes them."""
    answer = subprocess.run(["ctest", "--test-dir", build, "--show-only=json-v1"], check=True, stdout=subprocess.PIPE, text=True)
    tests = json.loads(answer.stdout)["tests"]
    unknown = set(names) - {test["name"] for test in tests}
    if unknown:
        raise SystemExit(f"There is no test {', '.join(sorted(unknown))}. There are: "
                         f"{', '.join(sorted(test['name'] for test in tests))}")
    return [test for test in tests if not names or test["name"] in names]


def make_plan(test: dict, log: Path) -> bool:
    """Has a test name its cases, if it is one that stands for several. Returns whether that succeeded."""
    command = test["command"]
    if not any(part.endswith(("run_gtest.py", "run_unittest.py")) for part in command):
        return True
    properties = {each["name"]: each["value"] for each in test["properties"]}
    with open(log, "ab") as output:
        done = subprocess.run([*command, "--plan"], cwd=properties.get("WORKING_DIRECTORY"), stdin=subprocess.DEVNULL,
                              stdout=output, stderr=output, env=environment_of(properties), check=False)
    return done.returncode == 0


def make_plans(tests: list[dict], log: Path, status_line: "StatusLine") -> list[Outcome]:
    """Has all tests name their cases. Returns a failure for each that cannot: cases of it might be missed."""
    for test in tests:
        record_file(test["name"]).unlink(missing_ok=True)
    failures = []
    with concurrent.futures.ThreadPoolExecutor(PARALLEL) as executor:
        plans = [executor.submit(make_plan, test, log) for test in tests]
        for number, (test, plan) in enumerate(zip(tests, plans), 1):
            status_line.show(f"Listing the cases of {number} of {len(tests)} tests")
            if not plan.result():
                failures.append(Outcome(f"{test['name']}.cases_are_listed", False, 0, f"See {log}."))
    return failures


def environment_of(properties: dict) -> dict[str, str]:
    return {**os.environ, **dict(pair.split("=", 1) for pair in properties.get("ENVIRONMENT", []))}


def statuses(junit: Path) -> dict[str, tuple[bool, str]]:
    """Whether each test has passed for CTest, and the end of what it printed."""
    if not junit.exists():
        return {}
    cases = xml.etree.ElementTree.parse(junit).getroot().findall("testcase")
    return {case.get("name"): (case.get("status") == "run",
                               "\n".join((case.findtext("system-out") or "").splitlines()[-LONGEST_OUTPUT_LINES:]))
            for case in cases}


def report(failures: list[Outcome]) -> None:
    for outcome in failures:
        print("\r\033[K" if sys.stdout.isatty() else "", end="")
        print(f"FAILED: {outcome.case}")
        for line in outcome.output.splitlines():
            print(f"    {line}")
        sys.stdout.flush()


def main() -> int:
    parser = argparse.ArgumentParser()
    parser.add_argument("build")
    parser.add_argument("log", type=Path)
    parser.add_argument("names", nargs="*")
    arguments = parser.parse_args()
    started = time.monotonic()
    status_line = StatusLine()
    tests = find_tests(arguments.build, arguments.names)
    folder().mkdir(parents=True, exist_ok=True)
    arguments.log.write_bytes(b"")
    unlisted = make_plans(tests, arguments.log, status_line)
    report(unlisted)
    junit = folder() / "ctest.xml"
    junit.unlink(missing_ok=True)
    run = Run([test["name"] for test in tests])
    pattern = "^(" + "|".join(re.escape(name) for name in run.tests) + ")$"
    with open(arguments.log, "ab") as log:
        ctest = subprocess.Popen(["ctest", "--test-dir", arguments.build, "--parallel", str(PARALLEL), "--verbose",
                                  "--tests-regex", pattern, "--no-tests=error", "--output-junit", str(junit)],
                                 stdin=subprocess.DEVNULL, stdout=log, stderr=log)
        ended = None
        while ended is None:
            with contextlib.suppress(subprocess.TimeoutExpired):
                ended = ctest.wait(POLL_SECONDS)
            report(run.update())
            status_line.show(run.progress())
    status_line.show("")
    report(run.finish(statuses(junit)))
    print(f"Tests ended after {time.monotonic() - started:.0f} s.")
    for note in run.notes:
        print(f"NOTE: {note}")
    passed, failed = run.counts()
    failed += len(unlisted)
    print(f"{passed} passed, {failed} failed")
    return 0 if passed and not failed else 1


if __name__ == "__main__":
    sys.exit(main())
