"""Shading: the materials of a model, their pictures and their light, made in a scene."""

import os
import urllib.parse

from . import _native
from ._messages import script_place, tell

# How files begin that the renderer reads as pictures.
_SIGNATURES = (b"\x89PNG", b"\xff\xd8", b"\x76\x2f\x31\x01", b"#?")


class Shading:
    """What a model's materials become in a scene. Each material, picture and light is made once,
    when it is needed."""

    def __init__(self, scene, model):
        self._scene = scene
        self._model = model
        self._materials = {}
        self._paths = {}
        self._textures = {}
        self._lights = {}

    def material(self, number):
        """The handle of the material of that number; None if the model has none."""
        if not 0 <= number < len(self._model.materials):
            return None
        if number not in self._materials:
            self._materials[number] = self._made(self._model.materials[number])
        return self._materials[number]

    def parts(self, mesh):
        """The mesh in parts that shine, and those that do not: pairs of triangles and their light,
        an area light or None."""
        number = mesh.get("material", -1)
        told = self._model.materials[number] if 0 <= number < len(self._model.materials) else {}
        strength = told.get("emissive_intensity", 1.0)
        color = tuple(max(part * strength, 0.0) for part in told.get("emissive", (0.0,) * 3))
        if not max(color) > 0:
            return [(mesh["triangles"], None)]
        name = told.get("emissive_texture")
        if not name or not mesh.get("uvs"):
            return [(mesh["triangles"], self._light(color))]
        path = self._path(name)
        if not path:
            return [(mesh["triangles"], None)]
        if told.get("emissive_wrap", "repeat") != "repeat":
            return [(mesh["triangles"], self._light(color, self._image(told, "emissive")))]
        # Triangles that are black all over would be lights for nothing.
        width, height, pixels, _ = _native.read_picture(path)
        dark, bright = _native.emission_parts(_native.from_array(mesh["triangles"])[0],
                                              _native.from_array(mesh["uvs"])[0],
                                              pixels, width, height)
        parts = [(dark, None)] if dark else []
        if bright:
            parts.append((bright, self._light(color, self._image(told, "emissive"))))
        return parts

    def _light(self, radiance, pattern=None):
        if pattern:
            return self._scene.light("area", radiance=radiance, pattern=pattern)
        if radiance not in self._lights:
            self._lights[radiance] = self._scene.light("area", radiance=radiance)
        return self._lights[radiance]

    def _made(self, told):
        """A "principled" material of what the file says."""
        base = _clipped(told.get("base_color", (0.8, 0.8, 0.8)))
        metallic = _fraction(told.get("metallic", 0.0))
        roughness = _fraction(_roughness_of(told))
        opacity = _fraction(told.get("opacity", 1.0))
        transmission = _fraction(told.get("transmission", 0.0))
        parameters = {"base_color": base, "metallic": metallic, "roughness": roughness}
        if transmission > 0:
            parameters["transmission"] = transmission
            parameters["ior"] = min(max(told.get("ior", 1.5), 1.1), 3.0)
        for name in ("clearcoat", "clearcoat_roughness"):
            if told.get("clearcoat", 0.0) > 0 and name in told:
                parameters[name] = _fraction(told[name])

        pattern = self._image(told, "base_color")
        if pattern:
            del parameters["base_color"]
            parameters["color"] = self._times(pattern, base)
        # glTF packs roughness into the green and metallic into the blue of one picture.
        is_packed = told.get("is_packed", False)
        for name, factor, channel in (("metallic", metallic, "blue"),
                                      ("roughness", roughness, "green")):
            pattern = factor > 0 and self._image(
                told, name, color_space="linear", channel=channel if is_packed else "color")
            if pattern:
                parameters[name] = self._times(pattern, factor)
        normals = self._image(told, "normal", color_space="linear")
        if normals:
            parameters["normal_map"] = normals
        coverage = self._coverage(told)
        if transmission == 0 and (opacity < 1 or coverage):
            parameters["opacity"] = self._times(coverage, opacity) if coverage else opacity
        interface = {name: parameters.pop(name) for name in tuple(parameters)
                     if name in _OF_INTERFACE and not hasattr(parameters[name], "kind")}
        handle = self._scene.interface("principled", **interface)
        return self._scene.material("surface", interface=handle, **parameters)

    def _coverage(self, told):
        """The pattern of what the material covers, or None."""
        apart = told.get("opacity_texture")
        base = told.get("base_color_texture")
        if apart and apart != base:
            return self._image(told, "opacity", color_space="linear")
        return self._image(told, "base_color", channel="alpha") if (
            apart or told.get("has_alpha")) else None

    def _times(self, pattern, factor):
        is_one = (factor if isinstance(factor, float) else min(factor)) >= 1
        return pattern if is_one else self._scene.pattern("mix", a=pattern, b=factor, amount=1.0,
                                                          mode="multiply")

    def _image(self, told, use, **parameters):
        """The pattern of the picture that the file names for that use, or None."""
        name = told.get(use + "_texture")
        path = name and self._path(name)
        if not path:
            return None
        if path not in self._textures:
            self._textures[path] = self._scene.texture(path)
        wrap = told.get(use + "_wrap", "repeat")
        return self._scene.pattern("image", texture=self._textures[path], wrap=wrap, **parameters)

    def _path(self, name):
        """The file of a picture; None, which is warned of, if there is none to be used."""
        if name not in self._paths:
            path, why_not = self._found(name)
            if why_not:
                message = 'load: the picture "{}" of the model is left out: {}'
                tell([(True, message.format(name, why_not))], self._scene.strict, script_place())
            self._paths[name] = None if why_not else path
        return self._paths[name]

    def _found(self, name):
        """(path, what is wrong with it)"""
        if name.startswith("*"):
            number = int(name[1:]) if name[1:].isdigit() else -1
            textures = self._model.textures
            inside = textures[number] if 0 <= number < len(textures) else None
            if inside is None:
                return None, "the model has no such picture in it"
            if not inside.startswith(_SIGNATURES):
                return None, _NO_PICTURE
            path = self._scene.files.new_file(".picture")
            with open(path, "wb") as file:
                file.write(inside)
            return path, None
        path = _path_beside(self._model.folder, name)
        try:
            with open(path, "rb") as file:
                start = file.read(4)
        except OSError as error:
            return None, error.strerror
        return path, None if start.startswith(_SIGNATURES) else _NO_PICTURE


_NO_PICTURE = "it is no PNG, JPEG, OpenEXR or Radiance file"
_OF_INTERFACE = ("base_color", "metallic", "roughness", "transmission", "ior", "clearcoat",
                 "clearcoat_roughness")


def _path_beside(folder, name):
    """Where a picture is that a model names: there, or, as names are often those of another
    machine, beside the model; in letters of any case."""
    name = name.replace("\\", "/")
    for tried in (name, urllib.parse.unquote(name), os.path.basename(name)):
        path = os.path.join(folder, tried)
        if os.path.exists(path):
            return path
        try:
            names = os.listdir(os.path.dirname(path))
        except OSError:
            continue
        for found in sorted(names):
            if found.lower() == os.path.basename(path).lower():
                return os.path.join(os.path.dirname(path), found)
    return os.path.join(folder, name)


def _fraction(value):
    return min(max(value, 0.0), 1.0)


def _clipped(color):
    return tuple(map(_fraction, color))


def _roughness_of(told):
    if "roughness" in told:
        return told["roughness"]
    if "glossiness" in told:
        return 1.0 - told["glossiness"]
    # A Phong lobe of that exponent is about as wide as microfacets of alpha = sqrt(2 / (n + 2)),
    # and alpha is the square of the roughness.
    return (2.0 / (max(told.get("shininess", 0.0), 0.0) + 2.0)) ** 0.25
