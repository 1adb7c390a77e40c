"""What each type of the vocabulary takes, for checkers and editors.

These types are no objects at run time, where the renderer that is loaded decides; they are imported
"if TYPE_CHECKING:".

    from vantor._vocabulary import _PerspectiveCamera

    view: "_PerspectiveCamera" = {"position": (0, 2, 6), "fov": 35}
    scene.camera("perspective", **view)

Made by tools/vocabulary_types.py from the table of the renderer that ships with the package.
"""

import array
import os
from typing import Any, Literal, Optional, Protocol, Sequence, SupportsFloat, SupportsIndex
from typing import TypedDict, Union

import vantorPM

from . import Interface, Object, Pattern, Picture, Texture, Transform, Trimmer

def __getattr__(name: str) -> Any: ...

class _HasArray(Protocol):
    """numpy's arrays, and what can be made one."""

    def __array__(self) -> Any: ...

_Buffer = Union[_HasArray, memoryview, array.array[Any]]

_Integer = SupportsIndex
_Switch = Union[bool, SupportsIndex]
_Number = Union[SupportsFloat, SupportsIndex]
_Text = Union[str, os.PathLike[str]]

_Vector2 = Union[Sequence[_Number], _Buffer, vantorPM._vector2]
_Vector3 = Union[Sequence[_Number], _Buffer, vantorPM._vector3]
_Color = Union[_Number, _Vector3]
_Scale = Union[_Number, _Vector2, _Vector3]
_Rows = Union[Sequence[Sequence[_Number]], _Buffer]
_Matrix4 = Union[_Rows, Transform, vantorPM._matrix4, vantorPM._transform]

_IntArray = Union[Sequence[_Integer], Sequence[Sequence[_Integer]], _Buffer, vantorPM._intarray]
_FloatArray = Union[Sequence[_Number], _Buffer, vantorPM._floatarray]
_Vector2Array = Union[Sequence[_Vector2], _Buffer, vantorPM._vector2array]
_Vector3Array = Union[Sequence[_Vector3], _Buffer, vantorPM._vector3array]
_TransformArray = Union[Sequence[_Matrix4], _Buffer, vantorPM._transformarray]
_PictureSource = Union[_Text, Picture, _HasArray]

_CameraType = Literal["orthographic", "panorama", "perspective"]
_ImagerType = Literal["file", "settings"]
_InterfaceType = Literal["conductor", "dielectric", "diffuse", "plastic", "principled"]
_InteriorType = Literal["homogeneous"]
_LightType = Literal["area", "distant", "environment", "point", "sky", "spot"]
_MaterialType = Literal[
    "diffuse", "surface", "conductor", "dielectric", "plastic", "principled"
]
_ObjectType = Literal[
    "box", "cone", "curves", "cylinder", "disk", "instances", "mesh", "patches", "points", "quad",
    "sphere", "subdivision", "torus"
]
_PatternType = Literal["checker", "gradient", "image", "mix", "noise"]
_TrimmerType = Literal["box", "curve", "plane"]
_Aov = Literal[
    "color", "albedo", "normal", "depth", "position", "object_id", "variance", "alpha", "depth_z"
]
_Display = Literal["srgb", "linear", "filmic"]
_Filter = Literal["tent", "box", "gaussian", "blackman_harris"]

class _OrthographicCamera(TypedDict, total=False):
    """Parallel rays: things look as large from near as from far."""

    # where the camera stands; length; -1e9 to 1e9
    position: Optional[_Vector3]
    # the point that it looks at; left out, it looks along -Z; length; -1e9 to 1e9
    target: Optional[_Vector3]
    # the direction that is up in the picture; -1e9 to 1e9, not all 0
    up: Optional[_Vector3]
    # how much the picture's height shows; length; 1e-9 to 1e9
    height: Optional[_Number]

class _PanoramaCamera(TypedDict, total=False):
    """Sees in all directions: longitude across the picture, latitude upwards, each by equal
    angles.
    """

    # where the camera stands; length; -1e9 to 1e9
    position: Optional[_Vector3]
    # the point that it looks at; left out, it looks along -Z; length; -1e9 to 1e9
    target: Optional[_Vector3]
    # the direction that is up in the picture; -1e9 to 1e9, not all 0
    up: Optional[_Vector3]

class _PerspectiveCamera(TypedDict, total=False):
    """A pinhole camera, or one with a thin lens."""

    # where the camera stands; length; -1e9 to 1e9
    position: Optional[_Vector3]
    # the point that it looks at; left out, it looks along -Z; length; -1e9 to 1e9
    target: Optional[_Vector3]
    # the direction that is up in the picture; -1e9 to 1e9, not all 0
    up: Optional[_Vector3]
    # field of view; degrees; 0.001 to 179
    fov: Optional[_Number]
    # the side of the picture that the field of view spans
    fov_axis: Optional[Literal["vertical", "horizontal", "smaller", "larger"]]
    # across and down, in place of "fov": how far from the principal point lies what is as far
    # aside as it is ahead; pixels; 0.001 to 1e9
    focal_lengths: Optional[_Vector2]
    # where the view axis meets the picture, (0, 0) being the middle of its upper left pixel; left
    # out, in the middle; pixels; -1e9 to 1e9
    principal_point: Optional[_Vector2]
    # the radius of the lens; 0 is a pinhole, with which everything is sharp; length; 0 to 1e9
    aperture_radius: Optional[_Number]
    # how far along the view axis pictures are sharp; left out, at the target, or 1 without a
    # target; length; 1e-9 to 1e9
    focus_distance: Optional[_Number]

class _FileImagerRequired(TypedDict):
    # the picture's path; it ends in .png, .jpg, .jpeg, .tif, .tiff or .exr
    name: _Text

class _FileImager(_FileImagerRequired, total=False):
    """Writes the picture to a file: .exr floats, linear; all others integers, 8 bits a channel
    unless said otherwise.
    """

    # what the picture shows of each pixel
    what: Optional[
        Literal[
            "color", "albedo", "normal", "depth", "position", "object_id", "variance", "alpha",
            "depth_z"
        ]
    ]
    # the colour is multiplied by 2^exposure; stops; -100 to 100
    exposure: Optional[_Number]
    # how 8 bits are made of light: by the sRGB curve, as it is, or with its highlights compressed
    # first as film does
    display: Optional[Literal["srgb", "linear", "filmic"]]
    # 0: where a path meets no surface the colour is black, and .png and .exr files have an alpha,
    # which is 0 there; 0 or 1
    background: Optional[_Switch]
    # 1: pixels that cannot be told apart from each other are averaged, and the noise is less; 0 or
    # 1
    denoise: Optional[_Switch]
    # of a channel: 8 or 16 in a .png file, 16 (half floats) or 32 in an .exr file; left out, 8 and
    # 32; bits; 8, 16 or 32
    bits: Optional[_Integer]
    # what an .exr file shows besides, each in a layer of its name: words that "what" takes, with
    # spaces between
    layers: Optional[_Text]
    # how samples are spread around a pixel's middle
    filter: Optional[Literal["tent", "box", "gaussian", "blackman_harris"]]
    # the filter from edge to edge; left out, tent 2, box 1, gaussian 3, blackman_harris 4; pixels;
    # 0.01 to 64
    filter_width: Optional[_Number]

class _SettingsImager(TypedDict, total=False):
    """Writes nothing; says how pictures are made while its block is open."""

    # another seed gives the same picture with other noise; 0 to 2147483647
    seed: Optional[_Integer]
    # how often light is scattered at most on its way to the camera; 1 is direct, 1000 no limit; 1
    # to 1000
    max_depth: Optional[_Integer]
    # the most that one sample of indirect light counts; 0 is no limit; radiance; 0 or more
    clamp: Optional[_Number]
    # after radiosity(): the first diffuse surface gathers its light with rays, and only those rays
    # use the result; 0 or 1
    final_gather: Optional[_Switch]
    # the pass makes a range of a larger picture's samples, from this one on; 0 to 16777216
    first_sample: Optional[_Integer]
    # how many samples a pixel of that picture has; 0 is as many as there are with this pass; 0 to
    # 16777216
    samples_in_all: Optional[_Integer]
    # the pass begins no further samples that are likely to end later; 0 is no limit; s; 0 or more
    time_limit: Optional[_Number]
    # the pass ends when the picture's relative error is below it, as estimated; 0 is never; 0 or
    # more
    noise: Optional[_Number]
    # 1: after 16 samples a pixel, further ones go where the noise is; their number is that of the
    # mean; 0 or 1
    adaptive: Optional[_Switch]

class _ConductorInterface(TypedDict, total=False):
    """Reflects like a metal, on both sides."""

    # a metal by its name; "custom" takes eta and k
    metal: Optional[Literal["custom", "aluminium", "copper", "gold", "silver"]]
    # the index of refraction of a "custom" metal, for red, green and blue; 0 to 100
    eta: Optional[_Color]
    # its index of extinction; 0 to 100
    k: Optional[_Color]
    # what the reflected light is multiplied by; 0 to 1
    color: Optional[_Color]
    # 0 is smooth, as is all below 0.03; its square is the alpha of GGX microfacets; 0 to 1
    roughness: Optional[_Number]

class _DielectricInterface(TypedDict, total=False):
    """A clear boundary, as of glass or water: reflects a part of the light and refracts the rest.
    """

    # the index of refraction of the inside over that of the outside; the outside is the front; 0.1
    # to 10
    ior: Optional[_Number]
    # what light is multiplied by each time that it passes through; 0 to 1
    color: Optional[_Color]
    # 0 is smooth, as is all below 0.03; its square is the alpha of GGX microfacets; 0 to 1
    roughness: Optional[_Number]

class _DiffuseInterface(TypedDict, total=False):
    """Reflects light equally in all directions, on both sides (Lambert)."""

    # the fraction of light that is reflected; 0 to 1
    reflectance: Optional[_Color]

class _PlasticInterface(TypedDict, total=False):
    """A diffuse body under a clear coat, as of paint, on both sides."""

    # the colour of the body under the coat; 0 to 1
    color: Optional[_Color]
    # the index of refraction of the coat; 1.1 to 3
    ior: Optional[_Number]
    # 0 is smooth, as is all below 0.03; its square is the alpha of GGX microfacets; 0 to 1
    roughness: Optional[_Number]

class _PrincipledInterface(TypedDict, total=False):
    """Most surfaces by a few numbers: fractions of metal, glossy body and glass, sheen, and a
    clear coat (after Burley 2012 and 2015).
    """

    # the colour of the body, of the metal, and of light that has gone through the glass; 0 to 1
    base_color: Optional[_Color]
    # the fraction of metal; the rest is body and glass; 0 to 1
    metallic: Optional[_Number]
    # of all but the coat; below 0.03 it counts as 0.03; 0 to 1
    roughness: Optional[_Number]
    # the gloss on the body, which reflects 0.08 times as much straight on; 0 to 1
    specular: Optional[_Number]
    # the fraction of a clear coat over all of it, with an index of refraction of 1.5; 0 to 1
    clearcoat: Optional[_Number]
    # of the coat; below 0.03 it counts as 0.03; 0 to 1
    clearcoat_roughness: Optional[_Number]
    # white at grazing angles on the body, as of cloth; 0 to 1
    sheen: Optional[_Number]
    # the fraction of glass in what is no metal; the rest is body; 0 to 1
    transmission: Optional[_Number]
    # the index of refraction of the glass; the outside is the front; 1.1 to 3
    ior: Optional[_Number]

class _HomogeneousInterior(TypedDict, total=False):
    """The same medium everywhere in the body."""

    # absorption coefficient; 1 / length; 0 or more
    sigma_a: Optional[_Color]
    # scattering coefficient; 1 / length; 0 or more
    sigma_s: Optional[_Color]
    # extinction coefficient; with albedo, in place of the other two; 1 / length; 0 or more
    sigma_t: Optional[_Color]
    # the fraction of the extinction that is scattering; 0 to 1
    albedo: Optional[_Color]
    # mean cosine of scattering (Henyey-Greenstein): 0 in all directions alike, above 0 forwards;
    # -0.99 to 0.99
    g: Optional[_Number]

class _AreaLight(TypedDict, total=False):
    """Shines from the objects that are added in a light block."""

    # the radiance that leaves the front of every object in its light block; power / (area * solid
    # angle); 0 or more
    radiance: Optional[_Color]
    # what the radiance is multiplied by from point to point; left out, it is the same everywhere
    pattern: Optional[Pattern]
    # 0: the camera does not see it; mirrors, glass and everything that it lights do; 0 or 1
    visible: Optional[_Switch]

class _DistantLight(TypedDict, total=False):
    """Light from far away, parallel or from a disk."""

    # the way the light travels; -1e9 to 1e9, not all 0
    direction: Optional[_Vector3]
    # the irradiance of a surface that faces the light; power / area; 0 or more
    irradiance: Optional[_Color]
    # the diameter of its disk in the sky (the sun's is 0.53); below 0.001 it is parallel light,
    # and not seen; degrees; 0 to 180
    angle: Optional[_Number]
    # 0: the camera does not see it; mirrors, glass and everything that it lights do; 0 or 1
    visible: Optional[_Switch]

class _EnvironmentLight(TypedDict, total=False):
    """Light from all directions."""

    # a PNG, JPEG, OpenEXR or Radiance picture of all directions, longitude across and latitude
    # upwards; left out, all are alike
    name: Optional[_PictureSource]
    # the radiance from all directions; a picture is multiplied by it; power / (area * solid
    # angle); 0 or more
    radiance: Optional[_Color]
    # 0: the camera does not see it; mirrors, glass and everything that it lights do; 0 or 1
    visible: Optional[_Switch]

class _PointLight(TypedDict, total=False):
    """Shines from one point in all directions."""

    # where the light stands; length; -1e9 to 1e9
    position: Optional[_Vector3]
    # the same in all directions; power / solid angle; 0 or more
    intensity: Optional[_Color]

class _SkyLight(TypedDict, total=False):
    """Daylight of a clear sky, with the sun."""

    # towards the sun; +Y is the zenith; -1e9 to 1e9, not all 0
    sun_direction: Optional[_Vector3]
    # haze: 2 is a very clear sky, 10 a hazy one; 2 to 10
    turbidity: Optional[_Number]
    # the light is multiplied by it; with 1 a radiance of 1 is 10 kcd/m^2; 0 or more
    scale: Optional[_Number]
    # whether the sun shines, too; 0 or 1
    sun: Optional[_Switch]
    # the fraction of light that the ground below the horizon reflects; 0 to 1
    ground_albedo: Optional[_Color]
    # 0: the camera does not see it; mirrors, glass and everything that it lights do; 0 or 1
    visible: Optional[_Switch]

class _SpotLight(TypedDict, total=False):
    """Shines from one point into a cone."""

    # where the light stands; length; -1e9 to 1e9
    position: Optional[_Vector3]
    # the way the light travels; -1e9 to 1e9, not all 0
    direction: Optional[_Vector3]
    # the point that it shines at; left out, "direction" counts; length; -1e9 to 1e9
    target: Optional[_Vector3]
    # along the axis; power / solid angle; 0 or more
    intensity: Optional[_Color]
    # from the axis to where there is no light any more; degrees; 0.01 to 180
    cutoff_angle: Optional[_Number]
    # from the axis to where the light begins to fall; left out, 3/4 of the cutoff_angle; degrees;
    # 0 to 180
    beam_width: Optional[_Number]

class _DiffuseMaterial(TypedDict, total=False):
    """A surface with a diffuse interface, in one step."""

    # the fraction of light that is reflected; 0 to 1
    reflectance: Optional[_Color]

class _SurfaceMaterialRequired(TypedDict):
    # how the surface scatters light
    interface: Interface

class _SurfaceMaterial(_SurfaceMaterialRequired, total=False):
    """A surface with an interface of its own."""

    # in place of the interface's own colour; left out, that stands; 0 to 1
    color: Optional[Union[_Color, Pattern]]
    # in place of the interface's own roughness; left out, that stands; 0 to 1
    roughness: Optional[Union[_Number, Pattern]]
    # in place of a "principled" interface's own fraction of metal; others have none, and stay as
    # they are; 0 to 1
    metallic: Optional[Union[_Number, Pattern]]
    # the fraction of light that meets the surface; the rest passes straight through; 0 to 1
    opacity: Optional[Union[_Number, Pattern]]
    # a pattern whose luminance is a height above the surface, which its normals follow
    bump: Optional[Pattern]
    # the height of the luminance 1, in the object's space; length; -1e9 to 1e9
    bump_height: Optional[_Number]
    # normals in the directions of u, v and the surface's normal, -1 to 1 as 0 to 1; a linear image
    normal_map: Optional[Pattern]
    # 0: seen from behind, the surface is not there; 0 or 1
    two_sided: Optional[_Switch]

class _BoxObject(TypedDict, total=False):
    """A box along the axes; its front is outside."""

    # the corner with the least coordinates; length
    min: Optional[_Vector3]
    # the corner with the greatest coordinates; length
    max: Optional[_Vector3]
    # what cuts parts of it away: a point stays if every one of them keeps it
    trimmers: Optional[Union[Trimmer, Sequence[Trimmer]]]

class _ConeObject(TypedDict, total=False):
    """A cone, to its point or cut off; its front is outside."""

    # the middle of its base; length; -1e9 to 1e9
    from_: Optional[_Vector3]
    # the middle of its tip; length; -1e9 to 1e9
    to: Optional[_Vector3]
    # the radius of its base; length; 1e-9 to 1e9
    radius: Optional[_Number]
    # the radius of its tip, where it is cut off; 0 for a point; length; 0 to 1e9
    tip_radius: Optional[_Number]
    # whether it is closed; 0 or 1
    caps: Optional[_Switch]
    # what cuts parts of it away: a point stays if every one of them keeps it
    trimmers: Optional[Union[Trimmer, Sequence[Trimmer]]]

class _CurvesObjectRequired(TypedDict):
    # the control points, curve after curve; length
    points: _Vector3Array

class _CurvesObject(_CurvesObjectRequired, total=False):
    """Ribbons or tubes along cubic splines: hair, grass, wires."""

    # how many control points each curve has; left out, there is one curve
    counts: Optional[_IntArray]
    # the basis of the cubics, as a spline function of the module gives it; left out, B-spline
    basis: Optional[_Matrix4]
    # how many points further the next cubic begins; left out, what the module has for the basis,
    # or else 3; 1 to 4
    step: Optional[_Integer]
    # half the width, everywhere; length; 1e-9 to 1e9
    radius: Optional[_Number]
    # a radius for each control point, along the same splines; length
    radii: Optional[_FloatArray]
    # flat ribbons that face whoever looks, or round tubes, open at their ends
    kind: Optional[Literal["ribbon", "tube"]]

class _CylinderObject(TypedDict, total=False):
    """A cylinder; its front is outside."""

    # the middle of one end; length; -1e9 to 1e9
    from_: Optional[_Vector3]
    # the middle of the other end; length; -1e9 to 1e9
    to: Optional[_Vector3]
    # its radius; length; 1e-9 to 1e9
    radius: Optional[_Number]
    # whether it is closed; 0 or 1
    caps: Optional[_Switch]
    # what cuts parts of it away: a point stays if every one of them keeps it
    trimmers: Optional[Union[Trimmer, Sequence[Trimmer]]]

class _DiskObject(TypedDict, total=False):
    """A disk, with or without a hole."""

    # its centre; length; -1e9 to 1e9
    center: Optional[_Vector3]
    # where its front faces, of any length; -1e9 to 1e9, not all 0
    normal: Optional[_Vector3]
    # its radius; length; 1e-9 to 1e9
    radius: Optional[_Number]
    # the radius of a hole in its middle, below "radius"; 0 for none; length; 0 to 1e9
    inner_radius: Optional[_Number]
    # what cuts parts of it away: a point stays if every one of them keeps it
    trimmers: Optional[Union[Trimmer, Sequence[Trimmer]]]

class _InstancesObjectRequired(TypedDict):
    # the object; no instances itself
    object: Object
    # a transform for each instance
    places: _TransformArray

class _InstancesObject(_InstancesObjectRequired, total=False):
    """Another object, at many places."""

    # a colour for each instance, components from 0, which the material's colour is multiplied with
    colors: Optional[_Vector3Array]

class _MeshObjectRequired(TypedDict):
    # the corners of the faces; length
    points: _Vector3Array

class _MeshObject(_MeshObjectRequired, total=False):
    """Triangles and quads; the front is where their corners appear counter-clockwise."""

    # three indices of points, from 0, for each triangle; may be left out if there are quads
    triangles: Optional[_IntArray]
    # four indices of points, counter-clockwise, for each quad; may be left out if there are
    # triangles
    quads: Optional[_IntArray]
    # a normal for each point; left out, triangles are flat
    normals: Optional[_Vector3Array]
    # a texture coordinate for each point; left out, each triangle has 0 to 1 along its first and
    # last edge
    uvs: Optional[_Vector2Array]
    # a colour for each point, components from 0, which the material's colour is multiplied with
    colors: Optional[_Vector3Array]
    # what cuts parts of it away: a point stays if every one of them keeps it
    trimmers: Optional[Union[Trimmer, Sequence[Trimmer]]]

class _PatchesObjectRequired(TypedDict):
    # the grid of control points, row after row; u runs along the rows, v from row to row; length
    points: _Vector3Array
    # how many points a row has; 1 or more
    columns: _Integer

class _PatchesObject(_PatchesObjectRequired, total=False):
    """A grid of bicubic patches; its front is where u, v and the normal are right-handed."""

    # the basis of the cubics both ways, as a spline function of the module gives it; left out,
    # Bezier
    basis: Optional[_Matrix4]
    # the basis along u alone
    basis_u: Optional[_Matrix4]
    # the basis along v alone
    basis_v: Optional[_Matrix4]
    # how many points further the next patch begins; left out, what the module has for the basis,
    # or else 3; 1 to 4
    step: Optional[_Integer]
    # the step along u alone; 1 to 4
    step_u: Optional[_Integer]
    # the step along v alone; 1 to 4
    step_v: Optional[_Integer]
    # whether each row goes on from its last point to its first; 0 or 1
    wrap_u: Optional[_Switch]
    # whether the last row is followed by the first; 0 or 1
    wrap_v: Optional[_Switch]
    # into how many strips each patch is cut, both ways; 1 to 256
    divisions: Optional[_Integer]
    # what cuts parts of it away: a point stays if every one of them keeps it
    trimmers: Optional[Union[Trimmer, Sequence[Trimmer]]]

class _PointsObjectRequired(TypedDict):
    # the centre of each; length
    positions: _Vector3Array

class _PointsObject(_PointsObjectRequired, total=False):
    """A cloud of points: spheres, by the million; their fronts are outside."""

    # the radius of all; length; 1e-9 to 1e9
    radius: Optional[_Number]
    # a radius for each, from 1e-9 to 1e9, in place of "radius"; length
    radii: Optional[_FloatArray]
    # a colour for each, components from 0, which the material's colour is multiplied with
    colors: Optional[_Vector3Array]

class _QuadObject(TypedDict, total=False):
    """A parallelogram, or any four corners."""

    # one corner of a parallelogram; length; -1e9 to 1e9
    origin: Optional[_Vector3]
    # from the origin to the next corner; length; -1e9 to 1e9, not all 0
    edge_u: Optional[_Vector3]
    # from the origin to the other neighbour; edge_u x edge_v points to the front; length; -1e9 to
    # 1e9, not all 0
    edge_v: Optional[_Vector3]
    # four corners in place of origin and edges, counter-clockwise when seen from the front; length
    corners: Optional[_Vector3Array]
    # what cuts parts of it away: a point stays if every one of them keeps it
    trimmers: Optional[Union[Trimmer, Sequence[Trimmer]]]

class _SphereObject(TypedDict, total=False):
    """A sphere; its front is outside."""

    # its centre; length; -1e9 to 1e9
    center: Optional[_Vector3]
    # its radius; length; 1e-9 to 1e9
    radius: Optional[_Number]
    # what cuts parts of it away: a point stays if every one of them keeps it
    trimmers: Optional[Union[Trimmer, Sequence[Trimmer]]]

class _SubdivisionObjectRequired(TypedDict):
    # the corners of the faces; length
    points: _Vector3Array
    # the indices of points, from 0, of each face, counter-clockwise
    indices: _IntArray

class _SubdivisionObject(_SubdivisionObjectRequired, total=False):
    """The smooth surface of a polygon mesh (Catmull, Clark)."""

    # how many corners each face has; left out, all have four
    counts: Optional[_IntArray]
    # two indices of points for each edge that is a crease
    crease_edges: Optional[_IntArray]
    # how sharp each crease is: for so many subdivisions it is one; left out, for all of them
    crease_weights: Optional[_FloatArray]
    # indices of points that stay where they are
    corner_points: Optional[_IntArray]
    # a texture coordinate for each point, linear over the faces; left out, as for a mesh
    uvs: Optional[_Vector2Array]
    # how often each face is subdivided, before its points go where infinitely many would put them;
    # 1 to 8
    levels: Optional[_Integer]
    # whether the border of an open surface goes round its corners smoothly
    boundary: Optional[Literal["smooth", "sharp"]]

class _TorusObject(TypedDict, total=False):
    """A ring; its front is outside."""

    # its centre; length; -1e9 to 1e9
    center: Optional[_Vector3]
    # the axis of the ring, of any length; -1e9 to 1e9, not all 0
    axis: Optional[_Vector3]
    # from the centre to the middle of the tube; length; 1e-9 to 1e9
    major_radius: Optional[_Number]
    # the radius of the tube, from a millionth of "major_radius" to all of it; length; 1e-9 to 1e9
    minor_radius: Optional[_Number]
    # what cuts parts of it away: a point stays if every one of them keeps it
    trimmers: Optional[Union[Trimmer, Sequence[Trimmer]]]

class _CheckerPattern(TypedDict, total=False):
    """Squares or cubes of two colours in turn."""

    # the colour of the square or cube that lies at the origin; 0 or more
    a: Optional[Union[_Color, Pattern]]
    # the colour of its neighbours; 0 or more
    b: Optional[Union[_Color, Pattern]]
    # how many squares or cubes lie on a length of 1; 1 / length; -1e9 to 1e9
    scale: Optional[_Scale]
    # where the pattern lies: in the texture coordinates, or in the object's space
    space: Optional[Literal["uv", "object"]]

class _GradientPatternRequired(TypedDict):
    # the colours, in their order
    colors: _Vector3Array

class _GradientPattern(_GradientPatternRequired, total=False):
    """Colours that follow each other along a direction; beyond its ends the first and the last."""

    # a position for each colour, none below the one before; left out, they are evenly spaced from
    # 0 to 1
    positions: Optional[_FloatArray]
    # where the position is 0; length; -1e9 to 1e9
    origin: Optional[_Vector3]
    # from the origin to where the position is 1; length; -1e9 to 1e9, not all 0
    direction: Optional[_Vector3]
    # where the pattern lies: in the texture coordinates, or in the object's space
    space: Optional[Literal["uv", "object"]]

class _ImagePatternRequired(TypedDict):
    # the picture
    texture: Union[Texture, _PictureSource]

class _ImagePattern(_ImagePatternRequired, total=False):
    """A picture over the texture coordinates."""

    # how many pictures lie on a length of 1 of u and v; 1 / length; -1e9 to 1e9
    scale: Optional[_Scale]
    # what is added to (u, v) after the scale; 1 is a picture; -1e9 to 1e9
    offset: Optional[_Vector2]
    # what lies beyond the picture
    wrap: Optional[Literal["repeat", "clamp", "mirror", "black"]]
    # what lies between the middles of pixels; trilinear takes means over what a pixel of the
    # rendering sees
    filter: Optional[Literal["bilinear", "nearest", "trilinear"]]
    # what the pattern shows; one channel as a grey, the alpha as 1 where the file has none
    channel: Optional[Literal["color", "red", "green", "blue", "alpha"]]
    # how the numbers of the file are taken; file: sRGB in PNG and JPEG files, linear in all others
    color_space: Optional[Literal["file", "srgb", "linear"]]

class _MixPattern(TypedDict, total=False):
    """Two colours or patterns, mixed, multiplied or added."""

    # the first colour; 0 or more
    a: Optional[Union[_Color, Pattern]]
    # the second colour; 0 or more
    b: Optional[Union[_Color, Pattern]]
    # how much of b: a mix is a (1 - amount) + b amount; 0 to 1
    amount: Optional[Union[_Number, Pattern]]
    # multiply is a (1 - amount + b amount), add is a + b amount
    mode: Optional[Literal["mix", "multiply", "add"]]

class _NoisePattern(TypedDict, total=False):
    """A fractal sum of gradient noise between two colours."""

    # the colour where the noise is least; 0 or more
    a: Optional[Union[_Color, Pattern]]
    # the colour where it is greatest; 0 or more
    b: Optional[Union[_Color, Pattern]]
    # how many features of the coarsest octave lie on a length of 1; 1 / length; -1e9 to 1e9
    scale: Optional[_Scale]
    # how many noises are summed, each finer and weaker than the one before; 1 to 16
    octaves: Optional[_Integer]
    # how much finer; 1 to 10
    lacunarity: Optional[_Number]
    # how much weaker; 0 to 1
    gain: Optional[_Number]
    # where the pattern lies: in the texture coordinates, or in the object's space
    space: Optional[Literal["object", "uv"]]

class _BoxTrimmer(TypedDict, total=False):
    """Cuts along the sides of a box in the object's space."""

    # the corner with the least coordinates; length; -1e9 to 1e9
    min: Optional[_Vector3]
    # the corner with the greatest coordinates; length; -1e9 to 1e9
    max: Optional[_Vector3]
    # which part stays
    keep: Optional[Literal["inside", "outside"]]

class _CurveTrimmerRequired(TypedDict):
    # the corners of a polygon in (u, v), or the control points of a curve; the last goes on to the
    # first
    points: _Vector2Array

class _CurveTrimmer(_CurveTrimmerRequired, total=False):
    """Cuts along a closed curve in the texture coordinates of the object."""

    # the basis of the curve; left out, straight lines join the points
    basis: Optional[_Matrix4]
    # how many points further the next segment begins; left out, what the module has for the basis,
    # or else 3; 1 to 4
    step: Optional[_Integer]
    # which part stays
    keep: Optional[Literal["inside", "outside"]]

class _PlaneTrimmer(TypedDict, total=False):
    """Cuts one side of a plane away, in the object's space."""

    # a point of the plane; length; -1e9 to 1e9
    point: Optional[_Vector3]
    # the side that is cut away, of any length; -1e9 to 1e9, not all 0
    normal: Optional[_Vector3]

class _ConductorMaterial(TypedDict, total=False):
    """A surface: Reflects like a metal, on both sides."""

    # a metal by its name; "custom" takes eta and k
    metal: Optional[Literal["custom", "aluminium", "copper", "gold", "silver"]]
    # the index of refraction of a "custom" metal, for red, green and blue; 0 to 100
    eta: Optional[_Color]
    # its index of extinction; 0 to 100
    k: Optional[_Color]
    # what the reflected light is multiplied by; 0 to 1
    color: Optional[Union[_Color, Union[_Color, Pattern]]]
    # 0 is smooth, as is all below 0.03; its square is the alpha of GGX microfacets; 0 to 1
    roughness: Optional[Union[_Number, Union[_Number, Pattern]]]
    # in place of a "principled" interface's own fraction of metal; others have none, and stay as
    # they are; 0 to 1
    metallic: Optional[Union[_Number, Pattern]]
    # the fraction of light that meets the surface; the rest passes straight through; 0 to 1
    opacity: Optional[Union[_Number, Pattern]]
    # a pattern whose luminance is a height above the surface, which its normals follow
    bump: Optional[Pattern]
    # the height of the luminance 1, in the object's space; length; -1e9 to 1e9
    bump_height: Optional[_Number]
    # normals in the directions of u, v and the surface's normal, -1 to 1 as 0 to 1; a linear image
    normal_map: Optional[Pattern]
    # 0: seen from behind, the surface is not there; 0 or 1
    two_sided: Optional[_Switch]

class _DielectricMaterial(TypedDict, total=False):
    """A surface: A clear boundary, as of glass or water: reflects a part of the light and refracts
    the rest.
    """

    # the index of refraction of the inside over that of the outside; the outside is the front; 0.1
    # to 10
    ior: Optional[_Number]
    # what light is multiplied by each time that it passes through; 0 to 1
    color: Optional[Union[_Color, Union[_Color, Pattern]]]
    # 0 is smooth, as is all below 0.03; its square is the alpha of GGX microfacets; 0 to 1
    roughness: Optional[Union[_Number, Union[_Number, Pattern]]]
    # in place of a "principled" interface's own fraction of metal; others have none, and stay as
    # they are; 0 to 1
    metallic: Optional[Union[_Number, Pattern]]
    # the fraction of light that meets the surface; the rest passes straight through; 0 to 1
    opacity: Optional[Union[_Number, Pattern]]
    # a pattern whose luminance is a height above the surface, which its normals follow
    bump: Optional[Pattern]
    # the height of the luminance 1, in the object's space; length; -1e9 to 1e9
    bump_height: Optional[_Number]
    # normals in the directions of u, v and the surface's normal, -1 to 1 as 0 to 1; a linear image
    normal_map: Optional[Pattern]
    # 0: seen from behind, the surface is not there; 0 or 1
    two_sided: Optional[_Switch]

class _PlasticMaterial(TypedDict, total=False):
    """A surface: A diffuse body under a clear coat, as of paint, on both sides."""

    # the colour of the body under the coat; 0 to 1
    color: Optional[Union[_Color, Union[_Color, Pattern]]]
    # the index of refraction of the coat; 1.1 to 3
    ior: Optional[_Number]
    # 0 is smooth, as is all below 0.03; its square is the alpha of GGX microfacets; 0 to 1
    roughness: Optional[Union[_Number, Union[_Number, Pattern]]]
    # in place of a "principled" interface's own fraction of metal; others have none, and stay as
    # they are; 0 to 1
    metallic: Optional[Union[_Number, Pattern]]
    # the fraction of light that meets the surface; the rest passes straight through; 0 to 1
    opacity: Optional[Union[_Number, Pattern]]
    # a pattern whose luminance is a height above the surface, which its normals follow
    bump: Optional[Pattern]
    # the height of the luminance 1, in the object's space; length; -1e9 to 1e9
    bump_height: Optional[_Number]
    # normals in the directions of u, v and the surface's normal, -1 to 1 as 0 to 1; a linear image
    normal_map: Optional[Pattern]
    # 0: seen from behind, the surface is not there; 0 or 1
    two_sided: Optional[_Switch]

class _PrincipledMaterial(TypedDict, total=False):
    """A surface: Most surfaces by a few numbers: fractions of metal, glossy body and glass, sheen,
    and a clear coat (after Burley 2012 and 2015).
    """

    # the colour of the body, of the metal, and of light that has gone through the glass; 0 to 1
    base_color: Optional[Union[_Color, Pattern]]
    # the fraction of metal; the rest is body and glass; 0 to 1
    metallic: Optional[Union[_Number, Union[_Number, Pattern]]]
    # of all but the coat; below 0.03 it counts as 0.03; 0 to 1
    roughness: Optional[Union[_Number, Union[_Number, Pattern]]]
    # the gloss on the body, which reflects 0.08 times as much straight on; 0 to 1
    specular: Optional[_Number]
    # the fraction of a clear coat over all of it, with an index of refraction of 1.5; 0 to 1
    clearcoat: Optional[_Number]
    # of the coat; below 0.03 it counts as 0.03; 0 to 1
    clearcoat_roughness: Optional[_Number]
    # white at grazing angles on the body, as of cloth; 0 to 1
    sheen: Optional[_Number]
    # the fraction of glass in what is no metal; the rest is body; 0 to 1
    transmission: Optional[_Number]
    # the index of refraction of the glass; the outside is the front; 1.1 to 3
    ior: Optional[_Number]
    # in place of the interface's own colour; left out, that stands; 0 to 1
    color: Optional[Union[_Color, Pattern]]
    # the fraction of light that meets the surface; the rest passes straight through; 0 to 1
    opacity: Optional[Union[_Number, Pattern]]
    # a pattern whose luminance is a height above the surface, which its normals follow
    bump: Optional[Pattern]
    # the height of the luminance 1, in the object's space; length; -1e9 to 1e9
    bump_height: Optional[_Number]
    # normals in the directions of u, v and the surface's normal, -1 to 1 as 0 to 1; a linear image
    normal_map: Optional[Pattern]
    # 0: seen from behind, the surface is not there; 0 or 1
    two_sided: Optional[_Switch]
