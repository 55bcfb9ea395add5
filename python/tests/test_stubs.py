"""The type stubs describe the module as it is: every class, attribute and method they declare
exists, and every public name of the module is declared."""

import ast
from pathlib import Path

import brixobjects4 as brix

STUB = Path(__file__).resolve().parents[1] / "brixobjects4" / "__init__.pyi"


def declared():
    tree = ast.parse(STUB.read_text(encoding="utf-8"))
    names, members = set(), {}
    for node in tree.body:
        if isinstance(node, ast.ClassDef):
            names.add(node.name)
            members[node.name] = {
                item.target.id if isinstance(item, ast.AnnAssign) else item.name
                for item in node.body if isinstance(item, (ast.AnnAssign, ast.FunctionDef))}
        elif isinstance(node, ast.AnnAssign):
            names.add(node.target.id)
        elif isinstance(node, ast.ImportFrom):
            names.update(alias.asname or alias.name for alias in node.names)
    return names, members


def test_every_declared_member_exists():
    _, members = declared()
    missing = [f"{cls}.{name}" for cls, names in members.items() for name in names
               if not hasattr(getattr(brix, cls), name)]
    assert missing == []


def test_every_public_name_is_declared():
    names, _ = declared()
    assert sorted(set(brix.__all__) - names) == []
