"""Times statements: nanoseconds of processor time, the minimum of samples that take turns."""

import gc
import itertools
import os
import textwrap
import time

# The statement stands this often in its loop, so that each turn of the loop counts a tenth.
COPIES = 10
SAMPLE_NS = 2000000

_LOOP = """
def loop(_turns, _clock, _repeat{names}):
    _begin = _clock()
    for _turn in _repeat(None, _turns):
{body}
    return _clock() - _begin
"""


class Statement:
    """A statement, compiled into a loop of its own that finds its names in local variables.

    per     what one execution counts for: the elements that it walks over
    fresh   an expression that makes the value of `a` anew, untimed, before each sample
    turns   turns of the loop in a sample; chosen to fill SAMPLE_NS if it is None
    """

    def __init__(self, text, names, per=1, fresh=None, turns=None):
        self.copies = COPIES if per == 1 else 1
        used = compile(text, "<statement>", "exec").co_names
        self.values = {name: names[name] for name in used if name in names}
        self.fresh = compile(fresh, "<fresh>", "eval") if fresh else None
        self.names = names
        if fresh:
            self.values["a"] = None
        source = _LOOP.format(
            names="".join(", " + name for name in self.values),
            body="\n".join([textwrap.indent(text, "        ")] * self.copies))
        functions = {}
        exec(compile(source, "<loop of {!r}>".format(text), "exec"), functions)
        self.loop = functions["loop"]
        self.per = per
        self.turns = turns or self._turns_to_fill_a_sample()
        self.nanoseconds = float("inf")

    def _run(self, turns):
        if self.fresh:
            self.values["a"] = eval(self.fresh, self.names)
        return self.loop(turns, time.process_time_ns, itertools.repeat, **self.values)

    def _turns_to_fill_a_sample(self):
        turns = 1
        while True:
            elapsed = self._run(turns)
            if elapsed >= SAMPLE_NS / 4 or turns >= 1 << 24:
                return max(1, turns * SAMPLE_NS // max(elapsed, 1))
            turns *= 4

    def sample(self):
        elapsed = self._run(self.turns)
        self.nanoseconds = min(self.nanoseconds, elapsed / (self.turns * self.copies * self.per))


def take_turns(statements, samples):
    """Samples all statements in turn, so that a change of the machine's pace meets them alike.

    Statements of long samples get fewer of them, but five at least.
    """
    collecting = gc.isenabled()
    gc.disable()
    try:
        started = time.process_time()
        for taken in range(samples):
            for statement in statements:
                statement.sample()
            if taken >= 4 and time.process_time() - started > samples * 0.05:
                break
    finally:
        if collecting:
            gc.enable()


def settle():
    """Keeps this process on one core: a change of the core in mid-sample costs its caches."""
    if hasattr(os, "sched_setaffinity"):
        os.sched_setaffinity(0, {max(os.sched_getaffinity(0))})
