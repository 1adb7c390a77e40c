"""The names of the module's types and of their methods."""

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

# The scene's methods that take a type and a parameter list.
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
