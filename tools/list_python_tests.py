"""Prints the dotted name of every unittest method below a folder of the repository, one a line, for CTest."""

import ast
import pathlib
import sys


def test_names(module: pathlib.Path, dotted: str) -> list[str]:
    classes = [node for node in ast.parse(module.read_text("utf-8")).body if isinstance(node, ast.ClassDef)]
    return [
        f"{dotted}.{node.name}.{item.name}"
        for node in classes
        for item in node.body
        if isinstance(item, ast.FunctionDef) and item.name.startswith("test_")
    ]


def main(root: str, folder: str) -> None:
    for module in sorted(pathlib.Path(root, folder).glob("test_*.py")):
        dotted = ".".join(module.relative_to(root).with_suffix("").parts)
        print("\n".join(test_names(module, dotted)))


if __name__ == "__main__":
    main(sys.argv[1], sys.argv[2])
