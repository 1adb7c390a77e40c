"""Clean Debian systems for tools/fresh: made once, unpacked for each use, entered in namespaces.

Everything lies in build/fresh. All mounts and processes lie in namespaces of their own: they end
with the program, in whatever way it ends.
"""

import ctypes
import fcntl
import os
import re
import shutil
import signal
import subprocess
import sys
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
PLACE = os.path.join(ROOT, "build", "fresh")
COMMIT = os.path.join(PLACE, "commit.git")

SUITES = {"bookworm": "Debian 12", "trixie": "Debian 13"}

# What somebody who has just cloned the repository has.
PACKAGES = "ca-certificates,git,make"

# The clone within the clean system.
CLONE = "root/vantor"

PASSED_ON = ["http_proxy", "https_proxy", "no_proxy"]
DEVICES = ["null", "zero", "full", "random", "urandom", "tty"]


class Failure(Exception):
    """What went wrong, in a sentence."""


def run(*command, **keywords):
    subprocess.run(command, check=True, **keywords)


def output(*command):
    result = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
    return result.stdout if result.returncode == 0 else ""


# ----- the bare system


def mirror():
    """The address that this machine has Debian from; none if it is no Debian."""
    targets = output(
        "apt-get", "indextargets", "--format", "$(LABEL)|$(REPO_URI)", "Created-By: Packages"
    )
    found = re.search(r"^Debian\|(\S+)$", targets, re.M)
    return [found[1]] if found else []  # without one, mmdebstrap knows where to look


def apt_options():
    """This machine's settings of apt for the network and the clock, a line each."""
    settings = output("apt-config", "dump").splitlines()
    wanted = re.compile(r"Acquire::(https?::|Check-|Retries)")
    return [setting for setting in settings if wanted.match(setting)]


def bare_system(suite, anew):
    """The archive of the suite's bare system, made if need be."""
    archive = os.path.join(PLACE, suite + ".tar")
    if anew or not os.path.exists(archive):
        part = os.path.join(PLACE, suite + ".part.tar")
        options = ["--aptopt=" + setting for setting in apt_options()]
        run("mmdebstrap", "--quiet", "--variant=minbase", "--include=" + PACKAGES, *options,
            suite, part, *mirror())
        os.rename(part, archive)
    return archive


def take_place():
    """The open file by which no other run gets the folder before it is closed."""
    file = open(os.path.join(PLACE, "lock"), "w")
    try:
        fcntl.flock(file, fcntl.LOCK_EX | fcntl.LOCK_NB)
    except OSError:
        raise Failure("another run is at work in {}: wait for its end".format(PLACE)) from None
    return file


def keep_the_commit():
    """Sets the last commit aside, so that all suites try the same one while the work goes on."""
    shutil.rmtree(COMMIT, ignore_errors=True)
    run("git", "-c", "init.defaultBranch=main", "init", "-q", "--bare", COMMIT)
    run("git", "-C", COMMIT, "fetch", "-q", "--depth=1", "file://" + ROOT, "HEAD:refs/heads/main")
    print(output("git", "-C", COMMIT, "log", "-1", "--format=%h %s").strip(), flush=True)


# ----- inside the namespaces


def unpack(archive, system):
    """A clean system in the folder, with devices, processes and terminals."""
    remove(system)
    os.makedirs(system)
    run("tar", "-C", system, "--numeric-owner", "--exclude=./dev/*", "-xpf", archive)
    if os.path.exists("/etc/resolv.conf"):
        shutil.copy("/etc/resolv.conf", os.path.join(system, "etc"))

    devices = os.path.join(system, "dev")
    run("mount", "-t", "proc", "proc", os.path.join(system, "proc"))
    run("mount", "-t", "tmpfs", "-o", "mode=755", "tmpfs", devices)
    for name in DEVICES:
        path = os.path.join(devices, name)
        open(path, "w").close()
        run("mount", "--bind", "/dev/" + name, path)
    for name, kind, options in [("pts", "devpts", "newinstance,ptmxmode=0666"),
                                ("shm", "tmpfs", "mode=1777")]:
        os.mkdir(os.path.join(devices, name))
        run("mount", "-t", kind, "-o", options, kind, os.path.join(devices, name))
    for name, target in [("ptmx", "pts/ptmx"), ("fd", "/proc/self/fd"), ("stdin", "fd/0"),
                         ("stdout", "fd/1"), ("stderr", "fd/2")]:
        os.symlink(target, os.path.join(devices, name))


def remove(system):
    if os.path.exists(system):
        for line in reversed(open("/proc/self/mounts").read().splitlines()):
            if line.split()[1].startswith(system + "/"):
                run("umount", line.split()[1])
        run("rm", "-rf", "--one-file-system", system)


def clone(system):
    """The commit that is tried, in the clean system."""
    # Within a user namespace, neither side need belong to the one who asks.
    trust = dict(os.environ, GIT_CONFIG_COUNT="1", GIT_CONFIG_KEY_0="safe.directory",
                 GIT_CONFIG_VALUE_0="*")
    run("git", "clone", "-q", "file://" + COMMIT, os.path.join(system, CLONE), env=trust)


def run_in(system, suite, what, command, outcome=lambda lines: "done"):
    """Runs a shell command in the clean system; the lines that it printed. The outcome that is
    reported is made of them."""
    log = os.path.join(PLACE, "{}-{}.log".format(suite, what.replace(" ", "-")))
    environment = {name: os.environ[name] for name in PASSED_ON if name in os.environ}
    environment.update(PATH="/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin",
                       HOME="/root", LANG="C.UTF-8", TERM="dumb")
    started = time.monotonic()
    with open(log, "w") as file:
        result = subprocess.run(["chroot", system, "/bin/sh", "-c", command],
                                stdin=subprocess.DEVNULL, stdout=file, stderr=subprocess.STDOUT,
                                env=environment)
    with open(log, errors="replace") as file:
        lines = file.read().splitlines() or [""]
    told = outcome(lines)
    if result.returncode:
        print("\n".join(lines[-60:]))
        told = "failed (exit code {}); see {}".format(result.returncode, log)
    report(suite, what, told, time.monotonic() - started)
    if result.returncode:
        raise Failure("{}: {} failed".format(SUITES[suite], what))
    return lines


def report(suite, what, outcome, seconds=None):
    spent = "" if seconds is None else " {:6.0f} s".format(seconds)
    print("{:10} {:12} {}{}".format(SUITES[suite], what, outcome, spent), flush=True)


# ----- outside


def namespaces():
    """The command that runs another one as root, with mounts of its own."""
    command = ["unshare", "--mount", "--pid", "--fork", "--kill-child"]
    if os.geteuid() != 0:
        command += ["--user", "--map-root-user", "--map-auto"]
    if not shutil.which("unshare") or subprocess.run([*command, "true"]).returncode:
        raise Failure(
            "mounting is not allowed here: run as root with CAP_SYS_ADMIN, or let this user have "
            "user namespaces and subordinate ids (/etc/subuid, /etc/subgid; Debian: uidmap)")
    return command


def run_inside(enter, program):
    """Runs the program in namespaces that do not outlive this process; its exit code."""

    def die_with_parent():
        pr_set_pdeathsig = 1
        ctypes.CDLL(None).prctl(pr_set_pdeathsig, signal.SIGKILL)

    process = subprocess.Popen([*enter, sys.executable, *program], preexec_fn=die_with_parent)
    try:
        return process.wait()
    finally:
        process.kill()
        process.wait()
