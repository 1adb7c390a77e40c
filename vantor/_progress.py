"""Progress: timeouts, and bars of tqdm, as text in a terminal and as widgets in a notebook."""

import math
import time

from . import _values


def end_after(timeout):
    """When so many seconds are over, by time.monotonic(); None if there is no timeout."""
    if timeout is None:
        return None
    try:
        seconds = _values.number(timeout)
    except TypeError as error:
        raise TypeError("timeout: {}".format(error)) from None
    if math.isnan(seconds):
        raise ValueError("timeout: expected seconds, got {!r}".format(timeout))
    return time.monotonic() + seconds


def wait_with_bar(job, what, end=None):
    """Shows a bar until the job is done, or until the end by time.monotonic()."""
    try:
        from tqdm.auto import tqdm
    except ImportError:
        raise ImportError("a progress bar needs tqdm (Debian: python3-tqdm)") from None
    form = "{l_bar}{bar}| {elapsed}<{remaining}"
    with tqdm(total=1.0, desc=what, bar_format=form) as bar:
        while not job.done() and (end is None or time.monotonic() < end):
            bar.update(max(job.progress - bar.n, 0))
            time.sleep(0.05)
        bar.update(max(job.progress - bar.n, 0))
