"""Items: from keywords to the names and values of the module's lists."""

import keyword
import os

from . import _handles, _values
from ._picture import Picture
from ._vocabulary import ALL


def items_of(scene, call, type, parameters):
    """[name, value, name, value ...] of keywords, without those that are None."""
    items = []
    for name, value in parameters.items():
        is_word = name.endswith("_") and keyword.iskeyword(name[:-1])
        name = name[:-1] if is_word else name
        if value is not None:
            items += [name, _converted(scene, call, type, name, value)]
    return items


def _converted(scene, call, type, name, value):
    known = ALL.parameter(call, type, name)
    where = '{} "{}": {}'.format(call, type, name)
    if (call, type, name) == ("newLight", "environment", "name"):
        return _values.named(where, path_of_picture, scene, value)
    if known and known.kind == "id:texture" and not isinstance(value, _handles.Handle):
        return _values.named(where, scene.texture, value).id
    if known and (name, known.kind) == ("colors", "vector3array"):
        return _values.named(where, _values.colors, value)
    if known:
        return _values.named(where, _values.by_kind, scene, known.kind, value)
    return _values.named(where, _values.by_shape, scene, value)


def path_of_picture(scene, picture):
    """Its file: one of the scene's, unless it is given by a path."""
    if isinstance(picture, (str, os.PathLike)):
        return _values.text(picture)
    path = scene.files.new_file(".exr")
    Picture.of(picture).save(path)
    return path


def surface_and_interface(type, parameters):
    """The parameters of a material that is named by its interface: of the surface, and of the
    interface."""
    of_surface, of_interface = {}, {}
    for name, value in parameters.items():
        is_surfaces = ALL.parameter("newMaterial", "surface", name) is not None and (
            isinstance(value, _handles.Pattern)
            or ALL.parameter("newInterface", type, name) is None
        )
        (of_surface if is_surfaces else of_interface)[name] = value
    # The interface has its name for the colour, the surface another.
    for name in ("reflectance", "base_color"):
        if isinstance(of_interface.get(name), _handles.Pattern):
            of_surface["color"] = of_interface.pop(name)
    return of_surface, of_interface
