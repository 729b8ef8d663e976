#!/usr/bin/env python3
"""Fails when a DLL without its symbols is larger than it may be.

usage: check_size.py STRIP DLL BYTES
"""

import pathlib
import subprocess
import sys
import tempfile


def main():
    strip, dll, limit = sys.argv[1], sys.argv[2], int(sys.argv[3])
    with tempfile.TemporaryDirectory() as folder:
        stripped = pathlib.Path(folder) / "stripped.dll"
        subprocess.run([strip, "-o", stripped, dll], check=True)
        size = stripped.stat().st_size
    print(f"{size} bytes of at most {limit}")
    return 0 if size <= limit else 1


if __name__ == "__main__":
    sys.exit(main())
