"""The package holds what the public headers say, and finds the library where it should."""

import ctypes
import ctypes.util
import os
import re
import shutil
import subprocess
import sys

import pytest
from conftest import ROOT

import ovfile
from ovfile import _interfaces as known
from ovfile import _kinds, _library

HEADERS = ROOT / "include" / "ovfile"
INTERFACES = [
    ("ovfile.h", "IOvTable", known.TABLE, 7),
    ("ovfile.h", "IOvSchema", known.SCHEMA, 7),
    ("ovfile.h", "IOvTableMaintenance", known.MAINTENANCE, 3),
    ("stream.h", "IOvTableStream", known.STREAM, 3),
    ("filter.h", "IOvFilter", known.FILTER, 3),
    ("progress.h", "IOvProgressSource", known.PROGRESS_SOURCE, 3),
]


def header(name):
    return (HEADERS / name).read_text(encoding="utf-8")


@pytest.mark.parametrize("file, name, methods, first", INTERFACES, ids=[row[1] for row in INTERFACES])
def test_slots(file, name, methods, first):
    body = re.search(rf"struct {name} : \w+ \{{(.*?)\n\}};", header(file), re.DOTALL).group(1)
    declared = re.findall(r"OVFILE_METHOD (\w+)\(([^)]*)\)", body)
    slots = {method: first + place for place, (method, _) in enumerate(declared)}
    counts = {method: len([a for a in given.split(",") if a.strip()]) for method, given in declared}
    for method, (slot, arguments) in methods.items():
        if method not in ("QueryInterface", "Release"):
            assert (slot, len(arguments)) == (slots[method], counts[method]), method


IDENTIFIERS = [
    ("ovfile.h", "CLSID_OvTable", known.TABLE_CLASS),
    ("ovfile.h", "CLSID_OvSchema", known.SCHEMA_CLASS),
    ("ovfile.h", "IID_IOvTable", known.TABLE_ID),
    ("ovfile.h", "IID_IOvSchema", known.SCHEMA_ID),
    ("ovfile.h", "IID_IOvTableMaintenance", known.MAINTENANCE_ID),
    ("stream.h", "IID_IOvTableStream", known.STREAM_ID),
    ("filter.h", "CLSID_OvFilter", known.FILTER_CLASS),
    ("filter.h", "IID_IOvFilter", known.FILTER_ID),
    ("progress.h", "IID_IOvProgress", known.PROGRESS_ID),
    ("progress.h", "IID_IOvProgressSource", known.PROGRESS_SOURCE_ID),
]


@pytest.mark.parametrize("file, name, value", IDENTIFIERS, ids=[row[1] for row in IDENTIFIERS])
def test_identifiers(file, name, value):
    numbers = re.search(rf"\b{name}\{{(.*?)\}}\}};", header(file), re.DOTALL).group(1)
    first, second, third, *rest = [int(n, 16) for n in re.findall(r"0x[0-9A-Fa-f]+", numbers)]
    expected = first.to_bytes(4, "little") + second.to_bytes(2, "little") + third.to_bytes(2, "little")
    assert bytes(value.bytes) == expected + bytes(rest)


def test_structures():
    assert ctypes.sizeof(known.StreamRequest) == (32 if ctypes.sizeof(ctypes.c_void_p) == 8 else 28)
    assert ctypes.sizeof(known.TableFacts) == 248
    assert ctypes.sizeof(known.Variant) == 8 + 2 * ctypes.sizeof(ctypes.c_void_p)


def test_kinds_of_table():
    """Every enumerator has words."""
    body = re.search(r"enum OvFileType : LONG \{(.*?)\};", header("ovfile.h"), re.DOTALL).group(1)
    values = [int(value, 0) for value in re.findall(r"= (0x[0-9A-Fa-f]+|\d+)", body)]
    for value in set(values) - {_kinds.GENERIC}:
        assert not _kinds.kind_words(value | _kinds.GENERIC).startswith("kind 0x")
    assert _kinds.kind_words(0x40004000) == "kind 0x4000"


def test_the_version_is_the_projects():
    version = re.search(r"project\(OvFile VERSION (\S+)", (ROOT / "CMakeLists.txt").read_text()).group(1)
    assert ovfile.__version__ == version


def test_everything_public_is_told_about():
    for name in ovfile.__all__:
        if name != "__version__":
            assert getattr(ovfile, name).__doc__, name
    for kind in (ovfile.Table, ovfile.Schema, ovfile.Column):
        for name, member in vars(kind).items():
            if not name.startswith("_") and callable(member) and name not in ("description",):
                assert member.__doc__, f"{kind.__name__}.{name}"


# Finding the library.


def run(program, **environment):
    cleared = {k: v for k, v in os.environ.items() if not k.startswith("OVFILE_LIB")}
    found = subprocess.run(
        [sys.executable, "-c", program],
        capture_output=True,
        text=True,
        cwd="/",
        env={**cleared, "PYTHONPATH": str(ROOT / "python"), **environment},
    )
    return found.stdout.strip() or found.stderr.strip().splitlines()[-1]


WHERE = "import ovfile; from ovfile._library import library; print(library().path)"
FOLDER = os.path.dirname(_library.candidates()[0])


@pytest.mark.parametrize("name", [FOLDER, os.path.join(FOLDER, _library.NAMES[0])])
def test_a_library_that_the_environment_names(name):
    assert os.path.dirname(run(WHERE, OVFILE_LIBRARY=name)) == FOLDER


def test_a_wrong_name_in_the_environment():
    expected = "ovfile._errors.Error: OVFILE_LIBRARY names /nowhere, where there is no library"
    assert run(WHERE, OVFILE_LIBRARY="/nowhere") == expected


def test_something_else_that_the_environment_names():
    assert "the OvFile library was not found" in run(WHERE, OVFILE_LIBRARY=__file__)
    other = ctypes.util.find_library("m")
    if other and os.path.isfile(f"/lib/x86_64-linux-gnu/{other}"):
        assert "no class objects" in run(WHERE, OVFILE_LIBRARY=f"/lib/x86_64-linux-gnu/{other}")


@pytest.mark.skipif(os.name == "nt", reason="the package of Windows has its library beside it")
def test_a_library_beside_the_package(tmp_path):
    """It comes before one that is installed, and brings its evaluator."""
    shutil.copytree(ROOT / "python" / "ovfile", tmp_path / "ovfile")
    os.makedirs(tmp_path / "ovfile" / "lib")
    for name in ("libovfile.so", "libovfilter.so", "ovfile-components.reg"):
        shutil.copy(os.path.join(FOLDER, name), tmp_path / "ovfile" / "lib" / name)
    program = WHERE + "; from ovfile._library import library; print(library().evaluator() is not None)"
    found = run(program, PYTHONPATH=str(tmp_path))
    assert found.splitlines() == [str(tmp_path / "ovfile" / "lib" / "libovfile.so"), "True"]


def test_an_installed_library(tmp_path):
    """Found by the system's loader, by the name that programs link against too."""
    shutil.copy(os.path.join(FOLDER, "libovfile.so"), tmp_path / "libovfile.so.0")
    assert run(WHERE, LD_LIBRARY_PATH=str(tmp_path)) == "libovfile.so.0"


def test_the_package_is_imported_without_a_library():
    """Only its use needs one."""
    program = "import ovfile; print(ovfile.Column.parse('BHID:8').width)"
    assert run(program, OVFILE_LIBRARY="/nowhere") == "8"


def test_the_package_works_without_pandas(tmp_path):
    program = f"""
import sys
sys.modules["pandas"] = None
import ovfile
ovfile.write({{"A": [1, None], "T": ["x", None]}}, {str(tmp_path / "table.ovt")!r})
with ovfile.open({str(tmp_path / "table.ovt")!r}) as table:
    print(table["A"].tolist(), table["T"].tolist())
"""
    assert run(program, OVFILE_LIBRARY=FOLDER) == "[1.0, nan] ['x', '']"
