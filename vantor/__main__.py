"""The command vantor: renders scripts, shows models, explains the vocabulary, says what it runs on.

    python3 -m vantor render scene.py -o out.png --size 640x480 --samples 64 --denoise
    python3 -m vantor show model.glb
    python3 -m vantor view scene.py
    python3 -m vantor vocabulary newLight spot
    python3 -m vantor info
"""

import argparse
import os
import platform
import signal
import sys
import traceback
import webbrowser

from . import SceneError, View, __version__, _native, farm, load, vocabulary
from ._messages import Place
from ._picture import check_format
from ._source import NoSceneError, Source
from ._studio import scene_of_model
from ._vocabulary import ALL


_MOST = 2**31 - 1  # the renderer's integers have 32 bits


def size_of(text):
    """(640, 480) of "640x480"."""
    try:
        width, height = map(int, text.lower().split("x"))
    except ValueError:
        message = 'expected a size such as 640x480, got "{}"'
        raise argparse.ArgumentTypeError(message.format(text)) from None
    if not (0 < width <= _MOST and 0 < height <= _MOST):
        message = 'expected a width and a height from 1 to {}, got "{}"'
        raise argparse.ArgumentTypeError(message.format(_MOST, text))
    return width, height


def above_zero(text):
    """An option's number above 0."""
    try:
        value = float(text)
    except ValueError:
        value = 0.0
    if not 0 < value < float("inf"):
        raise argparse.ArgumentTypeError('expected a number above 0, got "{}"'.format(text))
    return value


def whole_number(low, high):
    """What makes an option's number, from low to high."""
    def number(text):
        try:
            value = int(text)
        except ValueError:
            value = None
        if value is None or not low <= value <= high:
            message = 'expected a whole number from {} to {}, got "{}"'
            raise argparse.ArgumentTypeError(message.format(low, high, text))
        return value

    return number


def render(arguments):
    """The script makes a Scene in the variable "scene"; what it keeps for __main__ does not run."""
    if arguments.scheduler is None:
        return draw(built(arguments.script), arguments, arguments.script)
    if arguments.denoise or arguments.adaptive or arguments.noise or arguments.time_limit:
        raise SystemExit("vantor: --denoise, --adaptive, --noise and --time-limit do not go with "
                         "--scheduler (the script's own imagers may say it)")
    try:
        from distributed import Client
    except ImportError:
        raise SystemExit("vantor: --scheduler needs distributed (Debian: python3-distributed)")
    with Client(arguments.scheduler) as client:
        size = (*arguments.size, arguments.samples)
        save(farm.render(arguments.script, *size, client=client), arguments)


def show(arguments):
    draw(scene_of_model(load(arguments.model), arguments.size), arguments, arguments.model)


def view(arguments):
    """Of a script or a model. A script is run in the process that renders, and again when its file
    changes."""
    try:
        opened = View.of_file(arguments.file, host=arguments.host, port=arguments.port)
    except (ImportError, ValueError) as error:
        raise SystemExit("vantor: {}".format(error)) from None
    for end in (signal.SIGTERM, signal.SIGHUP):
        signal.signal(end, signal.default_int_handler)  # as Ctrl-C: the child's files go, too
    with opened:
        print(opened.url, flush=True)
        if not arguments.no_browser:
            webbrowser.open(opened.url)
        try:
            opened.wait()
        except KeyboardInterrupt:
            pass


def built(script):
    """The script's scene. What is raised in the script ends the command, with the script's lines
    alone."""
    try:
        source = Source(script)
    except (SyntaxError, ValueError) as error:
        end_with(traceback.TracebackException.from_exception(error), [])
    try:
        return source.build()
    except NoSceneError:
        raise
    except Exception as error:
        told = traceback.TracebackException.from_exception(error)
        package = os.path.dirname(os.path.abspath(__file__))
        of_script = [line for line in told.stack if os.path.dirname(line.filename) != package]
        path = os.path.abspath(script)
        while of_script and of_script[0].filename != path:
            del of_script[0]
        end_with(told, of_script)


def end_with(told, lines):
    """Ends the command with an error, of which these lines of its traceback are shown."""
    told.stack = traceback.StackSummary.from_list(lines)
    sys.stderr.writelines(told.format() if lines else told.format_exception_only())
    raise SystemExit(1)


def draw(scene, arguments, path):
    """Renders and saves; what is said of the pass is of the file with that path."""
    place = Place(path, 0, "__main__", {})
    settings = {"noise": arguments.noise, "adaptive": arguments.adaptive or None,
                "time_limit": arguments.time_limit}
    size = (*arguments.size, arguments.samples)
    save(scene.render_for(place, *size, denoise=arguments.denoise, settings=settings), arguments)


def save(picture, arguments):
    picture.save(arguments.output, exposure=arguments.exposure)
    print(arguments.output)


def explain(arguments):
    print(vocabulary(*arguments.words))


def info(_):
    library = _native.library()
    beside = os.path.dirname(os.path.dirname(os.path.abspath(_native.__file__)))
    own = library and os.path.realpath(os.path.dirname(library)) == os.path.realpath(beside)
    why = "beside the module" if own else "found by the linker, LD_LIBRARY_PATH is {!r}".format(
        os.environ.get("LD_LIBRARY_PATH", ""))
    facts = {
        "Python": "{} ({})".format(platform.python_version(), sys.executable),
        "version": __version__,
        "package": os.path.dirname(os.path.abspath(__file__)),
        "renderer": "{} ({})".format(library, why),
        "vocabulary": "{} types".format(len(ALL.types)) if ALL.is_known else "not told",
        "messages": "as warnings" if _native.has_messages() else "on the error stream",
        "instructions": instruction_set(),
        "threads": len(os.sched_getaffinity(0)),
    }
    for name, value in facts.items():
        print("{:13} {}".format(name, value))


def instruction_set():
    """The widest vector instructions of this processor that ray tracing has code for."""
    try:
        with open("/proc/cpuinfo") as file:
            flags = next((line.split(":")[1].split() for line in file if line.startswith("flags")),
                         [])
    except OSError:
        return "unknown"
    known = ("avx512vl", "avx2", "avx", "sse4_2", "sse2")
    return next((name for name in known if name in flags), "unknown")


def parser():
    top = argparse.ArgumentParser(prog="vantor", description=__doc__.splitlines()[0])
    top.add_argument("--version", action="version", version="vantor " + __version__)
    commands = top.add_subparsers(required=True, metavar="command")

    def command(name, run, about):
        added = commands.add_parser(name, help=about, description=about)
        added.set_defaults(run=run, parser=added)
        return added

    def add_picture_options(added, output):
        added.add_argument("-o", "--output", default=output,
                           help="the picture's file (%(default)s)")
        added.add_argument("--size", type=size_of, default=(640, 480), help="such as 640x480")
        added.add_argument("--samples", type=whole_number(1, _MOST), default=64,
                           help="for each pixel (%(default)s)")
        added.add_argument("--exposure", type=float, default=0.0, help="in stops")
        added.add_argument("--denoise", action="store_true", help="less noise, of the same samples")
        added.add_argument("--adaptive", action="store_true",
                           help="samples go where the noise is; --samples is their mean")
        added.add_argument("--noise", type=above_zero, metavar="ERROR",
                           help="the relative error below which the picture is good enough")
        added.add_argument("--time-limit", type=above_zero, metavar="SECONDS",
                           help="after which no further samples are begun")

    rendering = command("render", render, "Renders the scene that a script describes.")
    rendering.add_argument("script")
    add_picture_options(rendering, "out.png")
    rendering.add_argument("--scheduler", metavar="ADDRESS",
                           help="of a cluster of Dask distributed whose workers render")
    showing = command("show", show, "Renders a model file, on a ground under a sky.")
    showing.add_argument("model")
    add_picture_options(showing, "out.png")
    viewing = command("view", view, "Shows a script's scene or a model in the browser, to look "
                      "around.")
    viewing.add_argument("file", help="a script, or a model")
    viewing.add_argument("--host", default="127.0.0.1",
                         help="where to listen (%(default)s: this machine alone)")
    viewing.add_argument("--port", type=whole_number(0, 65535), default=0,
                         help="0: any that is free")
    viewing.add_argument("--no-browser", action="store_true", help="only print the address")
    explaining = command("vocabulary", explain, "Explains what the renderer knows.")
    explaining.add_argument("words", nargs="*", help="a call, a type, or both")
    command("info", info, "Says which renderer is used, on what.")
    return top


def check_output(chosen):
    """A picture that cannot be saved is not rendered."""
    folder = os.path.dirname(os.path.abspath(chosen.output))
    try:
        check_format(chosen.output, chosen.exposure)
    except ValueError as error:
        chosen.parser.error(str(error))
    if os.path.isdir(chosen.output) or not os.path.isdir(folder):
        chosen.parser.error("--output: no picture can be written to {}".format(chosen.output))


def main(arguments=None):
    chosen = parser().parse_args(arguments)
    if hasattr(chosen, "output"):
        check_output(chosen)
    try:
        chosen.run(chosen)
    except (OSError, LookupError, NoSceneError, SceneError, farm.FarmError) as error:
        message = error.args[0] if isinstance(error, LookupError) else error
        raise SystemExit("vantor: {}".format(message)) from None


if __name__ == "__main__":
    main()
