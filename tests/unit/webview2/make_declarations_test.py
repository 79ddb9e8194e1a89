"""Writes a test that the header declares what the tables say: one case an interface, one case an enumeration.

    make_declarations_test.py interfaces.tsv enums.tsv OUTPUT
"""

import csv
import sys
from itertools import groupby
from pathlib import Path

HEADER = """// Made by tests/unit/webview2/make_declarations_test.py; do not edit.
#include "WebView2.h"

#include "tests/unit/webview2/declared_interface.h"

using namespace webview2_test;
"""


def read_table(path: str) -> list[dict[str, str]]:
    with open(path, newline="", encoding="utf-8") as table:
        return list(csv.DictReader(table, delimiter="\t"))


def parameter_types(parameters: str) -> str:
    """Without direction and name: "in LPCWSTR uri; out BOOL* value" -> "LPCWSTR, BOOL*"."""
    return ", ".join(p.strip().split(" ", 1)[1].rsplit(" ", 1)[0] for p in parameters.split(";") if p.strip())


def interface_case(name: str, rows: list[dict[str, str]]) -> str:
    """Every row counts: an id or base that only one of them has wrong is found."""
    lines = ["", f"TEST(InterfaceTable, {name}) {{"]
    for iid in sorted({row["iid"] for row in rows}):
        lines.append(f'    ExpectId(__uuidof({name}), L"{iid}");')
    for row in rows:
        method = row["method"]
        lines.append(f"    Taking<{parameter_types(row['parameters'])}>::ExpectMethod<{name}>(")
        lines.append(f'        "{method}", &{name}::{method}, {row["slot"]});')
    slots = max(int(row["slot"]) for row in rows) + 1
    for base in sorted({row["base"] for row in rows}):
        lines.append(f"    ExpectExtent<{name}, {base}>({slots});")
    return "\n".join(lines + ["}"])


def enumeration_case(name: str, rows: list[dict[str, str]]) -> str:
    lines = ["", f"TEST(EnumerationTable, {name}) {{", f"    EXPECT_EQ(sizeof({name}), 4u);"]
    for row in rows:
        lines.append(f"    EXPECT_TRUE((std::is_same_v<decltype({row['name']}), {name}>));")
        lines.append(f"    EXPECT_EQ(static_cast<long long>({row['name']}), {row['value']});")
    return "\n".join(lines + ["}"])


def cases(rows: list[dict[str, str]], column: str, case) -> list[str]:
    by_name = sorted(rows, key=lambda row: row[column])
    return [case(name, list(group)) for name, group in groupby(by_name, key=lambda row: row[column])]


def main() -> None:
    interfaces, enumerations = read_table(sys.argv[1]), read_table(sys.argv[2])
    text = "\n".join(
        [HEADER]
        + cases(interfaces, "interface", interface_case)
        + cases(enumerations, "enum", enumeration_case)
    )
    Path(sys.argv[3]).write_text(text + "\n", encoding="utf-8")


if __name__ == "__main__":
    main()
