"""Scene: what a script describes and renders."""

from collections.abc import Iterable

import vantorPM

from . import _handles, _native, _values
from ._files import TemporaryFolder
from ._items import items_of, path_of_picture, surface_and_interface
from ._job import Job
from ._messages import SceneError, is_strict_by_environment, script_place, tell
from ._models import Model
from ._passes import Pass, aov_parameter
from ._points import Points
from ._picture import Picture
from ._transforms import Transform, open_transforms, scale as scaling
from ._vocabulary import ALL


def _call_name(kind):
    return "new" + kind.capitalize()


class Scene:
    """A scene in the renderer. What it can name is told by vantor.vocabulary().

    patches is the budget of patches of radiosity(). What is wrong with a scene arrives as a warning
    of the class SceneWarning; if strict is true, as a SceneError.
    """

    def __init__(self, patches=10240, *, strict=None):
        self._scene = vantorPM.scene(_values.named("Scene: patches", _values.integer, patches))
        self.strict = is_strict_by_environment() if strict is None else bool(strict)
        self.handles = []
        self._open = []
        self._area_light = None
        self.last_camera = None
        self._last_file_imager = None
        self._last_settings = None
        self._own_imagers = {}
        self._has_own_settings = False
        self.files = TemporaryFolder()  # on the way to and from the renderer

    # What a scene is made of. The keywords are the renderer's parameters; a name that is a keyword
    # of Python has an underscore behind it ("from_").

    def camera(self, type, /, **parameters):
        """Makes a camera, under the open transforms. The one made last takes the picture."""
        camera = self._under_transforms(self._create, _handles.Camera, type, parameters)
        camera.parameters = parameters
        camera.transforms = open_transforms.get()
        self.last_camera = camera
        return camera

    def imager(self, type, /, **parameters):
        """Makes an imager: a "file" that render() also writes, or "settings" of a pass."""
        imager = self._create(_handles.Imager, type, parameters)
        imager.parameters = parameters
        if type == "file":
            self._last_file_imager = imager
        elif type == "settings":
            self._last_settings = imager
        return imager

    def interface(self, type, /, **parameters):
        """Makes an interface, how a surface scatters light."""
        return self._create(_handles.Interface, type, parameters)

    def interior(self, type, /, **parameters):
        """Makes an interior, the medium inside of objects; "with interior:" they are filled."""
        return self._create(_handles.Interior, type, parameters)

    def light(self, type, /, **parameters):
        """Makes a light, under the open transforms. "with light:" objects shine, if it is an area
        light. An array of a picture may be given for an environment's "name"."""
        light = self._under_transforms(self._create, _handles.Light, type, parameters)
        light.is_on = True
        if type == "area":
            self._area_light = light
        return light

    def material(self, type, /, **parameters):
        """Makes a material; objects that are added "with material:" have it. The type may be that
        of an interface: the material is then a surface of such an interface."""
        is_interface = ALL.find("newInterface", type) and not ALL.find("newMaterial", type)
        if not is_interface:
            return self._create(_handles.Material, type, parameters)
        of_surface, of_interface = surface_and_interface(type, parameters)
        of_surface["interface"] = self._create(_handles.Interface, type, of_interface)
        material = self._create(_handles.Material, "surface", of_surface)
        material.type = type
        return material

    def object(self, type, /, **parameters):
        """Makes an object, which add() puts into the scene."""
        made = self._create(_handles.Object, type, parameters)
        made.material = None
        return made

    def pattern(self, type, /, **parameters):
        """Makes a pattern, a value that varies over a surface. The texture of an "image" may also
        be given as texture() takes it: a path, a Picture or an array."""
        return self._create(_handles.Pattern, type, parameters)

    def texture(self, picture):
        """Makes a texture of the path of a picture, a Picture, or an array (H, W, 3) of linear
        floats."""
        id = self._call("newTexture", _values.named("newTexture", path_of_picture, self, picture))
        return self._keep(_handles.Texture(self, id, None, script_place()))

    def trimmer(self, type, /, **parameters):
        """Makes a trimmer, which cuts parts of objects away."""
        return self._create(_handles.Trimmer, type, parameters)

    def add(self, what, /, *, transform=None, scale=None, **parameters):
        """Puts an object into the scene, within the open blocks and under the open transforms: one
        that object() made, a type with its parameters, a Model, or Points. A transform and a scale
        of its own act first, the scale before the transform. Returns the object, or what the model
        gives.
        """
        own = []
        for name, make, value in (("transform", Transform, transform), ("scale", scaling, scale)):
            own += [_values.named("add: " + name, make, value)] if value is not None else []
        if isinstance(what, str):
            what = self._object_to_add(what, parameters)
        elif parameters:
            names = ", ".join(parameters)
            raise TypeError("add: {} is made already, and takes no {}".format(what, names))
        for block in own:
            block.__enter__()
        try:
            if isinstance(what, (Model, Points)):
                return what.add_to(self)
            id = _values.named("add", self.id_of, what, "object")
            self._under_transforms(self._call, "addObject", id)
            materials = [open for open in self._open if open.kind == "material"]
            what.material = materials[-1] if materials else None
            return what
        finally:
            for block in reversed(own):
                block.__exit__()

    def _object_to_add(self, type, parameters):
        """Of a type's name; what can be no type and no parameter has its way said."""
        if ALL.is_known and "." in type and not ALL.find("newObject", type):
            raise TypeError('add: {0!r} is no type of object; a file is added by '
                            'add(vantor.load({0!r}))'.format(type))
        for name, value in parameters.items():
            of_block = (_handles.Material, _handles.Interior, _handles.Light)
            if isinstance(value, of_block) and not ALL.parameter("newObject", type, name):
                raise TypeError('add: {0} is given by its block, "with {0}: scene.add({1!r})"'
                                .format(value.kind, type))
        return self.object(type, **parameters)

    # Passes.

    def radiosity(self):
        """Solves indirect light for the passes that follow; the vocabulary's page says how."""
        self._call("radiosity")

    def render(self, width, height, samples=64, *, window=(0.0, 0.0, 1.0, 1.0), aovs=(),
               background=True, denoise=False, filter=None, filter_width=None, wait=True,
               progress=False, first_sample=None, samples_in_all=None, time_limit=None, noise=None,
               adaptive=None):
        """Renders a picture.

        width and height are those of the whole picture, in pixels; samples are for each pixel. The
        window, x0 y0 x1 y1 in fractions from the upper left corner, is the part that is rendered.
        aovs are names of further values, such as "albedo" and "depth", which the Picture then has.
        Without a background the colour is that of surfaces alone, and the Picture has an alpha.
        With denoise=True the colour has less noise, of the same samples.
        The filter is that of the imager "file". With wait=False the pass runs in a process of its
        own, and a Job is returned. With progress=True, it is waited for such a Job under a bar of
        tqdm. Where no picture comes of it, SceneError says why.

        With adaptive=True further samples than 16 go where the noise is, and samples is how many a
        pixel gets on average. Once the picture's relative error is below noise, such as 0.02, no
        further samples are begun, nor after time_limit, in seconds; samples are then the most.

        With first_sample and samples_in_all the pass makes a part of a larger picture's samples,
        which vantor.merge() puts together with others. What is not given of all these is as the
        script's own settings say.
        """
        settings = {"first_sample": first_sample, "samples_in_all": samples_in_all,
                    "time_limit": time_limit, "noise": noise,
                    "adaptive": adaptive}
        return self.render_for(script_place(), width, height, samples, window, aovs, filter,
                               filter_width, wait, progress, background=background,
                               denoise=denoise, settings=settings)

    def view(self, *, host="127.0.0.1", port=0):
        """Opens a page in which the scene, as it is now, can be looked at from all sides in a
        browser; needs aiohttp. Returns a View: its url is the page's, close() ends it, and in a
        notebook it shows itself."""
        from ._viewer import View

        return View.of_scene(self, host=host, port=port)

    # For the handles, and for the other parts of this package.

    def render_for(self, place, width, height, samples=64, window=(0.0, 0.0, 1.0, 1.0), aovs=(),
                   filter=None, filter_width=None, wait=True, progress=False,
                   with_files=True, background=True, denoise=False, settings=None):
        """As render(), with the place of the script that its messages belong to; with_files=False
        leaves out the file imager that the script has made last."""
        aovs = tuple(aovs) if isinstance(aovs, Iterable) and not isinstance(aovs, str) else (aovs,)
        filtering = {"filter": filter, "filter_width": filter_width}
        of_color = {}
        named = _values.named
        if not named("render: background", _values.switch, background):
            of_color["background"] = 0
            if "alpha" not in aovs:
                aovs += ("alpha",)
        if named("render: denoise", _values.switch, denoise):
            of_color["denoise"] = 1
        settings = {name: value for name, value in (settings or {}).items() if value is not None}
        if "adaptive" in settings:
            settings["adaptive"] = named("render: adaptive", _values.switch, settings["adaptive"])
        work = Pass(
            self,
            tuple(named("render: " + name, _values.integer, value) for name, value in
                  (("width", width), ("height", height), ("samples", samples))),
            named("render: window", _native.numbers, window, (4,)),
            ("color", *(aov for aov in aovs if aov != "color")),
            {name: value for name, value in filtering.items() if value is not None},
            settings,
            with_files,
            of_color,
        )
        if not wait:
            return Job(work, self.strict, place)
        if progress:
            return Job(work, self.strict, place).result(progress=True)
        messages = []
        try:
            work.prepare(self.files.path)
            layers = work.run(messages)
        except BaseException:
            tell(messages, False, place, self.handles)
            raise
        if not layers:
            work.tell_why_nothing(messages, place)
        tell(messages, self.strict, place, self.handles)
        return Picture.of_pass(work, layers)

    def id_of(self, handle, kind=None):
        """The number of a handle of this scene, and of that kind."""
        if not isinstance(handle, _handles.Handle) or kind not in (None, handle.kind):
            expected = _handles.with_article(kind or "handle")
            raise TypeError("expected {}, got {!r}".format(expected, handle))
        if handle.scene is not self:
            raise ValueError("{!r} belongs to another scene".format(handle))
        return handle.id

    def open_block(self, handle):
        if handle.kind == "light":
            self._open_light(handle)
        else:
            self._begin(handle.kind, self.id_of(handle))
        self._open.append(handle)

    def close_block(self, handle):
        same_kind = [open for open in self._open if open.kind == handle.kind]
        if not same_kind or same_kind[-1] is not handle:
            raise RuntimeError(
                "the block of {!r} ends, but is not the innermost one of its kind".format(handle)
            )
        del self._open[len(self._open) - 1 - self._open[::-1].index(handle)]
        self._call(handle.kind + "End")

    def switch_light(self, light, is_on):
        self._call("lightOn" if is_on else "lightOff", self.id_of(light))
        light.is_on = is_on
        if is_on and light.type == "area":
            self._area_light = light

    def innermost_file_imagers(self):
        """The file imagers whose blocks are open; without any, the one made last."""
        found = [h for h in self._open if h.kind == "imager" and h.type == "file"]
        return found, [self._last_file_imager] if self._last_file_imager and not found else []

    def own_imager(self, path, aov, filtering, of_color):
        """The number of an imager for this package's own use, made once for each file and way."""
        key = (path, tuple(sorted(filtering.items())), tuple(sorted(of_color.items())))
        if key not in self._own_imagers:
            parameters = dict(filtering, name=path)
            if aov == "color":
                parameters.update(of_color)
            else:
                known = aov_parameter()
                parameters[known.name if known else "what"] = aov
            handle = self._create(_handles.Imager, "file", parameters, is_own=True)
            self._own_imagers[key] = handle.id
        return self._own_imagers[key]

    def own_camera(self, parameters):
        """A perspective camera for this package's own use, from which the next pass looks."""
        self._create(_handles.Camera, "perspective", parameters, is_own=True)

    def own_settings(self, changed):
        """The numbers of the imagers, one or none, by which a pass follows the script's settings
        but for what is changed."""
        if not changed and not self._has_own_settings:
            return []
        # From now on they count at every pass: without an open block, the renderer takes the
        # settings that were made last, which may be these.
        self._has_own_settings = True
        opened = [h for h in self._open if h.kind == "imager" and h.type == "settings"]
        script = (opened or [self._last_settings])[-1]
        parameters = dict(script.parameters if script else {}, **changed)
        key = ("settings", repr(sorted(parameters.items())))
        if key not in self._own_imagers:
            handle = self._create(_handles.Imager, "settings", parameters, is_own=True)
            self._own_imagers[key] = handle.id
        return [self._own_imagers[key]]

    def module_call(self, messages, name, *arguments, pictures=None):
        """A call of the module's scene. Messages are appended to the list; of files whose paths are
        keys of the dict pictures, the values are set to what the files would hold, if the renderer
        offers that."""
        pictures = {} if pictures is None else pictures
        return _native.call(messages, pictures, getattr(self._scene, name), *arguments)

    def _call(self, name, *arguments):
        messages = []
        try:
            result = self.module_call(messages, name, *arguments)
        except BaseException:
            tell(messages, False)
            raise
        tell(messages, self.strict)
        return result

    def _begin(self, kind, *arguments):
        """Opens a block of the renderer. One with which something is wrong is closed again, if that
        is an error."""
        try:
            self._call(kind + "Begin", *arguments)
        except SceneError:
            self.module_call([], kind + "End")
            raise

    def _create(self, handle_class, type, parameters, is_own=False):
        call = _call_name(handle_class.kind)
        if not isinstance(type, str):
            raise TypeError("{}: expected the name of a type, got {!r}".format(call, type))
        items = items_of(self, call, type, parameters)
        handle = handle_class(self, self._call(call, type, items), type, script_place())
        return handle if is_own else self._keep(handle)

    def _keep(self, handle):
        self.handles.append(handle)
        return handle

    def _under_transforms(self, call, *arguments):
        opened = 0
        try:
            for transform in open_transforms.get():
                self._begin("transform", transform.module_transform)
                opened += 1
            return call(*arguments)
        finally:
            for _ in range(opened):
                self._call("transformEnd")

    def _open_light(self, light):
        if light.type != "area" and ALL.is_known:
            raise TypeError('{!r} has no block: objects shine of an "area" light'.format(light))
        # The renderer's block takes the area light that was made or switched on last.
        was_on = light.is_on
        if light is not self._area_light or light.scene is not self:
            self.switch_light(light, True)
        self._begin("light")
        if not was_on:
            self.switch_light(light, False)

    def __repr__(self):
        counts = {}
        for handle in self.handles:
            counts[handle.kind] = counts.get(handle.kind, 0) + 1
        told = ", ".join("{} {}{}".format(count, kind, "" if count == 1 else "s")
                         for kind, count in counts.items())
        return "<Scene: {}>".format(told or "empty")
