"""The scenes of the battery as arrays, for whoever writes them to a renderer.

SCENES has a function for each, which makes its Description. Lengths are in metres, +Y is up, angles
are in degrees, colours and radiances are linear. Light is scattered at most MAX_DEPTH times on its
way to the camera.
"""

import numpy

MAX_DEPTH = 13
WHITE = {"diffuse": (0.73, 0.73, 0.73)}
BOX_SIDES = ((0, 1, 3, 2), (4, 6, 7, 5), (0, 4, 5, 1), (2, 3, 7, 6), (0, 2, 6, 4), (1, 5, 7, 3))


class Description:
    """What a scene is made of. A material is {"diffuse": colour}; {"metal": colour, "roughness":
    number}, which reflects so much at every angle, and may have a "picture" (rows, columns, 3) over
    texture coordinates in place of the colour; {"glass": index of refraction}; or {"lamp":
    radiance}, which shines from the front of what is otherwise a diffuse grey of 0.5."""

    def __init__(self, position, target, fov):
        self.camera = position, target, fov  # fov: of the picture's height
        # (material, corners (N, 4, 3)): the front is where they are counter-clockwise; the texture
        # coordinates are (0, 0), (1, 0), (1, 1) and (0, 1).
        self.quads = []
        # (material, points, triangles, normals or None, places (N, 4, 4) or None): points are rows,
        # so that a place has its translation in row 3.
        self.meshes = []
        # (material, points (N, K, 3), radii (K)): Catmull-Rom splines from the first to the last.
        self.tubes = []
        # (position, target, intensity, angle from the axis to no light, to where it is whole)
        self.spots = []
        self.sun = None  # (the way the light travels, irradiance, diameter)
        # A radiance, or a picture of all directions: -Z in its middle, +X a quarter to the right.
        self.sky = None
        self.haze = None  # (corner, corner, scattering coefficient, mean cosine)

    def quad(self, material, *parallelograms):
        """Origin, edge_u and edge_v of one or of many; edge_u x edge_v points to the front."""
        origin, u, v = numpy.broadcast_arrays(
            *(numpy.reshape(part, (-1, 3)).astype(float) for part in parallelograms))
        corners = numpy.stack([origin, origin + u, origin + u + v, origin + v], 1)
        self.quads.append((material, corners))

    def box(self, material, least, greatest, degrees=0.0, place=(0, 0, 0)):
        """A box between two corners, turned around +Y, then moved."""
        ends = least, greatest
        points = numpy.array([[ends[(i >> (2 - axis)) & 1][axis] for axis in range(3)]
                              for i in range(8)])
        triangles = [side[:3] for side in BOX_SIDES] + [side[::2] + side[3:] for side in BOX_SIDES]
        self.mesh(material, points @ turned(degrees)[:3, :3] + place, numpy.array(triangles))

    def mesh(self, material, points, triangles, normals=None, places=None):
        self.meshes.append((material, points, triangles, normals, places))

    def ball(self, material, center, radius):
        points, triangles = sphere(128, 64)
        self.mesh(material, points * radius + center, triangles, points)


def turned(degrees):
    """The transform around +Y, for points that are rows."""
    angle = numpy.radians(degrees)
    c, s = numpy.cos(angle), numpy.sin(angle)
    return numpy.array([[c, 0, -s, 0], [0, 1, 0, 0], [s, 0, c, 0], [0, 0, 0, 1.0]])


def grid(columns, rows, wraps=False):
    """The triangles of rows of points; with wraps the first column follows the last."""
    index = numpy.arange(columns * rows).reshape(rows, columns)
    index = numpy.hstack([index, index[:, :1]]) if wraps else index
    a, b, c, d = index[:-1, :-1], index[:-1, 1:], index[1:, 1:], index[1:, :-1]
    return numpy.concatenate([numpy.stack(corners, -1).reshape(-1, 3)
                              for corners in ((a, b, c), (a, c, d))])


def directions(longitude, latitude):
    """From +Z towards +X, and from the horizon to +Y."""
    return numpy.stack([numpy.sin(longitude) * numpy.cos(latitude), numpy.sin(latitude),
                        numpy.cos(longitude) * numpy.cos(latitude)], -1)


def sphere(columns, rows):
    """The points of a sphere of radius 1, which are its normals, and its triangles."""
    row, column = numpy.indices((rows, columns))
    points = directions(column / columns * 2 * numpy.pi, (row / (rows - 1) - 0.5) * numpy.pi)
    triangles = grid(columns, rows, wraps=True)
    triangles[triangles < columns] = columns - 1  # one point is the pole
    triangles = numpy.minimum(triangles, columns * (rows - 1))
    a, b, c = triangles.T
    points = points.reshape(-1, 3)[columns - 1:columns * (rows - 1) + 1]
    return points, (triangles - (columns - 1))[(a != b) & (b != c) & (c != a)]


def cornell():
    """The Cornell box of render_cornell.cpp."""
    scene = Description((2.78, 2.73, -8), (2.78, 2.73, 0), 39.3)
    across, up, back = (5.56, 0, 0), (0, 5.49, 0), (0, 0, 5.60)
    scene.quad(WHITE, [(0, 0, 0), up, back], [back, across, up], [across, back, across])
    scene.quad({"diffuse": (0.63, 0.06, 0.05)}, across, back, up)
    scene.quad({"diffuse": (0.14, 0.45, 0.09)}, (0, 0, 0), up, back)
    for height, degrees, place in ((1.65, 17, (1.86, 0, 1.69)), (3.30, -17, (3.69, 0, 3.51))):
        scene.box(WHITE, (-0.825, 0, -0.825), (0.825, height, 0.825), degrees, place)
    scene.quad({"lamp": (15, 15, 15)}, (2.13, 5.48, 2.27), (1.30, 0, 0), (0, 0, 1.05))
    return scene


def indirect_room():
    """Shelves along two walls hide lamps that shine upwards: only the ceiling sees them."""
    scene = Description((0, 1.65, 4.9), (0, 1.6, 0), 48)
    white, wood = {"diffuse": (0.78, 0.76, 0.72)}, {"diffuse": (0.5, 0.33, 0.2)}
    scene.box(wood, (-2.6, -0.1, -3), (2.6, 0, 5))
    scene.box(white, (-2.6, 3.2, -3), (2.6, 3.3, 5))
    scene.box({"diffuse": (0.7, 0.42, 0.3)}, (-2.6, 0, -3.1), (2.6, 3.2, -3))
    scene.box(white, (-2.6, 0, 5), (2.6, 3.2, 5.1))
    scene.box({"diffuse": (0.2, 0.32, 0.5)}, (0.9, 0, -1.9), (1.9, 0.9, -0.9))
    scene.box(wood, (-1.6, 0, 0), (-0.8, 0.45, 0.8), 30)
    for side in (-1, 1):
        for x0, x1, y0, y1 in ((2.6, 2.7, 0, 3.2), (2.15, 2.55, 2.45, 2.5), (2.15, 2.2, 2.5, 2.6)):
            x0, x1 = sorted((side * x0, side * x1))
            scene.box(white, (x0, y0, -2.9), (x1, y1, 4.9))
    scene.quad({"lamp": (9, 7.6, 5.6)}, [(-2.45, 2.52, 4.8), (2.25, 2.52, 4.8)], (0.2, 0, 0),
               (0, 0, -7.6))
    return scene


def caustics():
    """A ball of glass and a ring of gold below a lamp."""
    scene = Description((0, 4, 6), (0, 0.3, 0), 38)
    scene.quad({"diffuse": (0.7, 0.7, 0.7)}, (-8, 0, 8), (16, 0, 0), (0, 0, -16))
    scene.quad({"lamp": (60, 55, 50)}, (-2.5, 5, -0.4), (0.7, 0, 0), (0, 0, 0.7))
    scene.ball({"glass": 1.5}, (-1.0, 0.85, 0), 0.8)
    angle = numpy.linspace(0, 2 * numpy.pi, 256, endpoint=False)
    normals = numpy.stack([numpy.sin(angle), 0 * angle, numpy.cos(angle)], -1)
    scene.mesh({"metal": (1.0, 0.77, 0.34), "roughness": 0.1},
               numpy.concatenate([normals * 0.9 + (1.1, height, 0.3) for height in (0.001, 0.55)]),
               grid(256, 2, wraps=True), numpy.concatenate([normals, normals]))
    return scene


def environment():
    """A bumpy ball of 160000 triangles under a bright sky with a small sun."""
    scene = Description((0, 1.6, 5), (0, 0.85, 0), 32)
    scene.quad({"diffuse": (0.4, 0.38, 0.35)}, (-12, 0, 12), (24, 0, 0), (0, 0, -24))
    points, triangles = sphere(400, 200)
    bumps = 0.9 + 0.12 * numpy.prod(numpy.sin(9 * points), axis=1, keepdims=True)
    scene.mesh({"diffuse": (0.7, 0.45, 0.3)}, points * bumps + (0, 1, 0), triangles)
    v, u = numpy.indices((512, 1024))
    latitude, longitude = (0.5 - (v + 0.5) / 512) * numpy.pi, ((u + 0.5) / 512 - 1) * numpy.pi
    glow = numpy.exp(-4 * abs(latitude))[..., None]
    sky = numpy.where(latitude[..., None] > 0, (0.5, 0.7, 1.0) + glow, (0.3, 0.28, 0.25))
    sun = numpy.array([0.6, 0.55, 0.58]) / numpy.linalg.norm([0.6, 0.55, 0.58])
    in_sun = directions(numpy.pi - longitude, latitude) @ sun > numpy.cos(numpy.radians(0.7))
    sky[in_sun] = 20000, 18500, 16000
    scene.sky = sky.astype(numpy.float32)
    return scene


def thousand_lights():
    """Nine rooms without ceilings, and 112 small lamps in each."""
    scene = Description((0, 10.5, 7.5), (0, 0, 0.3), 42)
    chance = numpy.random.default_rng(1)
    scene.quad({"diffuse": (0.6, 0.58, 0.55)}, (-4.6, 0, 4.6), (9.2, 0, 0), (0, 0, -9.2))
    for wall in (-4.5, -1.5, 1.5, 4.5):
        scene.box(WHITE, (-4.55, 0, wall - 0.05), (4.55, 1.8, wall + 0.05))
        scene.box(WHITE, (wall - 0.05, 0, -4.5), (wall + 0.05, 1.8, 4.5))
    for room in range(9):
        corner = numpy.array([3 * (room % 3) - 4.5, 0, 3 * (room // 3) - 4.5])
        scene.box({"diffuse": (0.3, 0.4, 0.6)}, (-0.4, 0, -0.4), (0.4, 0.7, 0.4), 20 + 25 * room,
                  corner + (1.5, 0, 1.5))
        places = corner + chance.uniform((0.3, 1.2, 0.3), (2.7, 1.7, 2.7), (112, 3))
        radiance = 9 * (2 + numpy.cos(room + numpy.array([0, 2, 4])))
        scene.quad({"lamp": tuple(radiance)}, places, (0.05, 0, 0), (0, 0, 0.05))
    return scene


def haze():
    """Three spots in haze, and what stands in their light."""
    scene = Description((0, 1.8, 7), (0, 1.5, 0), 40)
    scene.quad(WHITE, [(-5, 0, 7.5), (-5, 0, -3)], (10, 0, 0), [(0, 0, -10.5), (0, 5, 0)])
    scene.box({"diffuse": (0.6, 0.3, 0.2)}, (-0.5, 0, -0.5), (0.5, 1.2, 0.5), 30, (-1.2, 0, 0))
    scene.box({"diffuse": (0.2, 0.4, 0.6)}, (-0.4, 0, -0.4), (0.4, 0.8, 0.4), -20, (1.2, 0, 0.6))
    for x, color in ((-2.2, (60, 30, 20)), (0, (25, 60, 30)), (2.2, (20, 30, 70))):
        scene.spots.append(((x, 4, -0.5), (0.3 * x, 0, 0.4), color, 14, 10))
    scene.haze = (-6, -0.5, -4), (6, 6, 8), 0.08, 0.3
    return scene


def grass():
    """Twenty thousand tubes in the sun."""
    scene = Description((0, 0.9, 2.6), (0, 0.1, 0), 36)
    chance = numpy.random.default_rng(1)
    scene.quad({"diffuse": (0.3, 0.22, 0.14)}, (-3, 0, 3), (6, 0, 0), (0, 0, -6))
    roots = chance.uniform((-2, 0, -2), (2, 0, 2), (20000, 3))
    height = chance.uniform(0.12, 0.3, (20000, 1))
    bend = chance.normal(0, 0.07, (20000, 3)) * (1, 0, 1)
    points = numpy.stack([roots + bend * t * t + (0, 1, 0) * height * t
                          for t in (0, 0.35, 0.7, 1)], 1)
    radii = numpy.array([0.004, 0.0035, 0.0025, 0.0008])
    scene.tubes.append(({"diffuse": (0.25, 0.5, 0.12)}, points, radii))
    scene.sun = (-0.5, -0.8, -0.4), (3, 2.8, 2.4), 0.53
    scene.sky = (0.35, 0.45, 0.6)
    return scene


def glossy_interior():
    """A room of rough metals, a floor with a picture, balls of metal and glass."""
    scene = Description((0, 1.7, 4.4), (0, 1.2, 0), 46)
    rows, columns = numpy.indices((256, 256)) // 32
    tiles = ((rows + columns) % 2)[..., None]
    picture = numpy.where(tiles, (0.75, 0.7, 0.6), (0.15, 0.18, 0.22)).astype(numpy.float32)
    floor = {"metal": None, "picture": picture, "roughness": 0.25}
    back = {"metal": (0.75, 0.6, 0.45), "roughness": 0.3}
    right = {"metal": (0.5, 0.6, 0.7), "roughness": 0.25}
    scene.quad(floor, (-2.5, 0, 5), (5, 0, 0), (0, 0, -7.5))
    scene.quad(WHITE, (-2.5, 3, -2.5), (5, 0, 0), (0, 0, 7.5))
    scene.quad(back, (-2.5, 0, -2.5), (5, 0, 0), (0, 3, 0))
    scene.quad({"diffuse": (0.6, 0.25, 0.15)}, (-2.5, 0, 5), (0, 0, -7.5), (0, 3, 0))
    scene.quad(right, (2.5, 0, -2.5), (0, 0, 7.5), (0, 3, 0))
    lamps = (-1.5, 2.98, -0.5), (0.9, 2.98, 1.5)
    scene.quad({"lamp": (14, 13, 11)}, lamps, (0.6, 0, 0), (0, 0, 0.6))
    scene.ball({"metal": (0.95, 0.9, 0.85), "roughness": 0.2}, (-1.2, 0.701, -0.4), 0.7)
    scene.ball({"metal": (0.95, 0.64, 0.54), "roughness": 0.3}, (1.2, 0.601, -0.2), 0.6)
    scene.ball({"glass": 1.5}, (0.1, 0.451, 1.0), 0.45)
    return scene


def big_geometry():
    """Hills of two million triangles, and a stone of ten thousand at a thousand places."""
    scene = Description((0, 3.2, 11), (0, 0.2, 0), 34)
    z, x = numpy.indices((1001, 1001)) * 0.024 - 12

    def height(x, z):
        ripples = 0.04 * numpy.sin(9 * x + 3 * z) * numpy.sin(8 * z)
        return 0.5 * numpy.sin(0.7 * x) * numpy.cos(0.6 * z) + ripples

    points = numpy.stack([x, height(x, z), z], -1).reshape(-1, 3)
    scene.mesh({"diffuse": (0.45, 0.42, 0.3)}, points, grid(1001, 1001)[:, ::-1])
    points, triangles = sphere(100, 50)
    points = points * (1 + 0.15 * numpy.sin(5 * points[:, :1]) * numpy.cos(7 * points[:, 1:2]))
    chance = numpy.random.default_rng(1)
    places = numpy.empty((1000, 4, 4))
    for place in places:
        x, z = chance.uniform(-10, 10, 2)
        place[:] = turned(chance.uniform(0, 360))
        place[:3, :3] *= chance.uniform(0.08, 0.3)
        place[3, :3] = x, height(x, z) + 0.05, z
    scene.mesh({"diffuse": (0.55, 0.5, 0.48)}, points, triangles, None, places)
    scene.sun = (-0.6, -0.6, -0.5), (3, 2.8, 2.4), 0.53
    scene.sky = (0.4, 0.5, 0.65)
    return scene


SCENES = {make.__name__: make for make in (
    cornell, indirect_room, caustics, environment, thousand_lights, haze, grass, glossy_interior,
    big_geometry)}
