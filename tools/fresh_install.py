"""Every way to install, for tools/fresh: built in one clean system, used and removed in another.

Debian 12 makes the wheel, Debian 13 has what "pip install ." needs; both make the packages. After
each installation the script examples/package/first_picture.py draws; after each removal no file is
left that has the project's name.
"""

import glob
import os
import shutil

from clean_systems import CLONE, PLACE, ROOT, Failure, clone, remove, report, run_in, unpack

# The system of somebody who only installs: the suite's name with this behind it.
USER = "-user"

SCRIPT = os.path.join(ROOT, "examples", "package", "first_picture.py")

APT = "export DEBIAN_FRONTEND=noninteractive; apt-get update -qq; apt-get install -y -qq " \
    "--no-install-recommends "

# What tools/setup installs besides what is built with.
TOOLS = {"bookworm": "wheel", "trixie": "pip"}

PIP = "pip install --no-build-isolation --break-system-packages "


def check(suite, archive, note):
    """Installs in each way; note(way, path) is called for each picture that is drawn."""
    builder, user = os.path.join(PLACE, suite), os.path.join(PLACE, suite + USER)
    try:
        unpack(archive, builder)
        clone(builder)
        in_clone(builder, suite, "build tools", "tools/setup build " + TOOLS[suite])
        if suite == "bookworm":
            make_wheel(builder, suite)
        else:
            use_pip(builder, suite, note)
        make_packages(builder, suite)
        unpack(archive, user)
        if suite == "bookworm":
            use_wheel(builder, user, suite, note)
        use_packages(builder, user, suite, note)
    finally:
        remove(builder)
        remove(user)


def in_clone(system, suite, what, command):
    return run_in(system, suite, what, "cd /{} && {}".format(CLONE, command))


def make_wheel(system, suite):
    in_clone(system, suite, "wheel", "cmake --preset release && cmake --build --preset release "
             "-j$(nproc) && tools/wheel")


def make_packages(system, suite):
    in_clone(system, suite, "packages",
             APT + "dpkg-dev debhelper lintian fakeroot && apt-get build-dep -y -qq "
             "--no-install-recommends ./ && DEB_BUILD_OPTIONS=\"parallel=$(nproc) noautodbgsym\" "
             "dpkg-buildpackage -us -uc")
    in_clone(system, suite, "lintian", "lintian --fail-on error ../vantor_*.changes")


def use_pip(system, suite, note):
    """From the clone, and from a source distribution of it."""
    in_clone(system, suite, "pip clone", PIP + ".")
    draw(system, suite, "pip clone", "python3", note)
    pip_uninstall(system, suite, "pip clone")
    in_clone(system, suite, "pip sdist",
             "python3 -c 'from scikit_build_core.build import build_sdist; "
             "build_sdist(\"dist\")' && " + PIP + "dist/*.tar.gz")
    draw(system, suite, "pip sdist", "python3", note)
    pip_uninstall(system, suite, "pip sdist")


def pip_uninstall(system, suite, way):
    run_in(system, suite, way + " gone", "pip uninstall -y --break-system-packages vantorPM")
    check_traces(system, suite)


def use_wheel(builder, user, suite, note):
    wheel = hand_over(builder, user, CLONE + "/dist/*.whl")[0]
    if os.path.getsize(wheel) > 30e6:
        raise Failure("{} has more than 30 MB".format(wheel))
    run_in(user, suite, "wheel used", APT + "python3-venv && python3 -m venv /opt/place && "
           "/opt/place/bin/pip install --no-index /root/handed/*.whl")
    draw(user, suite, "wheel", "/opt/place/bin/python3", note)
    run_in(user, suite, "wheel gone", "/opt/place/bin/pip uninstall -y vantorPM")
    check_traces(user, suite)


def use_packages(builder, user, suite, note):
    hand_over(builder, user, "root/*.deb")
    run_in(user, suite, "apt install", APT + "/root/handed/*.deb")
    draw(user, suite, "apt install", "python3", note)
    run_in(user, suite, "for makers", "cd /tmp && " + APT + "g++ >/dev/null && g++ -std=c++20 -O2 "
           "-ffp-contract=off -shared -fPIC -I/usr/include/vantor -o libVantor.so "
           "/usr/share/doc/libvantor-dev/examples/counting_vantor.cpp -Wl,-soname,libVantor.so && "
           "vantor-conformance ./libVantor.so && LD_LIBRARY_PATH=/tmp python3 "
           "/usr/share/doc/libvantor-dev/examples/pyramid.py | grep '5 points of objects'")
    run_in(user, suite, "apt purge", "apt-get purge -y -qq '*vantor*'")
    check_traces(user, suite)


def hand_over(builder, user, pattern):
    """Copies files from one system to the other; their places there."""
    folder = os.path.join(user, "root", "handed")
    os.makedirs(folder, exist_ok=True)
    found = glob.glob(os.path.join(builder, pattern))
    if not found:
        raise Failure("there is no {} in {}".format(pattern, builder))
    return [shutil.copy(path, folder) for path in found]


def draw(system, suite, way, python, note):
    """Runs the script; nothing else of the project is in its folder."""
    folder = os.path.join(system, "tmp", "drawn")
    shutil.rmtree(folder, ignore_errors=True)
    os.mkdir(folder)
    shutil.copy(SCRIPT, folder)
    run_in(system, suite, way + " draws", "cd /tmp/drawn && {} {}".format(
        python, os.path.basename(SCRIPT)))
    note(way, os.path.join(folder, "ball.png"))


def check_traces(system, suite):
    """Fails if a file or folder has the project's name, apart from what was brought in."""
    brought = [os.path.join(system, place) for place in ("root", "tmp", "proc", "dev")]
    left = []
    for folder, folders, names in os.walk(system):
        folders[:] = [name for name in folders if os.path.join(folder, name) not in brought]
        left += [os.path.join(folder, name) for name in folders + names
                 if "vantor" in name.lower()]
    if left:
        raise Failure("there is left: " + ", ".join(left))
    report(suite, "", "no trace is left")
