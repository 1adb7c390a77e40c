"""Progress bars: those of tqdm, as text in a terminal and as widgets in a notebook."""

import time


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
