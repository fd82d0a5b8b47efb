"""What takes a file's place: its rights, what stands under its name, and what others do to it meanwhile."""

import errno
import os
import stat
import struct
import tempfile
import time

import numpy as np
import pytest
from conftest import child, without_new_files

import ovfile
from ovfile import _rebuilding, _replacement, _writing

linux = pytest.mark.skipif(os.name == "nt", reason="rights and devices are Linux'")


# Others who change the table while a column is added.

APPEND = """
import sys, ovfile
with ovfile.open(sys.argv[1], "r+") as table:
    table.append({"A": [-7.0]})
with ovfile.open(sys.argv[1]) as table:
    print(len(table))
"""
REPLACE = """
import os, sys, ovfile
ovfile.write({"A": [0.0, 1.0, 5.0]}, sys.argv[1] + ".other")
os.replace(sys.argv[1] + ".other", sys.argv[1])
print(3)
"""
IMPLICIT = """
import sys, ovfile
with ovfile.open(sys.argv[1], "r+") as table:
    table.add_column("SG", default=2.5, implicit=True)
    print(len(table))
"""


def before(function, work):
    """`function`, before which something happens."""

    def both(*arguments, **options):
        work()
        return function(*arguments, **options)

    return both


MOMENTS = {
    "as it begins": (_rebuilding, "held_signals"),
    "as its header is copied": (_rebuilding, "_without_rows"),
    "while rows are written": (_rebuilding, "append_stream"),
    "at the end": (_rebuilding, "_put_in_place"),
    "as the place is taken": (_replacement.Replacement, "take_place"),
}


@pytest.mark.parametrize(
    "moment, script, rows",
    [(moment, APPEND, 4) for moment in MOMENTS]
    # One that was replaced before anything was read is as good as any.
    + [(moment, REPLACE, 3) for moment in list(MOMENTS)[1:]],
)
def test_a_table_that_others_change_gets_no_column(path, monkeypatch, moment, script, rows):
    ovfile.write({"A": [0.0, 1.0, 2.0]}, path)
    where, name = MOMENTS[moment]
    seen = []
    monkeypatch.setattr(where, name, before(getattr(where, name), lambda: seen.append(child(script, path))))
    with ovfile.open(path, "r+") as table:
        with pytest.raises(ovfile.Error, match="changed elsewhere") as caught:
            table.add_column("B", [1, 2, 3])
        assert caught.value.file == str(path)
        monkeypatch.undo()
    assert seen == [str(rows)]
    with ovfile.open(path) as table:
        assert (len(table), table.columns, table["A"][-1]) == (rows, ["A"], {4: -7.0, 3: 5.0}[rows])
    assert os.listdir(path.parent) == [path.name]


def test_a_change_at_the_time_of_the_last_write_is_in_the_new_table(path, monkeypatch):
    """Where the clock stands still, as it does for some milliseconds on many systems: until it goes on all is read."""
    ovfile.write({"A": [1.0, 2.0]}, path)
    moment = time.time_ns()
    os.utime(path, ns=(moment, moment))
    slept = []

    def change(seconds):
        slept.append(seconds)
        with open(path, "r+b") as file:
            file.seek(4096)
            file.write(struct.pack("<d", 77.0))
        os.utime(path, ns=(moment, moment))

    with ovfile.open(path, "r+") as table:
        moment = time.time_ns()
        os.utime(path, ns=(moment, moment))
        monkeypatch.setattr(_replacement.time, "sleep", change)
        table.add_column("B", [4.0, 5.0])
        assert slept
        assert table["A"].tolist() == [77, 2]


def test_a_table_that_was_changed_before(path):
    """The open table does not know of the row that came behind it."""
    ovfile.write({"A": [0.0, 1.0, 2.0]}, path)
    with ovfile.open(path, "r+") as table:
        assert child(APPEND, path) == "4"
        with pytest.raises(ovfile.Error, match="changed elsewhere"):
            table.add_column("B", [1, 2, 3])
    with ovfile.open(path, "r+") as table:
        assert table["A"].tolist() == [0, 1, 2, -7]
        table.add_column("B", [1, 2, 3, 4])
        assert table["B"].tolist() == [1, 2, 3, 4]


@pytest.mark.parametrize("kind", [{"default": 2.5}, {"default": "x", "width": 8}])
def test_a_column_in_the_header_loses_no_rows_of_others(path, kind):
    """The header that is written tells how many rows there are."""
    ovfile.write({"A": [0.0, 1.0, 2.0]}, path)
    with ovfile.open(path, "r+") as table:
        assert child(APPEND.replace("[-7.0]", "[-7.0] * 300"), path) == "303"
        with pytest.raises(ovfile.Error, match="changed elsewhere") as caught:
            table.add_column("SG", implicit=True, **kind)
        assert caught.value.file == str(path)
    with ovfile.open(path) as table:
        assert (table.columns, table["A"].tolist()) == (["A"], [0, 1, 2] + [-7] * 300)


def test_a_column_in_the_header_beside_another_one(path):
    ovfile.write({"A": [0.0, 1.0, 2.0]}, path)
    with ovfile.open(path, "r+") as table:
        assert child(IMPLICIT, path) == "3"
        with pytest.raises(ovfile.Error, match="changed elsewhere"):
            table.add_column("B", default=1, implicit=True)
    with ovfile.open(path) as table:
        assert (table.columns, table["SG"].tolist()) == (["A", "SG"], [2.5] * 3)


def test_a_column_in_the_header_behind_rows_of_ones_own(path):
    with ovfile.create(path, ["A"]) as table:
        table.add_column("X", default=1, implicit=True)
        table.append({"A": [1, 2, 3]})
        table.add_column("SG", default=2.5, implicit=True)
        table.append({"A": [4]})
    with ovfile.open(path) as table:
        assert (table["A"].tolist(), table["SG"].tolist()) == ([1, 2, 3, 4], [2.5] * 4)


def test_a_column_that_came_before(path):
    ovfile.write({"A": [0.0, 1.0, 2.0]}, path)
    with ovfile.open(path, "r+") as table:
        assert child(IMPLICIT, path) == "3"
        with pytest.raises(ovfile.Error, match="changed elsewhere"):
            table.add_column("B", [1, 2, 3])
    with ovfile.open(path) as table:
        assert table.columns == ["A", "SG"]


def test_the_table_is_usable_after_a_refusal(path, monkeypatch):
    ovfile.write({"A": [0.0, 1.0, 2.0]}, path)
    with ovfile.open(path, "r+") as table:
        with ovfile.open(path), pytest.raises(ovfile.Error, match="open somewhere else"):
            table.add_column("B", [1, 2, 3])
        assert table["A"].tolist() == [0, 1, 2]
        table.append({"A": [3]})
        table.add_column("B", [1, 2, 3, 4])
        assert table["B"].tolist() == [1, 2, 3, 4]


def test_a_table_that_cannot_be_opened_again(path, monkeypatch):
    """The first failure is told, the other one behind it."""
    ovfile.write({"A": [0.0, 1.0, 2.0]}, path)

    def vanish(*arguments):
        os.rename(path, path.with_suffix(".gone"))
        raise ovfile.Error("the first failure")

    monkeypatch.setattr(_replacement.Replacement, "take_place", vanish)
    with ovfile.open(path, "r+") as table:
        with pytest.raises(ovfile.Error) as caught:
            table.add_column("B", [1, 2, 3])
        assert caught.value.message.startswith("the first failure; the table cannot be opened again: ")
        with pytest.raises(ovfile.Error):
            len(table)
    assert os.listdir(path.parent) == [path.stem + ".gone"]


@pytest.mark.parametrize(
    "work",
    [
        lambda table: table.sort("A", ascending=False),
        lambda table: table.add_column("B"),
        lambda table: table.add_column("B", [1, 2, 3]),
    ],
)
def test_a_table_that_is_open_elsewhere(path, work):
    ovfile.write({"A": [0.0, 1.0, 2.0]}, path)
    with ovfile.open(path, "r+") as table, ovfile.open(path) as other:
        with pytest.raises(ovfile.Error, match="the table is open somewhere else and cannot be replaced"):
            work(table)
        assert len(table) == len(other) == 3
    assert os.listdir(path.parent) == [path.name]


def test_an_open_table_is_refused_before_the_work(path, monkeypatch):
    ovfile.write({"A": [1]}, path)
    monkeypatch.setattr(_writing, "append_rows", None)
    with ovfile.open(path), pytest.raises(ovfile.Error, match="open somewhere else"):
        ovfile.write({"A": [2]}, path)
    assert os.listdir(path.parent) == [path.name]


@linux
@pytest.mark.parametrize("reason", [errno.EBADF, errno.ENOLCK, errno.EOPNOTSUPP])
def test_a_file_system_without_locks(path, monkeypatch, reason):
    ovfile.write({"A": [1]}, path)

    def refuse(*arguments):
        raise OSError(reason, os.strerror(reason))

    monkeypatch.setattr(_replacement.fcntl, "flock", refuse)
    ovfile.write({"A": [2, 3]}, path)
    with ovfile.open(path, "r+") as table:
        table.add_column("B", [4, 5])
        assert (table["A"].tolist(), table["B"].tolist()) == ([2, 3], [4, 5])
    assert os.listdir(path.parent) == [path.name]


@linux
@pytest.mark.parametrize("change", ["write", "add_column"])
def test_nobody_is_turned_away_while_the_disk_is_waited_for(path, monkeypatch, change):
    """A sync may take long, and who opens the table meanwhile does not wait for it."""
    ovfile.write({"A": np.arange(300_000.0)}, path)
    seen = []

    def look():
        with ovfile.open(path) as table:
            seen.append(len(table))

    monkeypatch.setattr(os, "fsync", before(os.fsync, look))
    CHANGES[change](path)
    assert seen and set(seen) == {300_000}


# What stands under the name.


@linux
@pytest.mark.parametrize("how", ["plain", "link"])
@pytest.mark.parametrize("what", ["pipe", "folder", "device"])
def test_what_is_no_file_is_left_alone(tmp_path, what, how):
    path = tmp_path / "table.ovt"
    if what == "pipe":
        os.mkfifo(path)
    elif what == "folder":
        path.mkdir()
    else:
        try:
            os.mknod(path, stat.S_IFCHR | 0o600, os.makedev(1, 3))
        except PermissionError:
            pytest.skip("only a privileged user makes devices")
    kind = stat.S_IFMT(path.stat().st_mode)
    name = path
    if how == "link":
        name = tmp_path / "link.ovt"
        name.symlink_to(path)
    before_it = sorted(os.listdir(tmp_path))
    for work in (
        lambda: ovfile.write({"A": [1]}, name),
        lambda: ovfile.write({"A": object()}, name),  # before any work
        lambda: ovfile.create(name, ["A"], overwrite=True),
    ):
        with pytest.raises(ovfile.Error, match="is not a regular file") as caught:
            work()
        assert caught.value.file == str(name)
    assert stat.S_IFMT(path.stat().st_mode) == kind
    assert sorted(os.listdir(tmp_path)) == before_it


@linux
def test_a_link_that_leads_nowhere_yet(tmp_path):
    (tmp_path / "link.ovt").symlink_to(tmp_path / "table.ovt")
    ovfile.write({"A": [1]}, tmp_path / "link.ovt")
    assert (tmp_path / "link.ovt").is_symlink() and not (tmp_path / "table.ovt").is_symlink()
    (tmp_path / "round.ovt").symlink_to("round.ovt")
    with pytest.raises(ovfile.Error, match="cannot be written: "):
        ovfile.write({"A": [1]}, tmp_path / "round.ovt")


# Rights.


def attributes(path):
    return {name: os.getxattr(path, name) for name in os.listxattr(path) if name.startswith("user.")}


@pytest.fixture
def private(path):
    """A table that its owner alone may read, with a note, and where that can be another owner and group."""
    ovfile.write({"A": np.arange(300_000.0)}, path)
    path.chmod(0o600)
    try:
        os.setxattr(path, "user.note", b"ours")
    except OSError:
        pytest.skip("the file system keeps no attributes")
    if os.geteuid() == 0:
        os.chown(path, 1234, 2345)
    return path


CHANGES = {
    "write": lambda path: ovfile.write({"A": np.arange(300_000.0)}, path),
    "add_column": lambda path: changed(path, lambda table: table.add_column("B", np.arange(300_000))),
}


def changed(path, work):
    with ovfile.open(path, "r+") as table:
        work(table)


@linux
@pytest.mark.parametrize("mode", [0o600, 0o640, 0o604])
@pytest.mark.parametrize("change", CHANGES)
def test_rights_stay(private, change, mode):
    private.chmod(mode)
    facts = private.stat()
    CHANGES[change](private)
    now = private.stat()
    assert now.st_ino != facts.st_ino
    assert (now.st_mode, now.st_uid, now.st_gid) == (facts.st_mode, facts.st_uid, facts.st_gid)
    assert attributes(private) == {"user.note": b"ours"}


@linux
@pytest.mark.parametrize("change", CHANGES)
def test_nobody_else_reads_the_copy(private, monkeypatch, change):
    """Looked at before and behind the writing of the rows, and before it takes the old file's place."""
    if os.geteuid() == 0:
        os.chown(private, 1234, 2345)
    seen = []

    def look():
        names = [name for name in os.listdir(private.parent) if name.startswith(".NEW")]
        seen.extend(stat.S_IMODE(os.stat(private.parent / name).st_mode) for name in names)

    private.chmod(0o664)
    for where, name in (
        (_writing, "append_stream"),
        (_rebuilding, "append_stream"),
        (_replacement.Replacement, "take_place"),
        (_replacement, "carry_rights"),
    ):
        monkeypatch.setattr(where, name, before(getattr(where, name), look))
    CHANGES[change](private)
    assert seen == [0o600] * 3
    assert stat.S_IMODE(private.stat().st_mode) == 0o664


def test_nothing_stays_beside_a_table_that_may_only_be_read(path, monkeypatch):
    """As on Windows, which neither replaces nor removes such files."""
    ovfile.write({"A": [1]}, path)
    path.chmod(0o444)
    remove = os.unlink

    def refuse(*arguments):
        raise PermissionError(errno.EACCES, "Access is denied")

    def unlink(name):
        if not os.stat(name).st_mode & stat.S_IWUSR:
            refuse()
        remove(name)

    monkeypatch.setattr(os, "replace", refuse)
    monkeypatch.setattr(os, "unlink", unlink)
    with pytest.raises(ovfile.Error, match="cannot be written: Access is denied"):
        ovfile.write({"A": [2]}, path)
    assert os.listdir(path.parent) == [path.name]
    with ovfile.open(path) as table:
        assert table["A"].tolist() == [1]


@linux
def test_a_new_file_has_the_rights_of_new_files(tmp_path):
    before_it = os.umask(0o027)
    try:
        ovfile.write({"A": [1]}, tmp_path / "table.ovt")
    finally:
        os.umask(before_it)
    assert stat.S_IMODE((tmp_path / "table.ovt").stat().st_mode) == 0o640


OTHER_USER = """
import os, sys, ovfile
path = sys.argv[1]
ovfile.open(path).close()  # the library is loaded
os.setgroups([]); os.setgid(65534); os.setuid(65534)
if sys.argv[2] == "write":
    ovfile.write({"A": [1.0, 2.0]}, path)
else:
    with ovfile.open(path, "r+") as table:
        table.add_column("B", [1] * len(table))
facts = os.stat(path)
print(oct(facts.st_mode & 0o7777), facts.st_uid, facts.st_gid)
"""
LIST = struct.pack("<I" + "HHI" * 5, 2, 1, 6, 0, 2, 6, 4321, 4, 0, 0, 16, 6, 0, 32, 6, 0)


@pytest.fixture
def shared():
    """A table of somebody's that everybody may write, where everybody gets to."""
    if os.geteuid() != 0:
        pytest.skip("only a privileged user becomes another one")
    with tempfile.TemporaryDirectory() as folder:
        os.chmod(folder, 0o777)
        path = os.path.join(folder, "table.ovt")
        ovfile.write({"A": [1.0, 2.0]}, path)
        os.chown(path, 1234, 2345)
        os.chmod(path, 0o666)
        yield path


@linux
@pytest.mark.parametrize("change", CHANGES)
@pytest.mark.parametrize("listed", [False, True])
def test_a_shared_table_is_its_writers_alone(shared, change, listed):
    """Somebody else writes it, who cannot leave it to its owner and group."""
    if listed:
        try:
            os.setxattr(shared, "system.posix_acl_access", LIST)
        except OSError:
            pytest.skip("the file system keeps no access lists")
    assert child(OTHER_USER, shared, change) == "0o600 65534 65534"
    assert "system.posix_acl_access" not in os.listxattr(shared)


@linux
@pytest.mark.parametrize(
    "mode, expected",
    [(0o664, 0o600), (0o666, 0o600), (0o2777, 0o700), (0o640, 0o600), (0o604, 0o600), (0o4755, 0o700)],
)
def test_no_rights_are_won_where_the_group_cannot_stay(private, mode, expected):
    """As a user who does not belong to the file's group."""
    if os.geteuid() != 0:
        pytest.skip("only a privileged user gives a file to another group")
    os.chown(private, 65534, 2345)
    private.chmod(mode)
    private.parent.chmod(0o777)
    script = """
import os, sys, ovfile
os.chdir(sys.argv[1])
table = ovfile.open("table.ovt"); table.close()
os.setgroups([]); os.setgid(65534); os.setuid(65534)
from ovfile._file_rights import carry_rights
old, new = os.open("table.ovt", os.O_RDONLY), os.open("new.ovt", os.O_CREAT | os.O_EXCL | os.O_RDWR, 0o600)
carry_rights(old, "table.ovt", new, "new.ovt")
print(oct(os.fstat(new).st_mode & 0o7777), os.fstat(new).st_gid)
"""
    assert child(script, private.parent) == f"{oct(expected)} 65534"


# Reasons.


def test_a_folder_that_is_not_there(tmp_path):
    for work in (
        lambda path: ovfile.write({"A": [1]}, path),
        lambda path: ovfile.create(path, ["A"]),
        lambda path: ovfile.create(path, ["A"], overwrite=True),
    ):
        with pytest.raises(ovfile.Error, match="cannot be made: No such file or directory|system cannot find"):
            work(tmp_path / "missing" / "table.ovt")


@linux
def test_a_folder_without_rights(tmp_path):
    if os.geteuid() == 0:
        pytest.skip("a privileged user may write everywhere")
    ovfile.write({"A": [1]}, tmp_path / "old.ovt")
    tmp_path.chmod(0o500)
    try:
        with pytest.raises(ovfile.Error, match="cannot be made: Permission denied"):
            ovfile.write({"A": [1]}, tmp_path / "table.ovt")
        with pytest.raises(ovfile.Error, match="no file can be made in its folder: Permission denied"):
            ovfile.write({"A": [1]}, tmp_path / "old.ovt")
    finally:
        tmp_path.chmod(0o700)


@pytest.mark.parametrize("mode", [[], None, {}, 5, b"r"])
def test_modes_that_are_no_texts(path, mode):
    ovfile.write({"A": [1]}, path)
    with pytest.raises(ovfile.Error, match='mode is "r" or "r\\+"'):
        ovfile.open(path, mode)
    assert without_new_files(path.parent)


@linux
def test_a_link_under_the_new_files_name_leads_nowhere(path, monkeypatch):
    """Put there by somebody who may change the folder, before the rows are written or the old file's rights given."""
    victim = path.parent / "victim"
    victim.write_text("untouched")
    victim.chmod(0o600)
    ovfile.write({"A": [1]}, path)
    path.chmod(0o666)

    def swap():
        (made,) = [name for name in os.listdir(path.parent) if name.startswith(".NEW")]
        os.rename(path.parent / made, path.parent / "taken")
        os.symlink(victim, path.parent / made)

    monkeypatch.setattr(_writing, "create_file", before(_writing.create_file, swap))
    with pytest.raises(ovfile.Error, match="somebody put another one in its place"):
        ovfile.write({"A": [1, 2, 3]}, path)
    assert victim.read_text() == "untouched"
    assert stat.S_IMODE(victim.stat().st_mode) == 0o600
    with ovfile.open(path) as table:
        assert table["A"].tolist() == [1]


def test_a_table_that_came_meanwhile_and_is_open_stays(tmp_path, monkeypatch):
    path = tmp_path / "table.ovt"
    others = []

    def make():
        if not others:
            monkeypatch.undo()
            ovfile.write({"A": [1.0, 2.0]}, path)
            others.append(ovfile.open(path, "r+"))

    taking = _replacement.Replacement._take_free_name
    monkeypatch.setattr(_replacement.Replacement, "_take_free_name", before(taking, make))
    with pytest.raises(ovfile.Error, match="open somewhere else"):
        ovfile.write({"A": [9.0]}, path)
    others[0].append({"A": [3.0]})
    others[0].close()
    with ovfile.open(path) as table:
        assert table["A"].tolist() == [1, 2, 3]
    assert os.listdir(tmp_path) == [path.name]


@linux
def test_a_column_goes_to_no_table_that_a_link_leads_to(path, monkeypatch):
    """Put there by somebody who may change the folder, whenever the new file is opened."""
    victim = path.parent / "victim.ovt"
    ovfile.write({"A": [7, 8]}, victim)
    untouched = victim.read_bytes()
    ovfile.write({"A": [1, 2]}, path)

    def swap():
        for made in [name for name in os.listdir(path.parent) if name.startswith(".NEW")]:
            if not os.path.islink(path.parent / made):
                os.rename(path.parent / made, path.parent / "taken")
                os.symlink(victim, path.parent / made)

    monkeypatch.setattr(_rebuilding, "_opened", before(_rebuilding._opened, swap))
    with ovfile.open(path, "r+") as table:
        with pytest.raises(ovfile.Error, match="somebody put another one in its place"):
            table.add_column("B", [5, 6])
    assert victim.read_bytes() == untouched
    with ovfile.open(path) as table:
        assert [column.name for column in table.schema] == ["A"]


def test_a_column_comes_to_a_table_of_several_header_pages(path):
    """What the header holds beside its columns stays."""
    names = [f"C{i:03}" for i in range(200)]
    ovfile.write({name: np.arange(300.0) + i for i, name in enumerate(names)}, path)
    with ovfile.open(path, "r+") as table:
        table.add_column("T", ["ab"] * 300)
    with ovfile.open(path) as table:
        assert [column.name for column in table.schema] == [*names, "T"]
        assert all((table[name] == np.arange(300.0) + i).all() for i, name in enumerate(names))
        assert set(table["T"]) == {"ab"}
