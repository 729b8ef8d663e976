#!/usr/bin/env python3
"""Checks what saves under Wine leave of links, permissions and owners, as the system below it has them.

usage: check_file_properties.py FOLDER RUN-UNDER-WINE... PROGRAMS-FOLDER

FOLDER is removed before and afterwards.
"""

import os
import pathlib
import shutil
import stat
import subprocess
import sys

OLD_TEXT = '{"first": {"Category": {"old": 1}}}'


class Files:
    """The private and the shared file, with the old text, and a host that saves them."""

    def __init__(self, folder, host):
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir(parents=True)
        self.private = folder / "private.json"
        self.shared = folder / "shared.json"
        for file in (self.private, self.shared):
            file.write_text(OLD_TEXT, encoding="utf-8")
        self._host = host

    def save(self):
        windows_paths = ["Z:" + str(file).replace("/", "\\") for file in (self.private, self.shared)]
        subprocess.run(self._host(*windows_paths), check=True)
        assert self.private.read_text(encoding="utf-8") != OLD_TEXT, "nothing was saved"


def is_old(file):
    return file.read_text(encoding="utf-8") == OLD_TEXT


def mode_of(file):
    return stat.S_IMODE(file.stat().st_mode)


def complaints(files, is_protected):
    usual_mode = mode_of(files.private)
    target = files.shared.with_name("target.json")
    other_name = files.private.with_name("other.json")
    os.link(files.private, other_name)
    files.private.chmod(0o600)
    files.shared.rename(target)
    files.shared.symlink_to(target.name)
    files.save()
    if not is_old(other_name) or files.private.stat().st_nlink != 1:
        yield "another name of a file has the new text"
    if mode_of(files.private) != usual_mode:
        yield f"a file of its user alone has the permissions {mode_of(files.private):o}"
    # Wine's DeleteFile deletes what a symbolic link leads to, and a rename replaces the link.
    if files.shared.is_symlink() == is_protected or is_old(target) != is_protected:
        yield "a symbolic link is replaced by a save in place, or followed by a protected one"

    files.private.write_text(OLD_TEXT, encoding="utf-8")
    files.private.chmod(0o400)
    files.save()
    expected_mode = usual_mode & 0o444 if is_protected else usual_mode
    if mode_of(files.private) != expected_mode:
        yield f"a file without leave to write has the permissions {mode_of(files.private):o}"


def main():
    folder = pathlib.Path(sys.argv[1])
    *run, programs = sys.argv[2:]

    def in_place(private, shared):
        return [*run, f"{programs}/lifetime_host.exe", private, shared, "set-paths", "write", "save"]

    def protected(private, shared):
        return [*run, f"{programs}/protected_host.exe", private, shared, "name", "distinct", "1"]

    found = [f"{host.__name__}: {complaint}" for host in (in_place, protected)
             for complaint in complaints(Files(folder, host), host is protected)]
    print("\n".join(found))
    shutil.rmtree(folder)
    return int(bool(found))


if __name__ == "__main__":
    sys.exit(main())
