"""Children: processes that are forked off this one, for work that takes long."""

import contextlib
import multiprocessing
import os
import shutil
import signal
import tempfile
import threading
import weakref

from . import _native
from ._files import keep_temporary_files_in, temporary_place

_lock = threading.Lock()


@contextlib.contextmanager
def forking():
    """Within it a child may be started, and what it needs be made. One at a time: a child that had
    the writing end of another's pipe would hide its end. And no Ctrl-C in between: the child is not
    ready for it, and the parent does not know it yet."""
    with _lock:
        mask = signal.pthread_sigmask(signal.SIG_BLOCK, {signal.SIGINT})
        try:
            yield
        finally:
            signal.pthread_sigmask(signal.SIG_SETMASK, mask)


def start_child(run, *arguments):
    """Forks, within forking(). The child calls run with the arguments, never returns from here, and
    ends with its parent; SIGINT is blocked in it. Returns its process id."""
    parent = os.getpid()
    pid = _native.fork()
    if pid == 0:
        status = 1
        try:
            _native.end_with(parent)
            run(*arguments)
            status = 0
        finally:
            # Not the interpreter's end: what it would clean up and write out is the script's.
            os._exit(status)
    return pid


def waited(pid):
    """The status of a child that has ended, or ends now."""
    try:
        return os.waitpid(pid, 0)[1]
    except ChildProcessError:  # the script has waited for it, or ignores its children
        return 0


def how_ended(status):
    """"by signal 9 (Killed)", or "with status 1"."""
    if os.WIFSIGNALED(status):
        number = os.WTERMSIG(status)
        return "by signal {} ({})".format(number, signal.strsignal(number))
    return "with status {}".format(os.WEXITSTATUS(status))


def kill_child(owner, pid):
    """Ends a child of the process owner; in a fork of that one it does nothing. Returns whether it
    did."""
    if os.getpid() != owner:
        return False
    os.kill(pid, signal.SIGKILL)
    waited(pid)
    return True


class ConnectedChild:
    """A child at the other end of a connection. Its temporary files lie in a folder of its own,
    which goes when it ends, in whatever way: a child that is killed can remove nothing."""

    def __init__(self, run, *arguments):
        """The child calls run(connection, *arguments)."""
        self._folder = tempfile.mkdtemp(prefix="vantor-", dir=temporary_place())
        try:
            with forking():
                self.connection, child_end = multiprocessing.Pipe()
                try:
                    self.pid = start_child(_run_in, self._folder, run, child_end, *arguments)
                    self._end = weakref.finalize(self, _end_child, os.getpid(), self.pid,
                                                 self._folder)
                finally:
                    child_end.close()
        except BaseException:
            shutil.rmtree(self._folder, ignore_errors=True)
            raise

    @property
    def is_alive(self):
        return self._end.alive

    def end(self):
        """Kills it, if it is alive."""
        self._end()

    def end_of_itself(self):
        """How it has ended, or ends now, when its end of the connection is closed."""
        self._end.detach()
        status = waited(self.pid)
        shutil.rmtree(self._folder, ignore_errors=True)
        return how_ended(status)


def _run_in(folder, run, *arguments):
    keep_temporary_files_in(folder)
    run(*arguments)


def _end_child(owner, pid, folder):
    if kill_child(owner, pid):
        shutil.rmtree(folder, ignore_errors=True)
