"""kelda.dll as a file: what it exports, what it needs, and what it says of itself."""

import os
import re
import struct
import subprocess
import unittest
from pathlib import Path

LIBRARY = Path(os.environ["KELDA_BIN_DIR"], "kelda.dll")
OBJDUMP = os.environ["KELDA_OBJDUMP"]
CXXFILT = OBJDUMP.replace("objdump", "c++filt")
SYSTEM_MODULES = {"advapi32.dll", "credui.dll", "gdi32.dll", "kernel32.dll", "msvcrt.dll", "ole32.dll",
                  "oleaut32.dll", "urlmon.dll", "user32.dll", "wininet.dll"}
BACKENDS = ("ZanWebBrowserEdge", "ZanWebBrowserIE")
BROWSERS = ("ZanWebBrowser", *BACKENDS)
HOST_MODULES = {"host_utility.dll", "host_toolkit.dll"}


class LibraryFile(unittest.TestCase):
    def setUp(self) -> None:
        self.headers = subprocess.run([OBJDUMP, "-p", str(LIBRARY)], check=True,
                                      capture_output=True, text=True).stdout

    def test_exports_exactly_what_its_headers_declare(self) -> None:
        table = self.headers.partition("[Ordinal/Name Pointer] Table")[2]
        mangled = re.findall(r"\[ *\d+\] (\S+)", table.partition("\n\n")[0])
        demangled = subprocess.run([CXXFILT, "-n", *mangled], check=True, capture_output=True, text=True).stdout
        names = {re.sub(r"\(.*", "", name) for name in demangled.splitlines()}
        expected = {"kelda::ApplyBasicAuthentication", "kelda::AuthenticateServer", "kelda::ZanWebBrowser::Factory"}
        for browser in BROWSERS:
            plain = f"kelda::{browser}"
            expected |= {f"vtable for {plain}", f"typeinfo for {plain}", f"{plain}::~{browser}"}
        for browser in BACKENDS:
            plain = f"kelda::{browser}"
            expected |= {f"{plain}::{name}" for name in (browser, "InitializeCom", "Create", "Destroy", "Resize",
                                                         "GetWindowHandle")}
        self.assertEqual(names, expected)

    def test_needs_nothing_but_windows_and_the_host(self) -> None:
        needed = {name.lower() for name in re.findall(r"DLL Name: (\S+)", self.headers)}
        self.assertEqual(needed - SYSTEM_MODULES, HOST_MODULES)

    def test_has_a_version_resource(self) -> None:
        content = LIBRARY.read_bytes()
        start = content.find(struct.pack("<I", 0xFEEF04BD))
        self.assertNotEqual(start, -1, "there is a fixed version block")
        most, least = struct.unpack_from("<II", content, start + 8)
        self.assertEqual((most >> 16, most & 0xFFFF, least >> 16, least & 0xFFFF), (0, 1, 0, 0))
        self.assertIn("kelda.dll".encode("utf-16-le"), content)
