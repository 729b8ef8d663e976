import fnmatch
import pathlib
import shutil


def copy(_recipe, pattern, source, destination):
    """A pattern is for paths below the source, and its asterisk takes slashes, too."""
    source, destination = pathlib.Path(source), pathlib.Path(destination)
    for path in source.rglob("*"):
        name = path.relative_to(source)
        if path.is_file() and fnmatch.fnmatch(str(name), pattern):
            (destination / name).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy2(path, destination / name)


def rmdir(_recipe, path):
    shutil.rmtree(path, ignore_errors=True)
