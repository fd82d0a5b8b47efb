"""New files that take another's place in one step, when all went well."""

from __future__ import annotations

import contextlib
import errno
import os
import secrets
import shutil
import stat
import tempfile
import time
from typing import ContextManager, Iterator, NamedTuple, Optional, Tuple

from ._errors import Error
from ._file_rights import carry_rights

try:
    import fcntl
except ImportError:  # Windows refuses to replace an open file by itself
    fcntl = None  # type: ignore[assignment]

OPEN_ELSEWHERE = "the table is open somewhere else and cannot be replaced"
CHANGED_ELSEWHERE = "the table was changed elsewhere meanwhile; nothing was written"

# What a table's header says of its rows stands within so many bytes.
_HEADER_BYTES = 4096
_MOST_TRIES = 5
# Of file systems that give a file one name alone.
_WITHOUT_LINKS = (errno.EPERM, errno.ENOTSUP, errno.EOPNOTSUPP, errno.ENOSYS)
_SECOND = 1_000_000_000
_CLOCK_STEP = 20_000_000  # nanoseconds; longer than systems take to note another time
# A pipe under the file's name would hold us up.
_TO_LOOK = os.O_RDONLY | getattr(os, "O_NONBLOCK", 0) | getattr(os, "O_BINARY", 0)
_TO_MAKE = os.O_RDWR | os.O_CREAT | os.O_EXCL | getattr(os, "O_BINARY", 0)
_TO_CHANGE = os.O_RDWR | getattr(os, "O_NOFOLLOW", 0) | getattr(os, "O_BINARY", 0)


class Stamp(NamedTuple):
    """What tells that a file is another one, or not what it was."""

    device: int
    number: int
    size: int
    written: int
    header: bytes


def stamp_of(path: str) -> Stamp:
    with _as_read_errors():
        handle = os.open(path, _TO_LOOK)
        try:
            return _stamp_of(handle)
        finally:
            os.close(handle)


def _stamp_of(handle: int) -> Stamp:
    facts = os.fstat(handle)
    os.lseek(handle, 0, os.SEEK_SET)
    header = os.read(handle, _HEADER_BYTES)
    return Stamp(facts.st_dev, facts.st_ino, facts.st_size, facts.st_mtime_ns, header)


def require_file(path: str) -> None:
    """Raises Error where the name stands for something that is no file: a folder, a device, a pipe."""
    try:
        kind = os.stat(path).st_mode
    except FileNotFoundError:
        return
    except OSError as failure:
        raise Error(f"the file cannot be written: {failure.strerror}") from None
    if not stat.S_ISREG(kind):
        raise Error("it is not a regular file")


class HeldFile:
    """An open file, which stays the one that it is whatever comes under its name."""

    def __init__(self, path: str) -> None:
        self._path = path
        with _as_read_errors():
            self._handle = os.open(path, _TO_LOOK)

    @property
    def name(self) -> str:
        """By which others open it, where the system has such names."""
        name = f"/proc/self/fd/{self._handle}"
        return name if fcntl is not None and os.path.exists(name) else self._path

    def stamp(self) -> Stamp:
        """The stamp from which on every write bears another time: systems note it in steps of milliseconds."""
        with _as_read_errors():
            found = _stamp_of(self._handle)
        ahead = found.written + _CLOCK_STEP - time.time_ns()
        if 0 < ahead <= _CLOCK_STEP + _SECOND:  # else it is another machine's clock
            time.sleep(ahead / 1e9)
        return found

    def beginning(self, count: int) -> bytes:
        """The first `count` bytes, or all that there are."""
        with _as_read_errors():
            os.lseek(self._handle, 0, os.SEEK_SET)
            return os.read(self._handle, count)

    def close(self) -> None:
        os.close(self._handle)


@contextlib.contextmanager
def private_folder() -> Iterator[str]:
    """A folder for temporary files that this user alone can read or change."""
    with _as_errors():
        # Python's own choice tries to write there, and tells no reason where it cannot.
        parent = (os.environ.get("TMPDIR") or "/tmp") if fcntl is not None else None
        folder = tempfile.mkdtemp(prefix="ovfile-", dir=parent)
    try:
        yield folder
    finally:
        shutil.rmtree(folder, ignore_errors=True)


def write_file(path: str, content: bytes) -> None:
    with _as_errors(), open(path, "xb") as file:
        file.write(content)


class Replacement:
    """An empty file beside the one whose place it is to take.

    It goes by its open file from its making to the last step, where the system lets it: who may change the
    folder can put another file, or a link, under its name, and gains nothing by it.
    """

    def __init__(self, path: str) -> None:
        require_file(path)
        self._target = os.path.realpath(path)
        self._name, self._handle = self._make()

    def _make(self) -> Tuple[str, int]:
        """What takes another file's place may hold what few shall read, so nobody else reads it before it has
        that file's rights.
        """
        folder, leaf = os.path.split(self._target)
        name = os.path.join(folder, f".NEW{secrets.token_hex(6)}{os.path.splitext(leaf)[1]}")
        replaces = os.path.exists(self._target)
        try:
            return name, os.open(name, _TO_MAKE, 0o600 if replaces else 0o666)
        except OSError as failure:
            words = "cannot be replaced, no file can be made in its folder" if replaces else "cannot be made"
            raise Error(f"the file {words}: {failure.strerror}") from None

    @property
    def beside(self) -> str:
        """A name of the new file, for those who open it once more."""
        name = f"/proc/self/fd/{self._handle}"
        if fcntl is not None and os.path.exists(name):
            return name
        self.close()  # an open file is not written by others there
        return self._name

    def fill(self, content: bytes) -> None:
        """What the file begins with, before others open it."""
        with _as_errors(), os.fdopen(os.dup(self._handle), "wb") as file:
            file.write(content)

    def _open_again(self) -> None:
        self._handle = os.open(self._name, _TO_CHANGE)
        facts = os.fstat(self._handle)
        if fcntl is not None and (facts.st_uid != os.geteuid() or facts.st_nlink != 1):
            raise Error("the file cannot be written: somebody put another one in its place")

    def close(self) -> None:
        if self._handle >= 0:
            os.close(self._handle)
            self._handle = -1

    def remove(self) -> None:
        """Where it did not take the place."""
        self.close()
        with contextlib.suppress(OSError):
            _remove(self._name)

    def require_closed(self) -> None:
        """Raises Error when somebody has the old file open."""
        if os.path.exists(self._target):
            with _as_errors(), self._locked():
                pass

    def take_place(self, expected: Optional[Stamp] = None) -> None:
        """Raises Error, and leaves the old file, where somebody has it open, or it is not the expected one."""
        with _as_errors():
            if self._handle < 0:
                self._open_again()
            os.fsync(self._handle)
            if expected is not None or os.path.exists(self._target) or not self._take_free_name():
                self._replace(expected)
            self._sync_folder()

    def _take_free_name(self) -> bool:
        """False where a file has come under the name meanwhile."""
        self._require_own_name()
        try:
            if fcntl is None:
                os.rename(self._name, self._target)
            else:
                os.link(self._name, self._target, follow_symlinks=False)
        except FileExistsError:
            return False
        except OSError as failure:
            if failure.errno not in _WITHOUT_LINKS:
                raise
            os.replace(self._name, self._target)
        return True

    def _take_name(self) -> None:
        self._require_own_name()
        os.replace(self._name, self._target)

    def _require_own_name(self) -> None:
        if fcntl is None:
            self.close()  # open files are not moved there
        elif not os.path.samestat(os.fstat(self._handle), os.lstat(self._name)):
            raise Error("the file cannot be written: somebody put another one in its place")

    def _replace(self, expected: Optional[Stamp]) -> None:
        with self._locked() as old:
            if expected is not None and not _is_expected(_stamp_of(old), expected):
                raise Error(CHANGED_ELSEWHERE)
            carry_rights(old, self._target, self._handle, self._name)
            if fcntl is not None:
                self._take_name()
                return
        self._take_name()

    @contextlib.contextmanager
    def _locked(self) -> Iterator[int]:
        """The old file, which nobody has open meanwhile. A table in use holds a shared lock."""
        for tries in range(_MOST_TRIES):
            handle = os.open(self._target, _TO_LOOK | getattr(os, "O_NOFOLLOW", 0))
            try:
                _lock(handle)
                # Somebody may have put another file there before it was locked.
                if tries + 1 == _MOST_TRIES or os.path.samestat(os.fstat(handle), os.stat(self._target)):
                    yield handle
                    return
            finally:
                os.close(handle)

    def _sync_folder(self) -> None:
        """A folder that cannot wait leaves the moment to the system."""
        with contextlib.suppress(OSError):
            handle = os.open(os.path.dirname(self._target), os.O_RDONLY)
            try:
                os.fsync(handle)
            finally:
                os.close(handle)


@contextlib.contextmanager
def replacement(path: str) -> Iterator[Replacement]:
    """A file for the place of `path`, where links lead to. It is gone at the end unless it took that place."""
    made = Replacement(path)
    try:
        yield made
    finally:
        made.remove()


def _remove(path: str) -> None:
    try:
        os.unlink(path)
    except PermissionError:
        os.chmod(path, 0o600)  # Windows removes no file that may only be read
        os.unlink(path)


@contextlib.contextmanager
def _as_errors(what: str = "written") -> Iterator[None]:
    try:
        yield
    except OSError as failure:
        raise Error(f"the file cannot be {what}: {failure.strerror}") from None


def _as_read_errors() -> ContextManager[None]:
    return _as_errors("read")


def _lock(handle: int) -> None:
    """Raises Error where somebody has the file open, as far as the file system tells."""
    if fcntl is None:
        return
    try:
        fcntl.flock(handle, fcntl.LOCK_EX | fcntl.LOCK_NB)
    except BlockingIOError:
        raise Error(OPEN_ELSEWHERE) from None
    except OSError:
        return  # a file system without locks


def _is_expected(found: Stamp, expected: Stamp) -> bool:
    """Where files are not locked, the last write may be noted as late as a file is closed."""
    return found == expected if fcntl is not None else found._replace(written=expected.written) == expected
