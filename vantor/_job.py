"""Job: a pass in a process of its own."""

import asyncio
import concurrent.futures
import mmap
import os
import pickle
import select
import shutil
import signal
import struct
import tempfile
import time
import traceback
import weakref

from . import _native
from ._children import forking, how_ended, kill_child, start_child, waited
from ._files import temporary_place
from ._messages import tell
from ._picture import Picture
from ._progress import end_after, wait_with_bar


class JobError(RuntimeError):
    """The process of a job has ended without a result."""

    __module__ = __package__


class Job:
    """A pass that runs while the script goes on. The process is a fork, and has the scene as it was
    at the call; what the script does afterwards does not reach it."""

    def __init__(self, work, strict, place):
        self._work = work
        self._strict = strict
        self._place = place
        self._received = bytearray()
        self._outcome = None
        self._is_cancelled = False
        self._progress = mmap.mmap(-1, mmap.PAGESIZE)  # shared with the child
        self._preview = _shared_pixels(work)
        self._folder = tempfile.mkdtemp(prefix="vantor-job-", dir=temporary_place())
        try:
            work.prepare(self._folder)
            self._fork()
        except BaseException:
            shutil.rmtree(self._folder, ignore_errors=True)
            raise

    def _fork(self):
        with forking():
            self._pipe, child_end = os.pipe()
            try:
                shared = (self._progress, self._preview)
                self._pid = start_child(_run_child, self._work, child_end, *shared)
                self._clean = weakref.finalize(
                    self, _abandon, os.getpid(), self._pid, self._pipe, self._folder
                )
            except BaseException:
                os.close(self._pipe)
                raise
            finally:
                os.close(child_end)

    @property
    def progress(self):
        """How much of the pass is done, 0 to 1; 0 until the end if the renderer does not tell."""
        return 1.0 if self.done() else struct.unpack_from("d", self._progress)[0]

    def done(self):
        """Whether the pass is over, be it with a result or not."""
        self._receive(0)
        return self._outcome is not None

    def preview(self):
        """The Picture as far as it is finished, its colour alone; the rest is black. None before
        anything is, and where the renderer does not show it."""
        if self._preview is None:
            return None
        (count,) = struct.unpack_from("i", self._preview)
        if not count:
            return None
        colors = bytearray(self._preview[8:])
        return Picture.of_pass(self._work, {"color": colors})

    def cancel(self):
        """Asks the pass to stop. What is finished by then is the result."""
        if not self.done():
            self._is_cancelled = True
            os.kill(self._pid, signal.SIGINT)

    def result(self, timeout=None, *, progress=False):
        """Waits for the Picture; with progress, under a bar of tqdm. Raises SceneError if there is
        none, JobError if the process has crashed, CancelledError if it was cancelled before a pixel
        was finished, and TimeoutError after the timeout, in seconds; the job then goes on."""
        end = end_after(timeout)
        if progress:
            wait_with_bar(self, "render", end)
        while not self.done():
            left = None if end is None else end - time.monotonic()
            if left is not None and left <= 0:
                raise TimeoutError("the job is not done after {} s".format(timeout))
            self._receive(0.1 if left is None else min(left, 0.1))
        return self._picture()

    def __await__(self):
        return self._wait().__await__()

    async def _wait(self):
        while not self.done():
            await asyncio.sleep(0.005)
        return self._picture()

    def __repr__(self):
        return "<Job {} x {}: {:.0%} done>".format(self._work.width, self._work.height,
                                                   self.progress)

    def _receive(self, timeout):
        """Takes what the child has sent, and its end."""
        if self._outcome is not None:
            return
        if self._is_cancelled:
            # Again, because a signal that comes before the pass has begun is forgotten.
            os.kill(self._pid, signal.SIGINT)
        waiting = select.poll()
        waiting.register(self._pipe, select.POLLIN)
        while waiting.poll(1000 * timeout):
            data = os.read(self._pipe, 1 << 20)
            if not data:
                self._outcome = self._end_of_child()
                return
            self._received += data
            timeout = 0

    def _end_of_child(self):
        """(layers, messages, error)"""
        self._clean.detach()
        status = waited(self._pid)
        os.close(self._pipe)
        shutil.rmtree(self._folder, ignore_errors=True)
        try:
            return pickle.loads(self._received)
        except (pickle.UnpicklingError, EOFError, ValueError, IndexError):
            how = how_ended(status)
            return {}, [], "the process of the job has ended {}".format(how)

    def _picture(self):
        layers, messages, error = self._outcome
        if not (layers or error or self._is_cancelled):
            self._work.tell_why_nothing(messages, self._place)
        self._outcome = (layers, [], error)  # messages are told once
        is_strict = self._strict and not self._is_cancelled
        tell(messages, is_strict, self._place, self._work.scene.handles)
        if error and not self._is_cancelled:
            raise JobError(error)
        if not layers:
            raise concurrent.futures.CancelledError("cancelled before a pixel was finished")
        return Picture.of_pass(self._work, layers)


def _shared_pixels(work):
    """Shared memory for a preview; None if there is not so much, or if the renderer will refuse the
    window anyway. What nobody writes to takes none."""
    try:
        x0, y0, x1, y1 = work.pixel_window
        return mmap.mmap(-1, 8 + 12 * (x1 - x0) * (y1 - y0)) if x0 < x1 and y0 < y1 else None
    except (OSError, OverflowError, ValueError):
        return None


def _run_child(work, pipe, progress, preview):
    """What the forked process does."""
    signals = []
    signal.signal(signal.SIGINT, lambda *_: signals.append(1))  # the renderer looks for it, too
    signal.pthread_sigmask(signal.SIG_UNBLOCK, {signal.SIGINT})
    _native.progress_into(progress)
    if preview is not None:
        _native.preview_into(preview, work.path_of("color"), work.pixel_window)
    messages = []
    try:
        outcome = ({} if signals else work.run(messages), messages, None)
    except BaseException:
        outcome = ({}, messages, "the job has failed: " + traceback.format_exc().strip())
    data = memoryview(pickle.dumps(outcome, pickle.HIGHEST_PROTOCOL))
    while data:
        data = data[os.write(pipe, data) :]


def _abandon(owner, pid, pipe, folder):
    """Ends a job that nobody waits for any more."""
    if kill_child(owner, pid):
        os.close(pipe)
        shutil.rmtree(folder, ignore_errors=True)
