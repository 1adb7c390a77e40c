"""Files: those that are written whole or not at all, and where temporary ones lie."""

import contextlib
import os
import shutil
import tempfile
import weakref


def write_whole(path, data):
    """Writes bytes under a temporary name beside the path, and then renames the file."""
    folder, name = os.path.split(os.path.abspath(path))
    descriptor, temporary = tempfile.mkstemp(prefix="." + name + ".", dir=folder)
    try:
        with open(descriptor, "wb") as file:
            file.write(data)
        # As any new file's: mkstemp lets nobody else read.
        mask = os.umask(0)
        os.umask(mask)
        os.chmod(temporary, 0o666 & ~mask)
        os.replace(temporary, path)
    except BaseException:
        with contextlib.suppress(OSError):
            os.remove(temporary)
        raise


_place = None  # where the system has them


def keep_temporary_files_in(folder):
    """From now on, those of this package in this process."""
    global _place
    _place = folder


def temporary_place():
    """The folder for temporary files, as tempfile's functions take it."""
    return _place


class TemporaryFolder:
    """A folder that is made when it is first asked for, and goes with this. A forked process has
    this too, and leaves the folder alone."""

    def __init__(self):
        self._path = None
        self._count = 0

    @property
    def path(self):
        if self._path is None:
            self._path = tempfile.mkdtemp(prefix="vantor-", dir=temporary_place())
            weakref.finalize(self, _remove_of_owner, self._path, os.getpid())
        return self._path

    def new_file(self, ending):
        """A path in the folder that no other file has."""
        self._count += 1
        return os.path.join(self.path, "{}{}".format(self._count, ending))


def _remove_of_owner(folder, owner):
    if os.getpid() == owner:
        shutil.rmtree(folder, ignore_errors=True)
