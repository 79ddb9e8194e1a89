"""Writes a header with classes that implement every interface of the tables by answering E_NOTIMPL.

Doubles and test runtimes derive from NotImplemented<Interface> and override what they have:
    not_implemented.py interfaces.tsv OUTPUT
"""
import csv
import sys
from pathlib import Path

HEADER = """// Made by webview2/tables/not_implemented.py; do not edit.
#pragma once

#include "WebView2.h"

namespace webview2 {

template <typename Interface>
struct NotImplementedOf;

/// Every call of `Interface` and its bases answers E_NOTIMPL; IUnknown's three stay abstract.
template <typename Interface>
using NotImplemented = typename NotImplementedOf<Interface>::Type;
"""


def read_interfaces(path):
    """Interface name -> (base, [(method, parameters)]), in the order of the table."""
    interfaces = {}
    with open(path, newline="", encoding="utf-8") as table:
        for row in csv.DictReader(table, delimiter="\t"):
            _, methods = interfaces.setdefault(row["interface"], (row["base"], []))
            methods.append((row["method"], row["parameters"]))
    return interfaces


def parameter_types(parameters):
    """The C++ parameter list without names: "in LPCWSTR uri; out BOOL* value" -> "LPCWSTR, BOOL*"."""
    return ", ".join(p.strip().split(" ", 1)[1].rsplit(" ", 1)[0] for p in parameters.split(";") if p.strip())


def stub_name(interface):
    return interface.replace("ICoreWebView2", "CoreWebView2") + "Stub"


def stub_class(interface, base, methods):
    parent = "Interface" if base == "IUnknown" else f"{stub_name(base)}<Interface>"
    lines = ["", "template <typename Interface>", f"class {stub_name(interface)} : public {parent} {{", "  public:"]
    for method, parameters in methods:
        types = parameter_types(parameters)
        lines.append(f"    HRESULT STDMETHODCALLTYPE {method}({types}) override {{ return E_NOTIMPL; }}")
    lines += ["};", "template <>", f"struct NotImplementedOf<{interface}> {{",
              f"    using Type = {stub_name(interface)}<{interface}>;", "};"]
    return "\n".join(lines)


def bases_first(interfaces):
    done = []

    def visit(name):
        if name in interfaces and name not in done:
            visit(interfaces[name][0])
            done.append(name)

    for name in interfaces:
        visit(name)
    return done


def main():
    interfaces = read_interfaces(sys.argv[1])
    classes = [stub_class(name, *interfaces[name]) for name in bases_first(interfaces)]
    text = HEADER + "\n".join(classes) + "\n\n} // namespace webview2\n"
    Path(sys.argv[2]).write_text(text, encoding="utf-8")


if __name__ == "__main__":
    main()
