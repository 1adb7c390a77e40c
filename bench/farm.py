"""What vantor.farm costs, and how it scales: measured here, and simulated for more machines.

usage: PYTHONPATH=build/release/python /usr/bin/python3 bench/farm.py [--quick]
       (distributed is needed, Debian: python3-distributed)

Three tables. The first is the farm beside one process on this machine. The second is the work of
Dask's scheduler, a process of its own, in processor time: for each task, for each megabyte that
goes through it, for each heartbeat of a worker. The third is a simulation of more machines, whose
scheduler costs what the second has measured.
"""

import argparse
import asyncio
import contextlib
import functools
import heapq
import os
import random
import subprocess
import sys
import tempfile
import time

import vantor as vt
from tables import show
from vantor import farm
from vantor._windows import cut

# The machines of the simulation.
LATENCY = 0.5e-3  # s, one way between two machines
BANDWIDTH = 1.25e9 / 10  # bytes/s of each machine's network: 1 Gbit/s
START = 2.0  # s that a worker takes to build the scene, for its first piece
SPREAD = 0.7  # of the logarithm of a piece's work: a frame is not as hard everywhere
SPREAD_OF_FRAMES = 0.2

FRAME = (1920, 1080)
SECONDS_OF_FRAME = 600.0  # of one worker
SECONDS_OF_SMALL_FRAME = 60.0  # in the animation
PNG_BYTES = 4e6
WORKERS = (1, 10, 100, 1000)


def room():
    """A scene that takes longer to render than to send."""
    scene = vt.Scene()
    scene.camera("perspective", position=(0, 1, 6), target=(0, 1, 0), fov=35)
    scene.light("sky", sun_direction=(1, 2, 1))
    with scene.material("plastic", color=(0.8, 0.1, 0.1)), vt.translate(0, 1, 0):
        scene.add("sphere", radius=1.0)
    scene.add("quad", origin=(-9, 0, 9), edge_u=(18, 0, 0), edge_v=(0, 0, -18))
    return scene


class Cluster:
    """A scheduler, and processes that each hold some of its workers."""

    def __init__(self, processes, workers_of_each=1):
        from distributed import Client

        self._folder = tempfile.TemporaryDirectory(prefix="vantor-bench-")
        file = os.path.join(self._folder.name, "scheduler.json")
        self._log = open(os.path.join(self._folder.name, "log"), "w")
        self.processes = [self._run([
            "-m", "distributed.cli.dask_scheduler", "--no-dashboard", "--host", "127.0.0.1",
            "--port", "0", "--scheduler-file", file])]
        while not os.path.exists(file):
            time.sleep(0.05)
        for _ in range(processes):
            self.processes.append(self._run([
                __file__, "--workers", str(workers_of_each), "--scheduler-file", file]))
        self.client = Client(scheduler_file=file, set_as_default=False, timeout=120)
        self.client.wait_for_workers(processes * workers_of_each)

    def _run(self, arguments):
        here = os.path.dirname(os.path.abspath(__file__))
        path = os.pathsep.join([here, os.environ.get("PYTHONPATH", "")])
        return subprocess.Popen([sys.executable, *arguments], stdout=self._log, stderr=self._log,
                                env=dict(os.environ, PYTHONPATH=path), cwd=self._folder.name)

    def scheduler_seconds(self):
        """The processor time of the scheduler by now."""
        return processor_seconds(self.processes[0].pid)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.client.close()
        for process in reversed(self.processes):
            process.kill()
            process.wait()
        self._log.close()
        self._folder.cleanup()


async def work_for(file, count):
    """Workers of one thread each, all in this process."""
    from distributed import Worker

    workers = [Worker(scheduler_file=file, nthreads=1, dashboard=False, local_directory=os.getcwd())
               for _ in range(count)]
    await asyncio.gather(*workers)
    await asyncio.gather(*(worker.finished() for worker in workers))


def processor_seconds(pid):
    """The processor time of a process, and of all that it has started, by now."""
    with open("/proc/{}/stat".format(pid)) as file:
        fields = file.read().rpartition(")")[2].split()
    spent = sum(map(int, fields[11:15])) / os.sysconf("SC_CLK_TCK")
    folder = "/proc/{}/task".format(pid)
    for thread in os.listdir(folder):
        # Threads come and go meanwhile, and so do children, whose time their parent then has.
        with contextlib.suppress(FileNotFoundError, ProcessLookupError):
            with open("{}/{}/children".format(folder, thread)) as file:
                spent += sum(map(processor_seconds, file.read().split()))
    return spent


def least(work, runs=5):
    """Seconds, and processor seconds of this process and all that it has started."""
    spent = []
    for _ in range(runs):
        wall, processor = time.perf_counter(), processor_seconds(os.getpid())
        work()
        spent.append((time.perf_counter() - wall, processor_seconds(os.getpid()) - processor))
    return [min(column) for column in zip(*spent)]


def overhead(is_quick):
    """The first table."""
    size = (160, 120, 16) if is_quick else (320, 240, 32)
    here = least(lambda: farm.render(room, *size))
    rows = [["no client", "%.2f" % here[0], "%.2f" % here[1], "1.00"]]
    for workers in (1, 2, 3):
        with Cluster(workers) as cluster:
            function = functools.partial(farm.render, room, *size, client=cluster.client)
            function()  # imports
            spent = least(function)
        rows.append([str(workers), *("%.2f" % value for value in spent),
                     "%.2f" % (spent[1] / here[1])])
    print("A frame of {} x {}, {} samples, all workers on this machine of {} cores\n".format(
        *size, len(os.sched_getaffinity(0))))
    show(["workers", "s", "s of processors", "of one process"], rows)


def same(number, source, payload=0):
    """A piece that takes no time."""
    return bytes(payload) if payload else number


def scheduler_cost(is_quick):
    """The second table. Returns the scheduler's seconds for each task, for each byte that a client
    gathers, and for each heartbeat of a worker."""
    from distributed.scheduler import heartbeat_interval

    count = 1000 if is_quick else 10000
    rows = []
    for_task = for_heartbeat = 0.0
    for workers in (4, 16) if is_quick else (4, 16, 64, 256):
        of_each = max(1, workers // 4)
        with Cluster(workers // of_each, of_each) as cluster:
            idle = cluster.scheduler_seconds()
            time.sleep(3)
            idle = (cluster.scheduler_seconds() - idle) / 3
            spent = measured(cluster, count, 0, idle)
            for_heartbeat = idle * heartbeat_interval(workers) / workers
            rows.append([str(workers), "%.2f" % (1000 * spent / count),
                         "%.2f" % (1000 * for_heartbeat)])
            for_task = max(for_task, spent / count)
    print("The scheduler's processor time for {} tasks\n".format(count))
    show(["workers", "ms a task", "ms a heartbeat, idle"], rows)
    megabytes = 200
    with Cluster(2) as cluster:
        spent = measured(cluster, megabytes, 1000000, 0)
    for_byte = max(spent / megabytes - for_task, 0) / 1e6
    print("A megabyte that a client gathers: {:.2f} ms of the scheduler\n".format(1e9 * for_byte))
    return for_task, for_byte, for_heartbeat


def measured(cluster, count, payload, idle):
    """Seconds of the scheduler for so many tasks, handed on and gathered as a farm's pieces."""
    from distributed import as_completed

    client = cluster.client
    token = str(time.monotonic_ns())
    begin, wall = cluster.scheduler_seconds(), time.monotonic()
    source = client.submit(same, 0, b"x" * 2000, key="bench_source-" + token)
    futures = client.map(same, range(count), source=source, payload=payload,
                         key=["bench_piece-{}-{}".format(token, i) for i in range(count)])
    waiting = as_completed(futures, loop=client.loop, with_results=True)
    del futures
    for _ in waiting:
        pass
    return max(cluster.scheduler_seconds() - begin - idle * (time.monotonic() - wall), 0)


class Farm:
    """A simulated cluster. The scheduler does one thing at a time: it hands out a task, and it
    passes a result on, through its own network. Workers take what is next."""

    def __init__(self, workers, for_task, for_byte):
        self._workers = workers
        self._for_task = for_task
        self._for_byte = for_byte

    def seconds(self, works, size):
        """How long the pieces take, each with its work in seconds and a result of size bytes."""
        free = [(0.0, worker, False) for worker in range(self._workers)]
        heapq.heapify(free)
        waiting = list(reversed(works))
        events = []  # (time, what arrives at the scheduler)
        scheduler = 0.0
        end = 0.0
        passing = size * self._for_byte + size / BANDWIDTH  # a result, to the client
        while waiting or events:
            if free and waiting and (not events or max(free[0][0], scheduler) <= events[0][0]):
                at, worker, has_scene = heapq.heappop(free)
                # Half of a task's cost is handing it out, half is taking note of its end.
                scheduler = max(scheduler, at) + self._for_task / 2
                done = scheduler + LATENCY + waiting.pop() + (0 if has_scene else START)
                heapq.heappush(events, (done + LATENCY, worker))
            else:
                at, worker = heapq.heappop(events)
                scheduler = max(scheduler, at) + self._for_task / 2
                # The worker is asked for its next piece before its result is fetched.
                heapq.heappush(free, (scheduler, worker, True))
                end = max(end, scheduler) + passing
                scheduler += size * self._for_byte
        return end + LATENCY


def simulated(for_task, for_byte, for_heartbeat, is_quick):
    """The third table."""
    from distributed.scheduler import heartbeat_interval

    chance = random.Random(1)

    def works(count, total, spread):
        """Work that adds up to the total, and differs from piece to piece."""
        parts = [chance.lognormvariate(0, spread) for _ in range(count)]
        factor = total / sum(parts)
        return [part * factor for part in parts]

    print("Simulated: {:g} ms latency, {:g} Gbit/s, {:.2f} ms of the scheduler for a task, "
          "{:.2f} ms for a megabyte, {:.2f} ms for a heartbeat\n".format(
              1e3 * LATENCY, 8e-9 * BANDWIDTH, 1e3 * for_task, 1e9 * for_byte,
              1e3 * for_heartbeat))
    rows = []
    for workers in WORKERS:
        # What the scheduler has left beside the heartbeats of so many workers.
        left = 1 - for_heartbeat * workers / heartbeat_interval(workers)
        cluster = Farm(workers, for_task / left, for_byte / left)
        for of_worker in (2, 8, 32):
            windows = cut((0, 0, *FRAME), max(of_worker * workers, 16))
            pixels = FRAME[0] * FRAME[1] / len(windows)
            spent = cluster.seconds(works(len(windows), SECONDS_OF_FRAME, SPREAD), 12 * pixels)
            rows.append([str(workers), "a frame, %d pieces" % len(windows), "%.1f" % spent,
                         "%.0f" % ((SECONDS_OF_FRAME + START) / spent)])
        frames = 1000 if is_quick else 10000
        spent = cluster.seconds(works(frames, frames * SECONDS_OF_SMALL_FRAME, SPREAD_OF_FRAMES),
                                PNG_BYTES)
        of_one = frames * SECONDS_OF_SMALL_FRAME + START
        rows.append([str(workers), "%d frames" % frames, "%.0f" % spent, "%.0f" % (of_one / spent)])
    show(["workers", "what", "seconds", "times one worker"], rows)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--quick", action="store_true", help="fewer tasks, smaller pictures")
    parser.add_argument("--workers", type=int, help=argparse.SUPPRESS)
    parser.add_argument("--scheduler-file", help=argparse.SUPPRESS)
    arguments = parser.parse_args()
    if arguments.workers:
        asyncio.run(work_for(arguments.scheduler_file, arguments.workers))
        return
    is_quick = arguments.quick
    overhead(is_quick)
    simulated(*scheduler_cost(is_quick), is_quick)


if __name__ == "__main__":
    main()
