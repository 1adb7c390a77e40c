"""A scheduler and three workers of Dask distributed, each a process on the loopback, for tests."""

import os
import shutil
import subprocess
import sys
import tempfile
import time

try:
    import distributed
except ImportError:
    distributed = None

HERE = os.path.dirname(os.path.abspath(__file__))


class Cluster:
    """Three workers, with one thread each."""

    def __init__(self):
        self.folder = tempfile.mkdtemp(prefix="vantor-cluster-")
        self._file = os.path.join(self.folder, "scheduler.json")
        self._log = open(os.path.join(self.folder, "log"), "w")
        self._processes = []
        try:
            self._start("scheduler", "--host", "127.0.0.1", "--port", "0",
                        "--scheduler-file", self._file)
            self._wait_for_scheduler()
            for _ in range(3):
                self._start_worker()
            self.client = self.new_client()
            self.client.wait_for_workers(3, timeout=120)
        except BaseException:
            self.close()
            raise

    def _start(self, program, *arguments):
        # The workers import the functions of the tests, as a script's own modules.
        path = os.pathsep.join([HERE, os.environ.get("PYTHONPATH", "")])
        self._processes.append(subprocess.Popen(
            [sys.executable, "-m", "distributed.cli.dask_" + program, "--no-dashboard", *arguments],
            env=dict(os.environ, PYTHONPATH=path), cwd=self.folder, stdout=self._log,
            stderr=self._log))

    def _wait_for_scheduler(self):
        while not os.path.exists(self._file) or not os.path.getsize(self._file):
            if self._processes[0].poll() is not None:
                raise RuntimeError("the scheduler has ended: " + self.log())
            time.sleep(0.02)

    def new_client(self):
        return distributed.Client(scheduler_file=self._file, set_as_default=False, timeout=120)

    def _start_worker(self):
        self._start("worker", "--scheduler-file", self._file, "--nthreads", "1", "--no-nanny",
                    "--local-directory", self.folder)

    def kill_worker(self):
        """Kills one, and returns its process id."""
        victim = self._processes.pop()
        victim.kill()
        victim.wait()
        return victim.pid

    def replace_worker(self):
        """Starts another for one that was killed."""
        self._start_worker()
        self.client.wait_for_workers(3, timeout=120)

    def children(self):
        """How many processes the workers have started that are there."""
        count = 0
        for process in self._processes[1:]:
            folder = "/proc/{}/task".format(process.pid)
            for thread in os.listdir(folder):
                try:
                    with open("{}/{}/children".format(folder, thread)) as file:
                        count += len(file.read().split())
                except FileNotFoundError:  # the thread has ended
                    pass
        return count

    def log(self):
        with open(self._log.name) as file:
            return file.read()

    def close(self):
        if hasattr(self, "client"):
            self.client.close()
        for process in reversed(self._processes):
            process.kill()
            process.wait()
        self._log.close()
        shutil.rmtree(self.folder, ignore_errors=True)
