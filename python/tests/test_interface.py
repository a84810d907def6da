"""Nothing of the interface is left out, and nothing is called other than the header says."""

from __future__ import annotations

import os
import pathlib
import re
import shutil
import subprocess
import sys

import pytest
from vectors import CALLS, GOLDEN

import quofpalg
from quofpalg import _library

# The caller's hooks, which no Python function can take over, and what there is no need for.
LEFT_OUT = {"tev_quo_malloc", "tev_quo_free", "tev_quo_atan2", "tev_quo_log", "FP_DeleteSpTemplates"}


def test_every_export_is_there_and_compared(root: pathlib.Path) -> None:
    exports = set(re.findall(r"^(?:hook|function|data) (\w+)", (root / "src/exports.txt").read_text(), re.M))
    assert set(CALLS) == set(GOLDEN) == exports - LEFT_OUT
    assert all(getattr(quofpalg, name).__doc__ for name in CALLS)
    assert not [name for name in LEFT_OUT if hasattr(quofpalg, name)]


def test_prototypes_are_those_of_the_header(root: pathlib.Path) -> None:
    kinds = {"int32_t": "i32", "uint8_t": "u8", "uint16_t": "u16", "uint32_t": "u32", "double": "f64", "float": "f32"}

    def kind(declaration: str) -> str:
        return "ptr" if "*" in declaration else kinds.get(declaration.split()[0], "void")

    header = (root / "include/quoFPAlg.h").read_text()
    declared = {}
    for result, name, parameters in re.findall(r"^QUO_API ([\w *]+?)(\w+)\(([^)]*)\);", header, re.M):
        split = [re.sub(r"\s+", " ", parameter) for parameter in parameters.split(",") if parameter != "void"]
        names = [(re.search(r"\w+$", parameter) or [""])[0] for parameter in split]
        declared[name] = (kind(result), list(map(kind, split)), names)
    for line in _library.PROTOTYPES.replace("\n    ", " ").split("\n"):
        if line:
            function = getattr(_library.c, line.split("(")[0].split()[1])
            assert declared[function.name] == (line.split()[0], function.kinds, function.names)
    assert f"#define QUO_VERSION {quofpalg.VERSION}\n" in header
    assert f'version = "{quofpalg.VERSION}"\n' in (root / "python/pyproject.toml").read_text()


def _import(module: pathlib.Path, library: str) -> subprocess.CompletedProcess[str]:
    script = "from quofpalg import _library; print(_library.loaded._name)"
    return subprocess.run(
        [sys.executable, "-c", script], capture_output=True, text=True,
        env={**os.environ, "PYTHONPATH": str(module), "QUOFP_LIBRARY": library})


@pytest.mark.parametrize("library, complaint", [
    ("/nowhere/libquoFPAlg.so", "set QUOFP_LIBRARY.*\n.*/nowhere"),
    ("libm.so.6", "set QUOFP_LIBRARY.*\n.*undefined symbol: FP_GetVersion"),
    ("libpython_other_version.so", "is version 74, this module is for version 75"),
])
def test_wrong_libraries_are_refused(built: pathlib.Path, root: pathlib.Path, library: str, complaint: str) -> None:
    file = built / library
    done = _import(root / "python", str(file) if file.exists() else library)
    assert done.returncode == 1 and re.search("LibraryError: .*" + complaint, done.stderr)


def test_library_beside_the_module_is_found(tmp_path: pathlib.Path, root: pathlib.Path) -> None:
    shutil.copytree(root / "python/quofpalg", tmp_path / "quofpalg")
    beside = tmp_path / "quofpalg/libquoFPAlg.so"
    beside.symlink_to(os.environ["QUOFP_LIBRARY"])
    assert _import(tmp_path, "").stdout.strip() == str(beside)
