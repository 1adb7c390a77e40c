"""A small scene for every type of the vocabulary: of most, a ball on a floor."""

import math

import vantor as vt
import vantorPM

WARM, COOL, LIGHT = (0.85, 0.32, 0.12), (0.1, 0.3, 0.65), (0.85, 0.82, 0.75)

VIEW = {"position": (1.0, 1.5, 4.2), "target": (0, 0.62, 0), "fov": 30}


# What scenes are made of.


def unlit():
    """A camera, and a floor of squares."""
    scene = vt.Scene(strict=True)
    scene.camera("perspective", **VIEW)
    squares = scene.pattern("checker", a=0.3, b=0.42, scale=24.0)
    with scene.material("surface", interface=scene.interface("diffuse"), color=squares):
        scene.add("quad", origin=(-6, 0, 6), edge_u=(12, 0, 0), edge_v=(0, 0, -12))
    return scene


def studio():
    """A soft lamp on the left, and a little light from everywhere."""
    scene = unlit()
    scene.light("environment", radiance=(0.3, 0.34, 0.42))
    with scene.light("area", radiance=(10, 9, 7.6)):
        scene.add("disk", center=(-3, 4, 2.5), normal=(3, -3.4, -2.5), radius=0.9)
    return scene


def painted(scene, color=WARM):
    return scene.material("plastic", color=color, roughness=0.3)


def add_ball(scene, **parameters):
    scene.add("sphere", radius=0.65, transform=vt.translate(0, 0.65, 0), **parameters)


# A scene with a type and parameters, for each call.


def camera(type, **parameters):
    scene = studio()
    with painted(scene):
        add_ball(scene)
    for x, color in ((-1.5, COOL), (1.4, LIGHT)):
        with painted(scene, color):
            scene.add("box", min=(x - 0.3, 0, -1.6), max=(x + 0.3, 1.2, -1))
    scene.camera(type, **parameters)
    return scene


def interface(type, **parameters):
    scene = studio()
    with scene.material("surface", interface=scene.interface(type, **parameters)):
        add_ball(scene)
    return scene


def light(type, **parameters):
    scene = unlit()
    scene.light(type, **parameters)
    with painted(scene, LIGHT):
        add_ball(scene)
    return scene


def object(type, **parameters):
    scene = studio()
    with painted(scene):
        scene.add(type, **parameters)
    return scene


def pattern(type, **parameters):
    scene = studio()
    with scene.material("plastic", color=scene.pattern(type, **parameters), roughness=0.3):
        add_ball(scene)
    return scene


def trimmer(type, **parameters):
    scene = studio()
    with painted(scene):
        add_ball(scene, trimmers=scene.trimmer(type, **parameters))
    return scene


# Those that need more than that.


def settings():
    scene = camera("perspective", **VIEW)
    scene.imager("settings", max_depth=1)
    return scene


def medium():
    scene = studio()
    nothing = scene.material("surface", interface=scene.interface("diffuse"), opacity=0.0)
    haze = scene.interior("homogeneous", sigma_t=(3, 4, 6), albedo=(0.97, 0.95, 0.9))
    with nothing, haze:
        add_ball(scene)
    return scene


def area_light():
    scene = unlit()
    with scene.light("area", radiance=(8, 6.5, 5)):
        scene.add("quad", origin=(-1.7, 0.1, 0.3), edge_u=(0.6, 0, -0.9), edge_v=(0, 1.3, 0))
    with painted(scene, LIGHT):
        add_ball(scene)
    return scene


def sky_picture():
    scene = vt.Scene(strict=True)
    scene.camera("panorama")
    scene.light("sky", sun_direction=(-1, 0.7, 0.6), sun=False, scale=0.6)
    return scene.render(64, 32, 16)


def diffuse_material():
    scene = studio()
    with scene.material("diffuse", reflectance=(0.2, 0.6, 0.3)):
        add_ball(scene)
    return scene


def surface_material():
    scene = studio()
    interface = scene.interface("diffuse", reflectance=WARM)
    holes = scene.pattern("checker", scale=(16.0, 8.0, 1.0))
    with scene.material("surface", interface=interface, opacity=holes):
        add_ball(scene)
    return scene


def image():
    scene = studio()
    waves = [[(0.5 + 0.4 * math.sin(0.4 * x), 0.3 + 0.3 * math.sin(0.4 * y), 0.15)
              for x in range(64)] for y in range(64)]
    texture = scene.texture(waves)
    with scene.material("plastic", color=scene.pattern("image", texture=texture), roughness=0.3):
        add_ball(scene)
    return scene


def mix():
    scene = studio()
    rings = scene.pattern("gradient", colors=[WARM, LIGHT, WARM, LIGHT], direction=(0, 1, 0))
    clouds = scene.pattern("noise", a=0.0, b=1.0, scale=3.0)
    both = scene.pattern("mix", a=rings, b=COOL, amount=clouds)
    with scene.material("plastic", color=both, roughness=0.3):
        add_ball(scene)
    return scene


def curves():
    """Tubes that wind around each other."""
    points, counts = [], []
    for start in (0, 120, 240):
        angles = [math.radians(start + 40 * i) for i in range(12)]
        points += [(0.45 * math.sin(a), 0.16 * i - 0.2, 0.45 * math.cos(a))
                   for i, a in enumerate(angles)]
        counts.append(12)
    return object("curves", points=points, counts=counts, radius=0.1, kind="tube")


def instances():
    scene = studio()
    brick = scene.object("box", min=(-0.2, 0, -0.1), max=(0.2, 0.13, 0.1))
    places = [vt.translate(0, 0, 0.62) @ vt.rotate(40 * i + 20 * (row % 2))
              @ vt.translate(0, 0.14 * row, 0) for row in range(8) for i in range(9)]
    with painted(scene):
        scene.add("instances", object=brick, places=places)
    return scene


def mesh():
    points = [(-0.9, 0, 0.6), (0.9, 0, 0.6), (0, 0, -0.9), (0, 1.4, 0)]
    colors = [(1, 0.3, 0.2), (0.2, 0.8, 0.3), (0.2, 0.3, 1), (1, 1, 1)]
    scene = studio()
    with painted(scene, 1.0):
        scene.add("mesh", points=points, triangles=[0, 1, 3, 1, 2, 3, 2, 0, 3], colors=colors)
    return scene


def patches():
    points = [(0.75 * column - 1.1, 2.2 if 0 < row < 3 and 0 < column < 3 else 0.2, 1 - 0.7 * row)
              for row in range(4) for column in range(4)]
    return object("patches", points=points, columns=4)


def points():
    """A ball of small ones, whose colours go round."""
    scene = studio()
    positions, radii, colors = [], [], []
    for i in range(400):
        height, turn = 1 - (2 * i + 1) / 400, 2.399963 * i  # the golden angle
        across = math.sqrt(1 - height * height)
        positions.append((0.7 * across * math.sin(turn), 0.72 + 0.7 * height,
                          0.7 * across * math.cos(turn)))
        radii.append(0.03 + 0.03 * (i % 3))
        colors.append([0.5 + 0.45 * math.sin(0.3 * turn + phase) for phase in (0, 2, 4)])
    with painted(scene, 1.0):
        scene.add("points", positions=positions, radii=radii, colors=colors)
    return scene


def subdivision():
    """A cube, of which the edges of one side are creases."""
    points = [(0.75 * x, 0.7 + 0.7 * y, 0.75 * z) for y in (-1, 1)
              for x, z in ((-1, -1), (1, -1), (1, 1), (-1, 1))]
    indices = [0, 1, 2, 3, 7, 6, 5, 4, 3, 2, 6, 7, 2, 1, 5, 6, 1, 0, 4, 5, 0, 3, 7, 4]
    return object("subdivision", points=points, indices=indices, levels=5,
                  crease_edges=[0, 1, 1, 2, 2, 3, 3, 0])


def curve_trimmer():
    points = [(0.9, 0.35), (0.98, 0.6), (0.9, 0.75), (1.15, 0.75), (1.05, 0.6), (1.15, 0.35)]
    return trimmer("curve", points=points, basis=vantorPM.BSplineBasis(), keep="outside")


SCENES = {
    ("newCamera", "orthographic"):
        lambda: camera("orthographic", position=(1.6, 1.8, 4.2), target=(0, 0.5, -0.4), height=2.6),
    ("newCamera", "panorama"): lambda: camera("panorama", position=(0.1, 0.9, 1.6)),
    ("newCamera", "perspective"): lambda: camera("perspective", aperture_radius=0.12, **VIEW),
    ("newImager", "file"): lambda: camera("perspective", **VIEW),
    ("newImager", "settings"): settings,
    ("newInterface", "conductor"): lambda: interface("conductor", metal="gold", roughness=0.3),
    ("newInterface", "dielectric"): lambda: interface("dielectric", color=(0.85, 0.97, 0.92)),
    ("newInterface", "diffuse"): lambda: interface("diffuse", reflectance=WARM),
    ("newInterface", "plastic"): lambda: interface("plastic", color=COOL),
    ("newInterface", "principled"):
        lambda: interface("principled", base_color=WARM, metallic=0.6, clearcoat=1.0),
    ("newInterior", "homogeneous"): medium,
    ("newLight", "area"): area_light,
    ("newLight", "distant"):
        lambda: light("distant", direction=(2, -2, -1), irradiance=(3, 2.6, 2.2), angle=4.0),
    ("newLight", "environment"): lambda: light("environment", name=sky_picture()),
    ("newLight", "point"): lambda: light("point", position=(-1.4, 2.4, 1.4), intensity=(9, 7, 5)),
    ("newLight", "sky"): lambda: light("sky", sun_direction=(-1, 0.8, 0.5), scale=0.3),
    ("newLight", "spot"):
        lambda: light("spot", position=(-1.5, 3, 1.5), target=(0, 0.4, 0), intensity=(26, 22, 16),
                      cutoff_angle=16.0),
    ("newMaterial", "diffuse"): diffuse_material,
    ("newMaterial", "surface"): surface_material,
    ("newObject", "box"): lambda: object("box", min=(-0.8, 0, -0.6), max=(0.6, 1, 0.5)),
    ("newObject", "cone"): lambda: object("cone", to=(0, 1.3, 0), radius=0.75),
    ("newObject", "curves"): curves,
    ("newObject", "cylinder"): lambda: object("cylinder", to=(0, 1.1, 0), radius=0.55),
    ("newObject", "disk"):
        lambda: object("disk", center=(0, 0.75, 0), normal=(0.5, 0.5, 2), radius=0.72,
                       inner_radius=0.3),
    ("newObject", "instances"): instances,
    ("newObject", "mesh"): mesh,
    ("newObject", "patches"): patches,
    ("newObject", "points"): points,
    ("newObject", "quad"):
        lambda: object("quad", origin=(-0.9, 0.1, 0.3), edge_u=(1.6, 0.2, 0),
                       edge_v=(0.1, 1.2, -0.5)),
    ("newObject", "sphere"): lambda: object("sphere", center=(0, 0.65, 0), radius=0.65),
    ("newObject", "subdivision"): subdivision,
    ("newObject", "torus"):
        lambda: object("torus", center=(0, 0.72, 0), axis=(0.2, 1, 1), major_radius=0.55,
                       minor_radius=0.2),
    ("newPattern", "checker"): lambda: pattern("checker", a=WARM, b=LIGHT, scale=(16.0, 8.0, 1.0)),
    ("newPattern", "gradient"):
        lambda: pattern("gradient", colors=[WARM, (0.9, 0.8, 0.2), COOL], direction=(0, 1, 0)),
    ("newPattern", "image"): image,
    ("newPattern", "mix"): mix,
    ("newPattern", "noise"): lambda: pattern("noise", a=COOL, b=(0.95, 0.9, 0.7), scale=3.0),
    ("newTrimmer", "box"):
        lambda: trimmer("box", min=(0, 0, 0), max=(2, 2, 2), keep="outside"),
    ("newTrimmer", "curve"): curve_trimmer,
    ("newTrimmer", "plane"): lambda: trimmer("plane", point=(0, 0.25, 0), normal=(0.3, 1, 0.3)),
}
