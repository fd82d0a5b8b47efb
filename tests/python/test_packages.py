"""The wheel, the Debian package and an installation from the sources, each used as a user would."""

import glob
import os
import pathlib
import re
import shutil
import subprocess
import sys
import zipfile

import pytest
from conftest import ROOT
from test_documentation import chapter

import ovfile
from ovfile._library import candidates

pytestmark = pytest.mark.skipif(os.name == "nt", reason="packages are made on Linux")
LIBRARIES = pathlib.Path(candidates()[0]).parent
PROGRAM = """
import os, ovfile
from ovfile._library import library
print(ovfile.__file__)
print(library().path)
ovfile.write({"CU": [0.2, 0.7], "ROCK": ["ORE", "WASTE"]}, "table.ovt")
print(ovfile.read_pandas("table.ovt", where="CU > 0.5")["ROCK"].tolist())
"""


def run(*command, **options):
    """With nothing of the tests' environment that could stand in for what is missing."""
    kept = {k: v for k, v in os.environ.items() if not k.startswith(("OVFILE_LIB", "PYTHON", "LD_"))}
    kept.update(options.pop("env", {}))
    found = subprocess.run(command, capture_output=True, text=True, env=kept, **options)
    assert found.returncode == 0, found.stdout + found.stderr
    return found.stdout


def new_environment(folder):
    run(sys.executable, "-m", "venv", "--system-site-packages", folder)
    return folder / "bin" / "python"


@pytest.fixture(scope="module")
def wheel(tmp_path_factory):
    folder = tmp_path_factory.mktemp("wheel")
    before = sorted(glob.glob(str(ROOT / "python" / "**"), recursive=True))
    run(ROOT / "python" / "build_wheel.sh", LIBRARIES, folder, env={"PYTHON": sys.executable})
    assert sorted(glob.glob(str(ROOT / "python" / "**"), recursive=True)) == before
    (made,) = folder.iterdir()
    return made


def test_what_the_wheel_is(wheel):
    assert wheel.name == f"ovfile-{ovfile.__version__}-py3-none-linux_{os.uname().machine}.whl"
    names = zipfile.ZipFile(wheel).namelist()
    libraries = ("lib/libovfile.so", "lib/libovfilter.so", "lib/ovfile-components.reg")
    for name in ("__init__.py", "dask.py", "py.typed", *libraries):
        assert f"ovfile/{name}" in names


@pytest.fixture(scope="module")
def environment(wheel, tmp_path_factory):
    """With the wheel and without a network."""
    folder = tmp_path_factory.mktemp("environment")
    python = new_environment(folder)
    run(python, "-m", "pip", "install", "--no-index", "--disable-pip-version-check", wheel)
    return folder


@pytest.mark.parametrize("title, needs", [("Python: numpy and pandas", "pandas"), ("Dask", "dask")])
def test_what_a_new_user_runs_first(environment, tmp_path, title, needs):
    """The first program of a chapter, in a process that knows the wheel alone."""
    pytest.importorskip(needs, reason=f"{needs} is not installed")
    (tmp_path / "samples").symlink_to(ROOT / "samples")
    program = chapter(title)[0] + "print(ovfile.__file__)\n"
    shown = run(environment / "bin" / "python", "-c", program, cwd=tmp_path)
    assert shown.splitlines()[-1].startswith(str(environment))
    assert re.search("^(LK001|SKARN) ", shown, re.MULTILINE)


def test_the_wheel_needs_nothing_else(wheel, tmp_path):
    python = new_environment(tmp_path / "environment")
    run(python, "-m", "pip", "install", "--no-index", "--disable-pip-version-check", wheel)
    package, library, rows = run(python, "-c", PROGRAM, cwd=tmp_path).splitlines()
    assert package.startswith(str(tmp_path / "environment"))
    assert library == str(pathlib.Path(package).parent / "lib" / "libovfile.so")
    assert rows == "['WASTE']"
    run(python, "-m", "pip", "uninstall", "-y", "--disable-pip-version-check", "ovfile")
    assert not pathlib.Path(package).parent.exists()


def test_a_wheel_for_windows(tmp_path):
    """Its libraries are not looked into."""
    libraries = tmp_path / "libraries"
    libraries.mkdir()
    for name in ("OvFile.dll", "OvFilter.dll"):
        (libraries / name).write_bytes(b"MZ")
    run(ROOT / "python" / "build_wheel.sh", libraries, tmp_path / "out", env={"PYTHON": sys.executable})
    (made,) = (tmp_path / "out").iterdir()
    assert made.name == f"ovfile-{ovfile.__version__}-py3-none-win_amd64.whl"
    names = zipfile.ZipFile(made).namelist()
    assert "ovfile/lib/OvFile.dll" in names and "ovfile/lib/OvFilter.dll" in names


def test_a_wheel_without_its_library(tmp_path):
    command = [ROOT / "python" / "build_wheel.sh", tmp_path, tmp_path / "out"]
    found = subprocess.run(command, capture_output=True, text=True)
    assert found.returncode == 1 and "has no libovfile.so" in found.stderr
    assert list((tmp_path / "out").iterdir()) == []


def test_an_installation_from_the_sources(tmp_path):
    """Without a library of its own, which the system has."""
    source = tmp_path / "source"
    shutil.copytree(ROOT / "python", source)
    python = new_environment(tmp_path / "environment")
    run(
        *(python, "-m", "pip", "install", "--no-build-isolation", "--no-index", "--no-deps"),
        *("--disable-pip-version-check", source),
    )
    installed = tmp_path / "installed"
    installed.mkdir()
    for name in ("libovfilter.so", "ovfile-components.reg"):
        shutil.copy(LIBRARIES / name, installed / name)
    shutil.copy(LIBRARIES / "libovfile.so", installed / "libovfile.so.0")
    found = run(python, "-c", PROGRAM, cwd=tmp_path, env={"LD_LIBRARY_PATH": str(installed)})
    assert found.splitlines()[1:] == ["libovfile.so.0", "['WASTE']"]


@pytest.mark.skipif(shutil.which("dpkg-deb") is None, reason="dpkg-deb is missing")
def test_the_debian_package(tmp_path):
    run(ROOT / "python" / "build_deb.sh", tmp_path, env={"PYTHON": sys.executable})
    (made,) = tmp_path.glob("*.deb")
    assert made.name == f"python3-ovfile_{ovfile.__version__}_all.deb"
    depends = run("dpkg-deb", "--field", made, "Depends").strip()
    assert depends == f"python3 (>= 3.9), python3-numpy, libovfile (>= {ovfile.__version__})"
    run("dpkg-deb", "-x", made, tmp_path / "root")
    packages = tmp_path / "root" / "usr" / "lib" / "python3" / "dist-packages"
    found = run(
        *(sys.executable, "-c", PROGRAM),
        cwd=tmp_path,
        env={"PYTHONPATH": str(packages), "OVFILE_LIBRARY": str(LIBRARIES)},
    )
    assert found.splitlines()[0] == str(packages / "ovfile" / "__init__.py")
    assert found.splitlines()[2] == "['WASTE']"
