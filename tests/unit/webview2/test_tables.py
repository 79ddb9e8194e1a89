"""The tables hold everything that the declarations declare: what they left out would not be compared."""

import csv
import pathlib
import re
import unittest

ROOM = pathlib.Path(__file__).parents[3] / "webview2"


def rows(table: str) -> list[dict[str, str]]:
    with open(ROOM / "tables" / table, newline="", encoding="utf-8") as file:
        return list(csv.DictReader(file, delimiter="\t"))


def declarations() -> str:
    return "\n".join(path.read_text("utf-8") for path in sorted((ROOM / "declarations").glob("*.h")))


class Tables(unittest.TestCase):
    def setUp(self):
        self.text = declarations()

    def test_every_interface_with_an_id_is_in_the_table(self):
        declared = re.findall(r'^WEBVIEW2_ID\(\s*(\w+),\s*"([0-9A-Fa-f-]{36})"\)', self.text, re.MULTILINE)
        self.assertEqual(len(declared), len(re.findall(r"^WEBVIEW2_ID\(", self.text, re.MULTILINE)))
        self.assertEqual(sorted(declared), sorted({(row["interface"], row["iid"]) for row in rows("interfaces.tsv")}))

    def test_every_interface_that_is_declared_is_in_the_table(self):
        declared = re.findall(r"^struct DECLSPEC_NOVTABLE (\w+) : public (\w+) \{", self.text, re.MULTILINE)
        self.assertEqual(len(declared), len(re.findall(r"\bpublic I\w+ \{", self.text)))
        self.assertEqual(sorted(declared), sorted({(row["interface"], row["base"]) for row in rows("interfaces.tsv")}))

    def test_every_method_that_is_declared_is_in_the_table(self):
        declared = re.findall(r"\bvirtual\s+HRESULT\s+STDMETHODCALLTYPE\s+(\w+)\(", self.text)
        self.assertEqual(len(declared), len(re.findall(r"\bvirtual\b", self.text)))
        self.assertEqual(sorted(declared), sorted(row["method"] for row in rows("interfaces.tsv")))

    def test_every_enumerator_that_is_declared_is_in_the_table(self):
        declared = []
        for name, body in re.findall(r"^enum (\w+) \{(.*?)\};", self.text, re.MULTILINE | re.DOTALL):
            declared += [(name, *enumerator.groups()) for enumerator in re.finditer(r"(\w+) = (\w+),", body)]
        self.assertEqual(len(declared), len(re.findall(r"^\s+COREWEBVIEW2_\w+ =", self.text, re.MULTILINE)))
        self.assertEqual(declared, [(row["enum"], row["name"], row["value"]) for row in rows("enums.tsv")])

    def test_every_id_belongs_to_one_interface(self):
        pairs = {(row["iid"], row["interface"]) for row in rows("interfaces.tsv")}
        self.assertEqual(len(pairs), len({iid for iid, _ in pairs}))
        self.assertEqual(len(pairs), len({interface for _, interface in pairs}))


if __name__ == "__main__":
    unittest.main()
