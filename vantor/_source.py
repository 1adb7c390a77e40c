"""Source: what builds a scene, a function or a script, wherever it is called."""

import os
import sys

from ._scene import Scene


class NoSceneError(TypeError):
    """A source has built something else."""


class Source:
    """A function that returns a Scene, or the path of a script that makes one in the variable
    "scene". It can be pickled: of a script, the text travels."""

    def __init__(self, source):
        if isinstance(source, Scene):
            raise TypeError("a scene cannot travel; expected the function that builds it, or the "
                            "path of a script")
        self._function = self._text = self._path = None
        if callable(source):
            self._function = source
        elif isinstance(source, (str, os.PathLike)):
            self._path = os.path.abspath(source)
            try:
                with open(source, encoding="utf-8") as file:
                    self._text = file.read()
            except UnicodeDecodeError:
                raise OSError("{} is no script: it is not UTF-8".format(self._path)) from None
            if "\0" in self._text:
                raise OSError("{} is no script: it has null characters".format(self._path))
            compile(self._text, self._path, "exec")  # what is no Python is told here
        else:
            raise TypeError("expected a function that builds a scene, or the path of a script, "
                            "got {!r}".format(source))

    def build(self, frame=None):
        """The scene. A frame is the function's argument, or the script's variable "frame"."""
        try:
            if self._function:
                scene = self._function() if frame is None else self._function(frame)
            else:
                scene = self._run(frame)
        except SystemExit as error:
            raise NoSceneError("{} has ended, by sys.exit({!r}), before it made a scene".format(
                self, error.code)) from None
        if not isinstance(scene, Scene):
            what = ("returns no vantor.Scene" if self._function else
                    'makes no vantor.Scene in the variable "scene"')
            raise NoSceneError("{} {}".format(self, what))
        return scene

    def _run(self, frame):
        names = {"__name__": "__vantor__", "__file__": self._path}
        if frame is not None:
            names["frame"] = frame
        folder = os.path.dirname(self._path)
        sys.path.insert(0, folder)
        try:
            exec(compile(self._text, self._path, "exec"), names)
        except SystemExit:
            if "scene" not in names:
                raise
        finally:
            sys.path.remove(folder)
        return names.get("scene")

    def __str__(self):
        if not self._function:
            return self._path
        return getattr(self._function, "__qualname__", repr(self._function))
