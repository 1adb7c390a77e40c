"""The names of the module's functions, types and methods, once for all tests, in the order in which
the module has them."""

VECTORS = ["vector2", "vector3", "vector4"]
MATRICES = ["matrix2", "matrix3", "matrix4"]
ARRAYS = [
    "intarray",
    "floatarray",
    "vector2array",
    "vector3array",
    "vector4array",
    "matrix2array",
    "matrix3array",
    "matrix4array",
    "transformarray",
]
ARRAYS_OF_OBJECTS = ARRAYS[2:]  # their elements are objects of the module, not numbers
SEQUENCES = VECTORS + ARRAYS
TYPES = ["scene"] + VECTORS + MATRICES + ["transform"] + ARRAYS

# The type of a matrix's rows, and of the elements of an array of objects.
ROW_OF = dict(zip(MATRICES, VECTORS))
ELEMENT_OF = {name: name[: -len("array")] for name in ARRAYS_OF_OBJECTS}

# How many numbers an object of a type is made of.
NUMBERS = {
    "vector2": 2,
    "vector3": 3,
    "vector4": 4,
    "matrix2": 4,
    "matrix3": 9,
    "matrix4": 16,
    "transform": 16,
}

BASES = ["BezierBasis", "BSplineBasis", "CatmullRomBasis", "HermiteBasis"]
STEPS = ["BezierStep", "BSplineStep", "CatmullRomStep", "HermiteStep"]
FUNCTIONS = (
    ["scene"]
    + VECTORS
    + MATRICES
    + ["transform", "compose", "invert"]
    + BASES
    + STEPS
    + ARRAYS
)

# The scene's methods: those that take a type and a parameter list, an id, or nothing.
CREATION = [
    "newCamera",
    "newImager",
    "newInterface",
    "newInterior",
    "newLight",
    "newMaterial",
    "newObject",
    "newPattern",
    "newTrimmer",
]
WITH_ID = ["imagerBegin", "interiorBegin", "lightOn", "lightOff", "materialBegin", "addObject"]
WITHOUT_ARGUMENTS = [
    "imagerEnd",
    "interiorEnd",
    "lightBegin",
    "lightEnd",
    "materialEnd",
    "transformEnd",
    "radiosity",
]

METHODS = {
    "scene": CREATION[:-1]
    + [
        "newTexture",
        "newTrimmer",
        "imagerBegin",
        "imagerEnd",
        "interiorBegin",
        "interiorEnd",
        "lightOn",
        "lightOff",
        "lightBegin",
        "lightEnd",
        "materialBegin",
        "materialEnd",
        "addObject",
        "transformBegin",
        "transformEnd",
        "radiosity",
        "render",
    ],
    "transform": [
        "get",
        "matrix",
        "zero",
        "identity",
        "scaling",
        "translation",
        "alignmentToZ",
        "alignmentTo",
        "rotationAroundX",
        "rotationAroundY",
        "rotationAroundZ",
        "rotationAroundAxis",
        "reflectionOnXY",
        "compose",
        "invert",
    ],
}
METHODS.update(dict.fromkeys(VECTORS, ["get", "set", "length", "sqlength", "normalize"]))
METHODS.update(dict.fromkeys(MATRICES, ["get", "set"]))
METHODS.update(dict.fromkeys(ARRAYS, ["get", "set", "add", "getSize", "setSize"]))


def operation(method):
    """The renderer's operation that a method of the scene calls: newCamera calls NewCamera."""
    return method[0].upper() + method[1:]
