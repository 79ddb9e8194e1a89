"""Counts the tests of a JUnit file of CTest. Prints each test that did not pass, with the end of what it printed, then
"N passed, N failed"; the exit status is 0 only when all passed. A test that was skipped or could not be run has not
passed."""

import sys
import xml.etree.ElementTree

LONGEST_OUTPUT_LINES = 40


def main(path: str, log: str) -> int:
    cases = xml.etree.ElementTree.parse(path).getroot().findall("testcase")
    failed = [case for case in cases if case.get("status") != "run"]
    for case in failed:
        print(f"{case.get('name')}: {case.get('status')}")
        for line in (case.findtext("system-out") or "").splitlines()[-LONGEST_OUTPUT_LINES:]:
            print(f"    {line}")
    if failed:
        print(f"All that they printed is in {log}.")
    print(f"{len(cases) - len(failed)} passed, {len(failed)} failed")
    return 1 if failed or not cases else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], sys.argv[2]))
