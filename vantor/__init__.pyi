"""The types of the package vantor. What its parts do is said where they are written."""

import os
from collections.abc import Awaitable, Callable, Generator, Iterable
from typing import Any, Dict, List, Literal, Optional, Sequence, Tuple, Union, overload

import numpy
import vantorPM
from numpy.typing import NDArray
from typing_extensions import Self

from ._vocabulary import _Aov, _Buffer, _Color, _Display, _Filter, _FloatArray, _HasArray, _IntArray
from ._vocabulary import _Integer, _Matrix4, _Number, _PictureSource, _Scale, _Switch, _Text
from ._vocabulary import _TransformArray, _Vector2, _Vector2Array, _Vector3, _Vector3Array

__all__ = [
    "Camera",
    "Handle",
    "Imager",
    "Interface",
    "Interior",
    "Job",
    "JobError",
    "Light",
    "Material",
    "Model",
    "Object",
    "Pattern",
    "Picture",
    "Points",
    "Scene",
    "SceneError",
    "SceneWarning",
    "Texture",
    "Transform",
    "Trimmer",
    "View",
    "load",
    "look_at",
    "matrix",
    "merge",
    "points",
    "rotate",
    "scale",
    "to_numpy",
    "translate",
    "vocabulary",
]

__version__: str

class SceneWarning(UserWarning): ...
class SceneError(Exception): ...
class JobError(RuntimeError): ...

class Handle:
    kind: str
    id: int
    type: Optional[str]
    def __init__(self, scene: Scene, id: int, type: Optional[str], place: Any) -> None: ...
    @property
    def scene(self) -> Scene: ...

class _Block(Handle):
    def __enter__(self) -> Self: ...
    def __exit__(self, *_: object) -> None: ...

class Camera(Handle): ...
class Imager(_Block): ...
class Interface(Handle): ...
class Interior(_Block): ...

class Light(_Block):
    is_on: bool
    def on(self) -> None: ...
    def off(self) -> None: ...

class Material(_Block): ...
class Object(Handle): ...
class Pattern(Handle): ...
class Texture(Handle): ...
class Trimmer(Handle): ...

class Transform:
    module_transform: vantorPM._transform
    def __init__(self, value: _Matrix4) -> None: ...
    @property
    def rows(self) -> Tuple[Tuple[float, float, float, float], ...]: ...
    def __matmul__(self, other: Transform) -> Transform: ...
    def inverse(self) -> Transform: ...
    def __array__(self, dtype: Any = None, copy: Optional[bool] = None) -> NDArray[Any]: ...
    def __enter__(self) -> Self: ...
    def __exit__(self, *_: object) -> None: ...
    __hash__: None  # type: ignore[assignment]

def matrix(value: _Matrix4) -> Transform: ...
@overload
def translate(x: _Number, y: _Number, z: _Number) -> Transform: ...
@overload
def translate(x: _Vector3, y: None = None, z: None = None) -> Transform: ...
@overload
def scale(x: _Number, y: _Number, z: _Number) -> Transform: ...
@overload
def scale(x: Union[_Number, _Vector3], y: None = None, z: None = None) -> Transform: ...
def rotate(angle: _Number, axis: _Vector3 = ..., point: _Vector3 = ...) -> Transform: ...
def look_at(position: _Vector3, target: _Vector3, up: _Vector3 = ...) -> Transform: ...

class Picture:
    width: int
    height: int
    full_size: Tuple[int, int]
    origin: Tuple[int, int]
    def __init__(
        self,
        width: int,
        height: int,
        layers: Dict[str, bytearray],
        *,
        full_size: Optional[Tuple[int, int]] = None,
        origin: Tuple[int, int] = (0, 0),
        alpha: Optional[bytearray] = None,
    ) -> None: ...
    @classmethod
    def load(cls, path: _Text) -> Self: ...
    @classmethod
    def of(cls, value: Union[Picture, _Buffer, Sequence[Any]]) -> Picture: ...
    @property
    def names(self) -> Tuple[str, ...]: ...
    @property
    def samples(self) -> Optional[Tuple[int, int, int]]: ...
    def buffer(self, name: str = "color") -> memoryview: ...
    def array(self, name: str = "color") -> NDArray[numpy.float32]: ...
    @property
    def color(self) -> NDArray[numpy.float32]: ...
    @property
    def alpha(self) -> Optional[NDArray[numpy.float32]]: ...
    def __array__(self, dtype: Any = None, copy: Optional[bool] = None) -> NDArray[Any]: ...
    def __getattr__(self, name: str) -> NDArray[numpy.float32]: ...
    def save(
        self,
        path: _Text,
        exposure: _Number = 0.0,
        display: Optional[_Display] = None,
        name: str = "color",
        *,
        bits: Optional[int] = None,
        layers: Union[str, Iterable[str]] = (),
    ) -> None: ...
    def png(
        self,
        exposure: _Number = 0.0,
        display: Optional[_Display] = None,
        name: str = "color",
    ) -> bytes: ...

def merge(pictures: Iterable[Union[Picture, _Text]]) -> Picture: ...

class Job(Awaitable[Picture]):
    def __init__(self, work: Any, strict: bool, place: Any) -> None: ...
    @property
    def progress(self) -> float: ...
    def done(self) -> bool: ...
    def preview(self) -> Optional[Picture]: ...
    def cancel(self) -> None: ...
    def result(self, timeout: Optional[float] = None, *, progress: bool = False) -> Picture: ...
    def __await__(self) -> Generator[Any, None, Picture]: ...

class View:
    url: str
    port: int
    def __init__(
        self,
        build: Callable[[], Scene],
        watched: Optional[str] = None,
        *,
        host: str = "127.0.0.1",
        port: int = 0,
    ) -> None: ...
    @classmethod
    def of_scene(cls, scene: Scene, *, host: str = ..., port: int = ...) -> Self: ...
    @classmethod
    def of_file(cls, path: _Text, *, host: str = ..., port: int = ...) -> Self: ...
    def close(self) -> None: ...
    def wait(self) -> None: ...
    def __enter__(self) -> Self: ...
    def __exit__(self, *exception: object) -> None: ...

class Model:
    meshes: List[Dict[str, Any]]
    instances: List[Tuple[int, Any]]
    materials: List[Dict[str, Any]]
    textures: List[Optional[bytes]]
    cameras: List[Dict[str, Any]]
    lights: List[Dict[str, Any]]
    folder: str
    def __init__(
        self,
        meshes: List[Dict[str, Any]],
        instances: Optional[List[Tuple[int, Any]]] = None,
        materials: Iterable[Dict[str, Any]] = (),
        textures: Iterable[Optional[bytes]] = (),
        cameras: Iterable[Dict[str, Any]] = (),
        lights: Iterable[Dict[str, Any]] = (),
        folder: str = ".",
    ) -> None: ...
    @property
    def triangle_count(self) -> int: ...
    def bounds(self) -> Tuple[Tuple[float, ...], Tuple[float, ...]]: ...
    def add_to(self, scene: Scene) -> List[Object]: ...
    def add_lights_to(self, scene: Scene) -> List[Light]: ...
    def add_camera_to(self, scene: Scene, index: int = 0) -> Camera: ...

# A mesh of another package is told by its attributes, whose names differ.
def load(path: Union[_Text, Any]) -> Model: ...

class Points:
    positions: vantorPM._vector3array
    radii: Union[None, float, vantorPM._floatarray]
    colors: Optional[vantorPM._vector3array]
    def __init__(
        self,
        positions: _Vector3Array,
        radii: Union[None, _Number, _FloatArray] = None,
        colors: Optional[_Vector3Array] = None,
    ) -> None: ...
    def __len__(self) -> int: ...
    def add_to(self, scene: Scene) -> Object: ...

def points(
    positions: _Vector3Array,
    radii: Union[None, _Number, _FloatArray] = None,
    colors: Optional[_Vector3Array] = None,
) -> Points: ...
def to_numpy(
    module_array: Union[
        vantorPM._intarray,
        vantorPM._floatarray,
        vantorPM._vector2array,
        vantorPM._vector3array,
        vantorPM._vector4array,
        vantorPM._matrix2array,
        vantorPM._matrix3array,
        vantorPM._matrix4array,
        vantorPM._transformarray,
    ],
) -> NDArray[Any]: ...

# What it returns is there to be printed.
def vocabulary(*words: str) -> Any: ...

class Scene:
    strict: bool
    handles: List[Handle]
    def __init__(self, patches: _Integer = 10240, *, strict: Optional[bool] = None) -> None: ...
    @overload
    def add(
        self,
        __what: Object,
        *,
        transform: Optional[_Matrix4] = ...,
        scale: Optional[_Scale] = ...,
    ) -> Object: ...
    @overload
    def add(
        self,
        __what: Model,
        *,
        transform: Optional[_Matrix4] = ...,
        scale: Optional[_Scale] = ...,
    ) -> List[Object]: ...
    @overload
    def add(
        self,
        __what: Points,
        *,
        transform: Optional[_Matrix4] = ...,
        scale: Optional[_Scale] = ...,
    ) -> Object: ...
    # vocabulary
    @overload
    def add(
        self,
        __what: Literal["box"],
        *,
        transform: Optional[_Matrix4] = ...,
        scale: Optional[_Scale] = ...,
        min: Optional[_Vector3] = ...,
        max: Optional[_Vector3] = ...,
        trimmers: Optional[Union[Trimmer, Sequence[Trimmer]]] = ...,
    ) -> Object: ...
    @overload
    def add(
        self,
        __what: Literal["cone"],
        *,
        transform: Optional[_Matrix4] = ...,
        scale: Optional[_Scale] = ...,
        from_: Optional[_Vector3] = ...,
        to: Optional[_Vector3] = ...,
        radius: Optional[_Number] = ...,
        tip_radius: Optional[_Number] = ...,
        caps: Optional[_Switch] = ...,
        trimmers: Optional[Union[Trimmer, Sequence[Trimmer]]] = ...,
    ) -> Object: ...
    @overload
    def add(
        self,
        __what: Literal["curves"],
        *,
        transform: Optional[_Matrix4] = ...,
        scale: Optional[_Scale] = ...,
        points: _Vector3Array,
        counts: Optional[_IntArray] = ...,
        basis: Optional[_Matrix4] = ...,
        step: Optional[_Integer] = ...,
        radius: Optional[_Number] = ...,
        radii: Optional[_FloatArray] = ...,
        kind: Optional[Literal["ribbon", "tube"]] = ...,
    ) -> Object: ...
    @overload
    def add(
        self,
        __what: Literal["cylinder"],
        *,
        transform: Optional[_Matrix4] = ...,
        scale: Optional[_Scale] = ...,
        from_: Optional[_Vector3] = ...,
        to: Optional[_Vector3] = ...,
        radius: Optional[_Number] = ...,
        caps: Optional[_Switch] = ...,
        trimmers: Optional[Union[Trimmer, Sequence[Trimmer]]] = ...,
    ) -> Object: ...
    @overload
    def add(
        self,
        __what: Literal["disk"],
        *,
        transform: Optional[_Matrix4] = ...,
        scale: Optional[_Scale] = ...,
        center: Optional[_Vector3] = ...,
        normal: Optional[_Vector3] = ...,
        radius: Optional[_Number] = ...,
        inner_radius: Optional[_Number] = ...,
        trimmers: Optional[Union[Trimmer, Sequence[Trimmer]]] = ...,
    ) -> Object: ...
    @overload
    def add(
        self,
        __what: Literal["instances"],
        *,
        transform: Optional[_Matrix4] = ...,
        scale: Optional[_Scale] = ...,
        object: Object,
        places: _TransformArray,
        colors: Optional[_Vector3Array] = ...,
    ) -> Object: ...
    @overload
    def add(
        self,
        __what: Literal["mesh"],
        *,
        transform: Optional[_Matrix4] = ...,
        scale: Optional[_Scale] = ...,
        points: _Vector3Array,
        triangles: Optional[_IntArray] = ...,
        quads: Optional[_IntArray] = ...,
        normals: Optional[_Vector3Array] = ...,
        uvs: Optional[_Vector2Array] = ...,
        colors: Optional[_Vector3Array] = ...,
        trimmers: Optional[Union[Trimmer, Sequence[Trimmer]]] = ...,
    ) -> Object: ...
    @overload
    def add(
        self,
        __what: Literal["patches"],
        *,
        transform: Optional[_Matrix4] = ...,
        scale: Optional[_Scale] = ...,
        points: _Vector3Array,
        columns: _Integer,
        basis: Optional[_Matrix4] = ...,
        basis_u: Optional[_Matrix4] = ...,
        basis_v: Optional[_Matrix4] = ...,
        step: Optional[_Integer] = ...,
        step_u: Optional[_Integer] = ...,
        step_v: Optional[_Integer] = ...,
        wrap_u: Optional[_Switch] = ...,
        wrap_v: Optional[_Switch] = ...,
        divisions: Optional[_Integer] = ...,
        trimmers: Optional[Union[Trimmer, Sequence[Trimmer]]] = ...,
    ) -> Object: ...
    @overload
    def add(
        self,
        __what: Literal["points"],
        *,
        transform: Optional[_Matrix4] = ...,
        scale: Optional[_Scale] = ...,
        positions: _Vector3Array,
        radius: Optional[_Number] = ...,
        radii: Optional[_FloatArray] = ...,
        colors: Optional[_Vector3Array] = ...,
    ) -> Object: ...
    @overload
    def add(
        self,
        __what: Literal["quad"],
        *,
        transform: Optional[_Matrix4] = ...,
        scale: Optional[_Scale] = ...,
        origin: Optional[_Vector3] = ...,
        edge_u: Optional[_Vector3] = ...,
        edge_v: Optional[_Vector3] = ...,
        corners: Optional[_Vector3Array] = ...,
        trimmers: Optional[Union[Trimmer, Sequence[Trimmer]]] = ...,
    ) -> Object: ...
    @overload
    def add(
        self,
        __what: Literal["sphere"],
        *,
        transform: Optional[_Matrix4] = ...,
        scale: Optional[_Scale] = ...,
        center: Optional[_Vector3] = ...,
        radius: Optional[_Number] = ...,
        trimmers: Optional[Union[Trimmer, Sequence[Trimmer]]] = ...,
    ) -> Object: ...
    @overload
    def add(
        self,
        __what: Literal["subdivision"],
        *,
        transform: Optional[_Matrix4] = ...,
        scale: Optional[_Scale] = ...,
        points: _Vector3Array,
        counts: Optional[_IntArray] = ...,
        indices: _IntArray,
        crease_edges: Optional[_IntArray] = ...,
        crease_weights: Optional[_FloatArray] = ...,
        corner_points: Optional[_IntArray] = ...,
        uvs: Optional[_Vector2Array] = ...,
        levels: Optional[_Integer] = ...,
        boundary: Optional[Literal["smooth", "sharp"]] = ...,
    ) -> Object: ...
    @overload
    def add(
        self,
        __what: Literal["torus"],
        *,
        transform: Optional[_Matrix4] = ...,
        scale: Optional[_Scale] = ...,
        center: Optional[_Vector3] = ...,
        axis: Optional[_Vector3] = ...,
        major_radius: Optional[_Number] = ...,
        minor_radius: Optional[_Number] = ...,
        trimmers: Optional[Union[Trimmer, Sequence[Trimmer]]] = ...,
    ) -> Object: ...
    @overload
    def camera(
        self,
        __type: Literal["orthographic"],
        *,
        position: Optional[_Vector3] = ...,
        target: Optional[_Vector3] = ...,
        up: Optional[_Vector3] = ...,
        height: Optional[_Number] = ...,
    ) -> Camera: ...
    @overload
    def camera(
        self,
        __type: Literal["panorama"],
        *,
        position: Optional[_Vector3] = ...,
        target: Optional[_Vector3] = ...,
        up: Optional[_Vector3] = ...,
    ) -> Camera: ...
    @overload
    def camera(
        self,
        __type: Literal["perspective"],
        *,
        position: Optional[_Vector3] = ...,
        target: Optional[_Vector3] = ...,
        up: Optional[_Vector3] = ...,
        fov: Optional[_Number] = ...,
        fov_axis: Optional[Literal["vertical", "horizontal", "smaller", "larger"]] = ...,
        focal_lengths: Optional[_Vector2] = ...,
        principal_point: Optional[_Vector2] = ...,
        aperture_radius: Optional[_Number] = ...,
        focus_distance: Optional[_Number] = ...,
    ) -> Camera: ...
    @overload
    def imager(
        self,
        __type: Literal["file"],
        *,
        name: _Text,
        what: Optional[
            Literal[
                "color", "albedo", "normal", "depth", "position", "object_id", "variance", "alpha",
                "depth_z"
            ]
        ] = ...,
        exposure: Optional[_Number] = ...,
        display: Optional[Literal["srgb", "linear", "filmic"]] = ...,
        background: Optional[_Switch] = ...,
        denoise: Optional[_Switch] = ...,
        bits: Optional[_Integer] = ...,
        layers: Optional[_Text] = ...,
        filter: Optional[Literal["tent", "box", "gaussian", "blackman_harris"]] = ...,
        filter_width: Optional[_Number] = ...,
    ) -> Imager: ...
    @overload
    def imager(
        self,
        __type: Literal["settings"],
        *,
        seed: Optional[_Integer] = ...,
        max_depth: Optional[_Integer] = ...,
        clamp: Optional[_Number] = ...,
        final_gather: Optional[_Switch] = ...,
        first_sample: Optional[_Integer] = ...,
        samples_in_all: Optional[_Integer] = ...,
        time_limit: Optional[_Number] = ...,
        noise: Optional[_Number] = ...,
        adaptive: Optional[_Switch] = ...,
    ) -> Imager: ...
    @overload
    def interface(
        self,
        __type: Literal["conductor"],
        *,
        metal: Optional[Literal["custom", "aluminium", "copper", "gold", "silver"]] = ...,
        eta: Optional[_Color] = ...,
        k: Optional[_Color] = ...,
        color: Optional[_Color] = ...,
        roughness: Optional[_Number] = ...,
    ) -> Interface: ...
    @overload
    def interface(
        self,
        __type: Literal["dielectric"],
        *,
        ior: Optional[_Number] = ...,
        color: Optional[_Color] = ...,
        roughness: Optional[_Number] = ...,
    ) -> Interface: ...
    @overload
    def interface(
        self,
        __type: Literal["diffuse"],
        *,
        reflectance: Optional[_Color] = ...,
    ) -> Interface: ...
    @overload
    def interface(
        self,
        __type: Literal["plastic"],
        *,
        color: Optional[_Color] = ...,
        ior: Optional[_Number] = ...,
        roughness: Optional[_Number] = ...,
    ) -> Interface: ...
    @overload
    def interface(
        self,
        __type: Literal["principled"],
        *,
        base_color: Optional[_Color] = ...,
        metallic: Optional[_Number] = ...,
        roughness: Optional[_Number] = ...,
        specular: Optional[_Number] = ...,
        clearcoat: Optional[_Number] = ...,
        clearcoat_roughness: Optional[_Number] = ...,
        sheen: Optional[_Number] = ...,
        transmission: Optional[_Number] = ...,
        ior: Optional[_Number] = ...,
    ) -> Interface: ...
    def interior(
        self,
        __type: Literal["homogeneous"],
        *,
        sigma_a: Optional[_Color] = ...,
        sigma_s: Optional[_Color] = ...,
        sigma_t: Optional[_Color] = ...,
        albedo: Optional[_Color] = ...,
        g: Optional[_Number] = ...,
    ) -> Interior: ...
    @overload
    def light(
        self,
        __type: Literal["area"],
        *,
        radiance: Optional[_Color] = ...,
        pattern: Optional[Pattern] = ...,
        visible: Optional[_Switch] = ...,
    ) -> Light: ...
    @overload
    def light(
        self,
        __type: Literal["distant"],
        *,
        direction: Optional[_Vector3] = ...,
        irradiance: Optional[_Color] = ...,
        angle: Optional[_Number] = ...,
        visible: Optional[_Switch] = ...,
    ) -> Light: ...
    @overload
    def light(
        self,
        __type: Literal["environment"],
        *,
        name: Optional[_PictureSource] = ...,
        radiance: Optional[_Color] = ...,
        visible: Optional[_Switch] = ...,
    ) -> Light: ...
    @overload
    def light(
        self,
        __type: Literal["point"],
        *,
        position: Optional[_Vector3] = ...,
        intensity: Optional[_Color] = ...,
    ) -> Light: ...
    @overload
    def light(
        self,
        __type: Literal["sky"],
        *,
        sun_direction: Optional[_Vector3] = ...,
        turbidity: Optional[_Number] = ...,
        scale: Optional[_Number] = ...,
        sun: Optional[_Switch] = ...,
        ground_albedo: Optional[_Color] = ...,
        visible: Optional[_Switch] = ...,
    ) -> Light: ...
    @overload
    def light(
        self,
        __type: Literal["spot"],
        *,
        position: Optional[_Vector3] = ...,
        direction: Optional[_Vector3] = ...,
        target: Optional[_Vector3] = ...,
        intensity: Optional[_Color] = ...,
        cutoff_angle: Optional[_Number] = ...,
        beam_width: Optional[_Number] = ...,
    ) -> Light: ...
    @overload
    def material(
        self,
        __type: Literal["diffuse"],
        *,
        reflectance: Optional[_Color] = ...,
    ) -> Material: ...
    @overload
    def material(
        self,
        __type: Literal["surface"],
        *,
        interface: Interface,
        color: Optional[Union[_Color, Pattern]] = ...,
        roughness: Optional[Union[_Number, Pattern]] = ...,
        metallic: Optional[Union[_Number, Pattern]] = ...,
        opacity: Optional[Union[_Number, Pattern]] = ...,
        bump: Optional[Pattern] = ...,
        bump_height: Optional[_Number] = ...,
        normal_map: Optional[Pattern] = ...,
        two_sided: Optional[_Switch] = ...,
    ) -> Material: ...
    @overload
    def material(
        self,
        __type: Literal["conductor"],
        *,
        metal: Optional[Literal["custom", "aluminium", "copper", "gold", "silver"]] = ...,
        eta: Optional[_Color] = ...,
        k: Optional[_Color] = ...,
        color: Optional[Union[_Color, Union[_Color, Pattern]]] = ...,
        roughness: Optional[Union[_Number, Union[_Number, Pattern]]] = ...,
        metallic: Optional[Union[_Number, Pattern]] = ...,
        opacity: Optional[Union[_Number, Pattern]] = ...,
        bump: Optional[Pattern] = ...,
        bump_height: Optional[_Number] = ...,
        normal_map: Optional[Pattern] = ...,
        two_sided: Optional[_Switch] = ...,
    ) -> Material: ...
    @overload
    def material(
        self,
        __type: Literal["dielectric"],
        *,
        ior: Optional[_Number] = ...,
        color: Optional[Union[_Color, Union[_Color, Pattern]]] = ...,
        roughness: Optional[Union[_Number, Union[_Number, Pattern]]] = ...,
        metallic: Optional[Union[_Number, Pattern]] = ...,
        opacity: Optional[Union[_Number, Pattern]] = ...,
        bump: Optional[Pattern] = ...,
        bump_height: Optional[_Number] = ...,
        normal_map: Optional[Pattern] = ...,
        two_sided: Optional[_Switch] = ...,
    ) -> Material: ...
    @overload
    def material(
        self,
        __type: Literal["plastic"],
        *,
        color: Optional[Union[_Color, Union[_Color, Pattern]]] = ...,
        ior: Optional[_Number] = ...,
        roughness: Optional[Union[_Number, Union[_Number, Pattern]]] = ...,
        metallic: Optional[Union[_Number, Pattern]] = ...,
        opacity: Optional[Union[_Number, Pattern]] = ...,
        bump: Optional[Pattern] = ...,
        bump_height: Optional[_Number] = ...,
        normal_map: Optional[Pattern] = ...,
        two_sided: Optional[_Switch] = ...,
    ) -> Material: ...
    @overload
    def material(
        self,
        __type: Literal["principled"],
        *,
        base_color: Optional[Union[_Color, Pattern]] = ...,
        metallic: Optional[Union[_Number, Union[_Number, Pattern]]] = ...,
        roughness: Optional[Union[_Number, Union[_Number, Pattern]]] = ...,
        specular: Optional[_Number] = ...,
        clearcoat: Optional[_Number] = ...,
        clearcoat_roughness: Optional[_Number] = ...,
        sheen: Optional[_Number] = ...,
        transmission: Optional[_Number] = ...,
        ior: Optional[_Number] = ...,
        color: Optional[Union[_Color, Pattern]] = ...,
        opacity: Optional[Union[_Number, Pattern]] = ...,
        bump: Optional[Pattern] = ...,
        bump_height: Optional[_Number] = ...,
        normal_map: Optional[Pattern] = ...,
        two_sided: Optional[_Switch] = ...,
    ) -> Material: ...
    @overload
    def object(
        self,
        __type: Literal["box"],
        *,
        min: Optional[_Vector3] = ...,
        max: Optional[_Vector3] = ...,
        trimmers: Optional[Union[Trimmer, Sequence[Trimmer]]] = ...,
    ) -> Object: ...
    @overload
    def object(
        self,
        __type: Literal["cone"],
        *,
        from_: Optional[_Vector3] = ...,
        to: Optional[_Vector3] = ...,
        radius: Optional[_Number] = ...,
        tip_radius: Optional[_Number] = ...,
        caps: Optional[_Switch] = ...,
        trimmers: Optional[Union[Trimmer, Sequence[Trimmer]]] = ...,
    ) -> Object: ...
    @overload
    def object(
        self,
        __type: Literal["curves"],
        *,
        points: _Vector3Array,
        counts: Optional[_IntArray] = ...,
        basis: Optional[_Matrix4] = ...,
        step: Optional[_Integer] = ...,
        radius: Optional[_Number] = ...,
        radii: Optional[_FloatArray] = ...,
        kind: Optional[Literal["ribbon", "tube"]] = ...,
    ) -> Object: ...
    @overload
    def object(
        self,
        __type: Literal["cylinder"],
        *,
        from_: Optional[_Vector3] = ...,
        to: Optional[_Vector3] = ...,
        radius: Optional[_Number] = ...,
        caps: Optional[_Switch] = ...,
        trimmers: Optional[Union[Trimmer, Sequence[Trimmer]]] = ...,
    ) -> Object: ...
    @overload
    def object(
        self,
        __type: Literal["disk"],
        *,
        center: Optional[_Vector3] = ...,
        normal: Optional[_Vector3] = ...,
        radius: Optional[_Number] = ...,
        inner_radius: Optional[_Number] = ...,
        trimmers: Optional[Union[Trimmer, Sequence[Trimmer]]] = ...,
    ) -> Object: ...
    @overload
    def object(
        self,
        __type: Literal["instances"],
        *,
        object: Object,
        places: _TransformArray,
        colors: Optional[_Vector3Array] = ...,
    ) -> Object: ...
    @overload
    def object(
        self,
        __type: Literal["mesh"],
        *,
        points: _Vector3Array,
        triangles: Optional[_IntArray] = ...,
        quads: Optional[_IntArray] = ...,
        normals: Optional[_Vector3Array] = ...,
        uvs: Optional[_Vector2Array] = ...,
        colors: Optional[_Vector3Array] = ...,
        trimmers: Optional[Union[Trimmer, Sequence[Trimmer]]] = ...,
    ) -> Object: ...
    @overload
    def object(
        self,
        __type: Literal["patches"],
        *,
        points: _Vector3Array,
        columns: _Integer,
        basis: Optional[_Matrix4] = ...,
        basis_u: Optional[_Matrix4] = ...,
        basis_v: Optional[_Matrix4] = ...,
        step: Optional[_Integer] = ...,
        step_u: Optional[_Integer] = ...,
        step_v: Optional[_Integer] = ...,
        wrap_u: Optional[_Switch] = ...,
        wrap_v: Optional[_Switch] = ...,
        divisions: Optional[_Integer] = ...,
        trimmers: Optional[Union[Trimmer, Sequence[Trimmer]]] = ...,
    ) -> Object: ...
    @overload
    def object(
        self,
        __type: Literal["points"],
        *,
        positions: _Vector3Array,
        radius: Optional[_Number] = ...,
        radii: Optional[_FloatArray] = ...,
        colors: Optional[_Vector3Array] = ...,
    ) -> Object: ...
    @overload
    def object(
        self,
        __type: Literal["quad"],
        *,
        origin: Optional[_Vector3] = ...,
        edge_u: Optional[_Vector3] = ...,
        edge_v: Optional[_Vector3] = ...,
        corners: Optional[_Vector3Array] = ...,
        trimmers: Optional[Union[Trimmer, Sequence[Trimmer]]] = ...,
    ) -> Object: ...
    @overload
    def object(
        self,
        __type: Literal["sphere"],
        *,
        center: Optional[_Vector3] = ...,
        radius: Optional[_Number] = ...,
        trimmers: Optional[Union[Trimmer, Sequence[Trimmer]]] = ...,
    ) -> Object: ...
    @overload
    def object(
        self,
        __type: Literal["subdivision"],
        *,
        points: _Vector3Array,
        counts: Optional[_IntArray] = ...,
        indices: _IntArray,
        crease_edges: Optional[_IntArray] = ...,
        crease_weights: Optional[_FloatArray] = ...,
        corner_points: Optional[_IntArray] = ...,
        uvs: Optional[_Vector2Array] = ...,
        levels: Optional[_Integer] = ...,
        boundary: Optional[Literal["smooth", "sharp"]] = ...,
    ) -> Object: ...
    @overload
    def object(
        self,
        __type: Literal["torus"],
        *,
        center: Optional[_Vector3] = ...,
        axis: Optional[_Vector3] = ...,
        major_radius: Optional[_Number] = ...,
        minor_radius: Optional[_Number] = ...,
        trimmers: Optional[Union[Trimmer, Sequence[Trimmer]]] = ...,
    ) -> Object: ...
    @overload
    def pattern(
        self,
        __type: Literal["checker"],
        *,
        a: Optional[Union[_Color, Pattern]] = ...,
        b: Optional[Union[_Color, Pattern]] = ...,
        scale: Optional[_Scale] = ...,
        space: Optional[Literal["uv", "object"]] = ...,
    ) -> Pattern: ...
    @overload
    def pattern(
        self,
        __type: Literal["gradient"],
        *,
        colors: _Vector3Array,
        positions: Optional[_FloatArray] = ...,
        origin: Optional[_Vector3] = ...,
        direction: Optional[_Vector3] = ...,
        space: Optional[Literal["uv", "object"]] = ...,
    ) -> Pattern: ...
    @overload
    def pattern(
        self,
        __type: Literal["image"],
        *,
        texture: Union[Texture, _PictureSource],
        scale: Optional[_Scale] = ...,
        offset: Optional[_Vector2] = ...,
        wrap: Optional[Literal["repeat", "clamp", "mirror", "black"]] = ...,
        filter: Optional[Literal["bilinear", "nearest", "trilinear"]] = ...,
        channel: Optional[Literal["color", "red", "green", "blue", "alpha"]] = ...,
        color_space: Optional[Literal["file", "srgb", "linear"]] = ...,
    ) -> Pattern: ...
    @overload
    def pattern(
        self,
        __type: Literal["mix"],
        *,
        a: Optional[Union[_Color, Pattern]] = ...,
        b: Optional[Union[_Color, Pattern]] = ...,
        amount: Optional[Union[_Number, Pattern]] = ...,
        mode: Optional[Literal["mix", "multiply", "add"]] = ...,
    ) -> Pattern: ...
    @overload
    def pattern(
        self,
        __type: Literal["noise"],
        *,
        a: Optional[Union[_Color, Pattern]] = ...,
        b: Optional[Union[_Color, Pattern]] = ...,
        scale: Optional[_Scale] = ...,
        octaves: Optional[_Integer] = ...,
        lacunarity: Optional[_Number] = ...,
        gain: Optional[_Number] = ...,
        space: Optional[Literal["object", "uv"]] = ...,
    ) -> Pattern: ...
    @overload
    def trimmer(
        self,
        __type: Literal["box"],
        *,
        min: Optional[_Vector3] = ...,
        max: Optional[_Vector3] = ...,
        keep: Optional[Literal["inside", "outside"]] = ...,
    ) -> Trimmer: ...
    @overload
    def trimmer(
        self,
        __type: Literal["curve"],
        *,
        points: _Vector2Array,
        basis: Optional[_Matrix4] = ...,
        step: Optional[_Integer] = ...,
        keep: Optional[Literal["inside", "outside"]] = ...,
    ) -> Trimmer: ...
    @overload
    def trimmer(
        self,
        __type: Literal["plane"],
        *,
        point: Optional[_Vector3] = ...,
        normal: Optional[_Vector3] = ...,
    ) -> Trimmer: ...
    # end of vocabulary
    def texture(self, picture: _PictureSource) -> Texture: ...
    def radiosity(self) -> None: ...
    def view(self, *, host: str = "127.0.0.1", port: int = 0) -> View: ...
    @overload
    def render(
        self,
        width: _Integer,
        height: _Integer,
        samples: _Integer = 64,
        *,
        window: Union[Sequence[_Number], _HasArray] = ...,
        aovs: Union[_Aov, Iterable[_Aov]] = (),
        background: _Switch = True,
        denoise: _Switch = False,
        filter: Optional[_Filter] = None,
        filter_width: Optional[_Number] = None,
        wait: Literal[True] = True,
        progress: bool = False,
        first_sample: Optional[_Integer] = None,
        samples_in_all: Optional[_Integer] = None,
        time_limit: Optional[_Number] = None,
        noise: Optional[_Number] = None,
        adaptive: Optional[_Switch] = None,
    ) -> Picture: ...
    @overload
    def render(
        self,
        width: _Integer,
        height: _Integer,
        samples: _Integer = 64,
        *,
        window: Union[Sequence[_Number], _HasArray] = ...,
        aovs: Union[_Aov, Iterable[_Aov]] = (),
        background: _Switch = True,
        denoise: _Switch = False,
        filter: Optional[_Filter] = None,
        filter_width: Optional[_Number] = None,
        wait: Literal[False],
        progress: bool = False,
        first_sample: Optional[_Integer] = None,
        samples_in_all: Optional[_Integer] = None,
        time_limit: Optional[_Number] = None,
        noise: Optional[_Number] = None,
        adaptive: Optional[_Switch] = None,
    ) -> Job: ...
