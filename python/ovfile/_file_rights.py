"""Who may do what with a file, for one that takes another's place."""

from __future__ import annotations

import contextlib
import errno
import os
import shutil
import stat
from typing import Optional

_ACCESS_LIST = "system.posix_acl_access"
_OTHERS = stat.S_IRWXG | stat.S_IRWXO


def carry_rights(old: int, source: str, new: int, target: str) -> None:
    """Gives the open file `new`, this process's user's, the owner, group, permissions, access list and user's
    attributes of the open file `old`, as far as the system lets us; `source` and `target` are their names.

    Nobody may do what he could not do before: where the group stays another one, group and others may do what
    both could, and where a list cannot be given, nothing. Raises OSError where the permissions cannot be set.
    """
    if not hasattr(os, "fchown") or not hasattr(os, "getxattr"):
        shutil.copymode(source, target)
        return
    _carry_attributes(old, new)
    _carry_owner(os.fstat(old), new)
    before, made = os.fstat(old), os.fstat(new)
    others_too = _carry_access_list(_access_list(old), new, made.st_gid == before.st_gid)
    if not others_too:
        with contextlib.suppress(OSError):
            os.removexattr(new, _ACCESS_LIST)
    _set_mode(new, _mode_under(before, made, others_too))


def _carry_attributes(old: int, new: int) -> None:
    """What users have noted beside the file; where one cannot be kept nothing is lost that counts."""
    with contextlib.suppress(OSError):
        for name in os.listxattr(old):
            if name.startswith("user."):
                with contextlib.suppress(OSError):
                    os.setxattr(new, name, os.getxattr(old, name))


def _carry_owner(before: os.stat_result, new: int) -> None:
    """Only a privileged user may give files away; the group goes along where the user belongs to it."""
    with contextlib.suppress(OSError):
        os.fchown(new, -1, before.st_gid)
    with contextlib.suppress(OSError):
        os.fchown(new, before.st_uid, -1)


def _access_list(file: int) -> Optional[bytes]:
    """The list as the system keeps it. Empty: the file has none; None: that cannot be told."""
    try:
        return os.getxattr(file, _ACCESS_LIST)
    except OSError as failure:
        return b"" if _has_none(failure) else None


def _carry_access_list(given: Optional[bytes], new: int, same_group: bool) -> bool:
    """A file may have come with a list from its folder: where the old one had none, the new one has none.

    A list tells what the file's group may do, so it is not carried to a file of another group.
    """
    if given is None or (given and not same_group):
        return False
    try:
        if given:
            os.setxattr(new, _ACCESS_LIST, given)
        else:
            os.removexattr(new, _ACCESS_LIST)
    except OSError as failure:
        return not given and _has_none(failure)
    return True


def _has_none(failure: OSError) -> bool:
    return failure.errno in (errno.ENODATA, errno.ENOTSUP)


def _mode_under(before: os.stat_result, made: os.stat_result, others_too: bool) -> int:
    """Nobody runs the file with its owner's or group's rights; where the group is another one, it and others get none."""
    mode = stat.S_IMODE(before.st_mode) & ~(stat.S_ISUID | stat.S_ISGID)
    return mode if others_too and made.st_gid == before.st_gid else mode & ~_OTHERS


def _set_mode(new: int, mode: int) -> None:
    """A file system without permissions refuses to set any, and gives all files the same."""
    try:
        os.fchmod(new, mode)
    except OSError:
        if stat.S_IMODE(os.fstat(new).st_mode) != mode:
            raise
