"""The module vantorPM: scenes for a renderer, and the values that describe them.

These are its documentation and its types; the module itself carries no doc strings.

Making objects. vector3 and its like are functions, each of which makes an object of a type of the
same name. The types are no part of the module, and cannot be called, subclassed, copied, pickled or
weakly referenced; isinstance() needs type(vector3(0, 0, 0)). For a checker they have an underscore:

    if TYPE_CHECKING:
        from vantorPM import _vector3

    def middle(a: "_vector3", b: "_vector3") -> "_vector3": ...

Calling. Arguments are positional, keywords are refused. A method with several arguments also takes
them as one tuple: v.set((0, 1.0)) is v.set(0, 1.0). Where a signature says *ignored, any arguments
are accepted and none is looked at.

Numbers. A real is a double: a float, an int, or an object with __float__ or __index__. An integer
is an int, an object with __index__, or a float, which is truncated toward zero; it has 32 bits, and
what lies outside them is an OverflowError. NaN as an integer is a ValueError, an infinity an
OverflowError.

Exact types. An argument that has to be a list, a vector, a matrix or a transform has to be exactly
of that type: no subclass, no tuple of numbers.

Copies. Values go into and out of objects by copy: changing a vector that was read from an array
leaves the array as it is. Methods that return "the object itself" return the same object, so that
calls chain. Two objects are equal only if they are one object.

Errors. A wrong number or kind of arguments is the interpreter's TypeError, a wrong index IndexError
"index out-of-bounds". What the module reports through its own error object arrives as SystemError.
A call that fails has changed nothing; where that is not so, it is said.

Text. print(), str() and repr() show the form that stands with each type. Numbers are as C's "%g"
in the C locale.

The renderer. The module only forwards what a script says. Statements about the meaning of types,
parameters, transforms and passes are those of the renderer that ships with the module; its types
and parameters stand in docs/vocabulary.md. Points are rows (p' = p M), coordinates are
right-handed, angles are in degrees. Each call holds the interpreter's lock until it returns.
"""

from typing import Any, Generic, Iterator, List, Literal, Optional, SupportsFloat, SupportsIndex
from typing import TypeVar, Union, final

from typing_extensions import Self

_Real = Union[SupportsFloat, SupportsIndex]
_Integer = Union[SupportsIndex, float]

_Row = TypeVar("_Row")
_Given = TypeVar("_Given")
_Taken = TypeVar("_Taken")
_Assigned = TypeVar("_Assigned")

# Not a list of a union of the accepted types: a list is invariant, and a checker would refuse most
# lists that a script builds up in a variable.
_Parameters = List[Any]

# The types of the renderer that ships with the module, for completion. The module passes on any
# text, as another renderer has other types.
# vocabulary
_CameraType = Literal["orthographic", "panorama", "perspective"]
_ImagerType = Literal["file", "settings"]
_InterfaceType = Literal["conductor", "dielectric", "diffuse", "plastic", "principled"]
_InteriorType = Literal["homogeneous"]
_LightType = Literal["area", "distant", "environment", "point", "sky", "spot"]
_MaterialType = Literal["diffuse", "surface"]
_ObjectType = Literal[
    "box", "cone", "curves", "cylinder", "disk", "instances", "mesh", "patches", "points", "quad",
    "sphere", "subdivision", "torus"
]
_PatternType = Literal["checker", "gradient", "image", "mix", "noise"]
_TrimmerType = Literal["box", "curve", "plane"]
# end of vocabulary

class error(Exception):
    """The module's error class. Nothing raises it: the module's own errors are SystemErrors."""

@final
class _scene:
    """A scene in the renderer: what the script describes, and what is rendered.

    The creation methods new... make an entity and return its id, an int that other methods and
    parameters refer to it by. Blocks (...Begin, ...End) bracket other calls and nest. Ids, blocks
    and their order are the renderer's to check; the module passes them on as they are. A mistake in
    a scene is not a Python error: the renderer that ships with the module reports it in one line on
    the standard error stream and goes on.

    Parameters are a list, by convention of names and values in turn: ["fov", 45.0, "up", v]. An
    element is exactly an int (of 32 bits), float, str, vector, matrix, transform or array of this
    module. Numbers, texts, vectors, matrices and transforms are copied. The renderer reads an array
    in place during the call; what happens to the array afterwards does not reach it.

    Errors of creation methods; the renderer is then not called:
        TypeError            The type is neither str nor None, or the parameters are no list.
        SystemError          "unsupported parameter type at N in the parameter list": element N,
                             counted from 0, is of another type. bool, None, tuples, lists and ints
                             of more than 32 bits are.
        UnicodeEncodeError   A text has no UTF-8 form.
        ValueError           "embedded null character": a text has one inside.

    Printed as the interpreter prints any object.
    """

    def newCamera(self, type: Union[_CameraType, str, None], parameters: _Parameters, /) -> int:
        """Makes a camera and returns its id. A picture is taken with the camera that was made last.
        """

    def newImager(self, type: Union[_ImagerType, str, None], parameters: _Parameters, /) -> int:
        """Makes an imager, what becomes of a finished picture, and returns its id."""

    def newInterface(
        self, type: Union[_InterfaceType, str, None], parameters: _Parameters, /
    ) -> int:
        """Makes an interface, how a surface scatters light, and returns its id. A material refers
        to it."""

    def newInterior(self, type: Union[_InteriorType, str, None], parameters: _Parameters, /) -> int:
        """Makes an interior, the medium that fills an object, and returns its id."""

    def newLight(self, type: Union[_LightType, str, None], parameters: _Parameters, /) -> int:
        """Makes a light, which is on, and returns its id."""

    def newMaterial(self, type: Union[_MaterialType, str, None], parameters: _Parameters, /) -> int:
        """Makes a material and returns its id. It applies to the objects that are added within its
        block."""

    def newObject(self, type: Union[_ObjectType, str, None], parameters: _Parameters, /) -> int:
        """Makes an object, a shape, and returns its id. addObject() puts it into the scene."""

    def newPattern(self, type: Union[_PatternType, str, None], parameters: _Parameters, /) -> int:
        """Makes a pattern, a parameter that varies over a surface, and returns its id."""

    def newTexture(self, type: Optional[str], /) -> int:
        """Makes a texture and returns its id. The one creation method without parameters: a list
        is a TypeError."""

    def newTrimmer(self, type: Union[_TrimmerType, str, None], parameters: _Parameters, /) -> int:
        """Makes a trimmer, which cuts pieces out of a surface, and returns its id."""

    def imagerBegin(self, id: _Integer, /) -> None:
        """Opens a block whose pictures go to this imager. In nested blocks they go to each."""

    def imagerEnd(self, *ignored: object) -> None:
        """Closes the innermost imager block."""

    def interiorBegin(self, id: _Integer, /) -> None:
        """Opens a block whose objects are filled with this interior."""

    def interiorEnd(self, *ignored: object) -> None:
        """Closes the innermost interior block."""

    def lightOn(self, id: _Integer, /) -> None:
        """Switches this light on, for the passes that follow. An area light also becomes the one
        that lightBegin() opens."""

    def lightOff(self, id: _Integer, /) -> None:
        """Switches this light off, for the passes that follow."""

    def lightBegin(self, *ignored: object) -> None:
        """Opens a block whose objects shine: from them the area light shines that was made or
        switched on last. The one begin without an id."""

    def lightEnd(self, *ignored: object) -> None:
        """Closes the innermost light block."""

    def materialBegin(self, id: _Integer, /) -> None:
        """Opens a block whose objects have this material."""

    def materialEnd(self, *ignored: object) -> None:
        """Closes the innermost material block."""

    def addObject(self, id: _Integer, /) -> None:
        """Puts this object into the scene, within the open blocks. An object may be added more than
        once."""

    def transformBegin(self, transform: _transform, /) -> None:
        """Opens a block in which cameras and lights are made, and objects added, under a copy of
        the transform. The innermost of nested blocks acts first on a point."""

    def transformEnd(self, *ignored: object) -> None:
        """Closes the innermost transform block."""

    def radiosity(self, *ignored: object) -> None:
        """Asks for a radiosity pass; docs/vocabulary.md says what comes of it."""

    def render(
        self,
        width: _Integer,
        height: _Integer,
        samples: _Integer,
        x0: _Real = ...,
        y0: _Real = ...,
        x1: _Real = ...,
        y1: _Real = ...,
        /,
    ) -> None:
        """Renders a picture and gives it to the imagers.

        width and height of the picture are in pixels, samples is the number of samples for each
        pixel. The window to render is x0, y0 to x1, y1 in fractions of the picture, from its upper
        left corner; 0, 0, 1, 1 where left out. Returns when the picture is done; Ctrl-C ends it
        with KeyboardInterrupt.
        """

def scene(n: _Integer = ..., /) -> _scene:
    """Makes an empty scene. n, 10240 if left out, is the budget of patches of a radiosity
    pass; the renderer that ships with the module takes 1 to 1000000.
    """

class _Vector:
    """What the vectors share: a sequence of N components, which are doubles of any value."""

    def get(self, i: _Integer, /) -> float:
        """Component i, 0 <= i < N. IndexError outside; -1 is outside, unlike in v[-1]."""

    def set(self, i: _Integer, component: _Real, /) -> Self:
        """Makes component i the given number, 0 <= i < N, and returns the vector itself. IndexError
        outside; the number has been read by then."""

    def length(self, *ignored: object) -> float:
        """The square root of sqlength()."""

    def sqlength(self, *ignored: object) -> float:
        """The sum of the squared components, added in their order."""

    def normalize(self, *ignored: object) -> Self:
        """Multiplies each component by 1 / length() and returns the vector itself.

        A vector of length 0 stays as it is, also one whose squares underflow to 0, such as
        (1e-200, 0). A NaN component makes every component NaN.
        """

    def __len__(self) -> int:
        """N."""

    def __getitem__(self, i: SupportsIndex, /) -> float:
        """Component i, -N <= i < N; a negative index counts from the end. IndexError outside. There
        are no slices."""

    def __setitem__(self, i: SupportsIndex, component: _Real, /) -> None:
        """Makes component i the given number, -N <= i < N. IndexError outside, before the number is
        looked at. A component cannot be deleted: TypeError."""

    def __iter__(self) -> Iterator[float]:
        """The components in order. Iteration goes through item access; there is no such attribute
        at run time."""

    def __repr__(self) -> str:
        """The printed form, which stands with the type."""

@final
class _vector2(_Vector):
    """Two components. Printed as "vector2( 1, 2 )"."""

def vector2(x: _Real, y: _Real, /) -> _vector2:
    """The vector (x, y). There is no form without arguments, or from another vector."""

@final
class _vector3(_Vector):
    """Three components: a point, a direction or a colour. Printed as "vector3( 1, 2, 3 )"."""

def vector3(x: _Real, y: _Real, z: _Real, /) -> _vector3:
    """The vector (x, y, z). There is no form without arguments, or from another vector."""

@final
class _vector4(_Vector):
    """Four components. Printed as "vector4( 1, 2, 3, 4 )"."""

def vector4(x: _Real, y: _Real, z: _Real, w: _Real, /) -> _vector4:
    """The vector (x, y, z, w). There is no form without arguments, or from another vector."""

class _Matrix(Generic[_Row]):
    """What the matrices share: N row vectors of N components. A matrix is no sequence: no len(), no
    m[i]."""

    def get(self, row: _Integer, /) -> _Row:
        """A new vector with a copy of the row, 0 <= row < N. No index error: a row outside is all
        zeros."""

    def set(self, row: _Integer, vector: _Row, /) -> Self:
        """Makes the row a copy of the vector, 0 <= row < N, and returns the matrix itself. No index
        error: a row outside is not stored."""

    def __repr__(self) -> str:
        """The printed form, which stands with the type."""

@final
class _matrix2(_Matrix[_vector2]):
    """Two rows of two. Printed as "matrix2( (1, 2), (3, 4) )"."""

def matrix2(r0: _vector2, r1: _vector2, /) -> _matrix2:
    """The matrix with copies of the rows, row 0 first."""

@final
class _matrix3(_Matrix[_vector3]):
    """Three rows of three. Printed as "matrix3( (1, 2, 3), (4, 5, 6), (7, 8, 9) )"."""

def matrix3(r0: _vector3, r1: _vector3, r2: _vector3, /) -> _matrix3:
    """The matrix with copies of the rows, row 0 first."""

@final
class _matrix4(_Matrix[_vector4]):
    """Four rows of four. Printed as
    "matrix4( (1, 2, 3, 4), (5, 6, 7, 8), (9, 10, 11, 12), (13, 14, 15, 16) )"."""

def matrix4(r0: _vector4, r1: _vector4, r2: _vector4, r3: _vector4, /) -> _matrix4:
    """The matrix with copies of the rows, row 0 first."""

@final
class _transform:
    """A transformation: a 4x4 matrix M that takes a point p = (x, y, z, 1), a row, to p M.

    A translation therefore stands in row 3. Rotations are counter-clockwise when looked at against
    the axis. The methods from zero() to reflectionOnXY() replace the whole value, whatever it was,
    by an operation of the renderer library; the meaning stated is that of the library that ships
    with the module. compose() and invert() are the module's own.

    Printed as "transform( (1, 0, 0, 0), (0, 1, 0, 0), (0, 0, 1, 0), (0, 0, 0, 1) )", row 0 first.
    """

    def get(self, row: _Integer, /) -> _vector4:
        """A new vector with a copy of the row, 0 <= row < 4. IndexError outside."""

    def matrix(self, *ignored: object) -> _matrix4:
        """A new matrix with a copy of the sixteen entries."""

    def zero(self, *ignored: object) -> Self:
        """All entries 0. Returns the transform itself."""

    def identity(self, *ignored: object) -> Self:
        """Ones on the diagonal, zeros elsewhere. Returns the transform itself."""

    def scaling(self, factors: _vector3, /) -> Self:
        """Scales x, y and z: the diagonal is (f0, f1, f2, 1). Returns the transform itself."""

    def translation(self, offset: _vector3, /) -> Self:
        """Moves by the offset: the identity with row 3 = (o0, o1, o2, 1). Returns the transform
        itself."""

    def alignmentToZ(self, direction: _vector3, /) -> Self:
        """Turns the direction to +Z on the shortest way. A direction along -Z turns half around X,
        a zero direction gives the identity. Returns the transform itself."""

    def alignmentTo(self, a: _vector3, b: _vector3, /) -> Self:
        """Turns direction a to direction b on the shortest way, about a x b. Opposite directions
        turn half around an axis perpendicular to both, a zero vector gives the identity. Returns
        the transform itself."""

    def rotationAroundX(self, angle: _Real, /) -> Self:
        """Turns about the X axis, +Y toward +Z, by an angle in degrees. Returns the transform
        itself."""

    def rotationAroundY(self, angle: _Real, /) -> Self:
        """Turns about the Y axis, +Z toward +X, by an angle in degrees. Returns the transform
        itself."""

    def rotationAroundZ(self, angle: _Real, /) -> Self:
        """Turns about the Z axis, +X toward +Y, by an angle in degrees. With c and s its cosine and
        sine, rows 0 and 1 are (c, s, 0, 0), (-s, c, 0, 0). Returns the transform itself."""

    def rotationAroundAxis(self, point: _vector3, direction: _vector3, angle: _Real, /) -> Self:
        """Turns about the line through the point along the direction, by an angle in degrees:
        Rodrigues' rotation formula between two translations. A zero direction gives the identity.
        Returns the transform itself."""

    def reflectionOnXY(self, *ignored: object) -> Self:
        """Mirrors in the plane z = 0: the diagonal is (1, 1, -1, 1). Returns the transform
        itself."""

    def compose(self, other: _transform, /) -> Self:
        """Makes the value the product of itself and the other: on points, what it was acts first.
        t.compose(t) squares t. Returns the transform itself."""

    def invert(self, *ignored: object) -> Self:
        """Makes the value its inverse, by the rule of the function invert(). Returns the transform
        itself."""

    def __repr__(self) -> str:
        """The printed form, which stands with the type."""

def transform(*ignored: object) -> _transform:
    """A transform whose sixteen entries are 0: not the identity."""

def compose(a: _transform, b: _transform, /) -> _transform:
    """A new transform, the matrix product a x b; on points, a acts first. Entry (i, j) is
    a(i,0) b(0,j) + a(i,1) b(1,j) + a(i,2) b(2,j) + a(i,3) b(3,j), added from left to right. a and b
    stay as they are."""

def invert(a: _transform, /) -> _transform:
    """A new transform, the inverse of a by Cramer's rule: the adjugate times 1 / determinant. a
    stays as it is.

    A transform whose determinant is smaller than 1e-6 in magnitude counts as singular, however
    small its entries are, and gives its adjugate instead: scaling by 0.001 does. There is no error.
    """

def BezierBasis(*ignored: object) -> _matrix4:
    """A new matrix with the basis of cubic Bezier curves, for use as a parameter.

    As with every basis here, a segment with the control points P0 to P3 is
    p(t) = (t^3 t^2 t 1) B (P0 P1 P2 P3), 0 <= t <= 1: row 0 holds the coefficients of t^3.
    """

def BSplineBasis(*ignored: object) -> _matrix4:
    """A new matrix with the basis of uniform cubic B-splines; see BezierBasis()."""

def CatmullRomBasis(*ignored: object) -> _matrix4:
    """A new matrix with the basis of Catmull-Rom splines of tension 1/2; see BezierBasis(). A
    segment runs from P1 to P2."""

def HermiteBasis(*ignored: object) -> _matrix4:
    """A new matrix with the basis of cubic Hermite curves; see BezierBasis(). P0 and P2 are the
    ends, P1 and P3 the tangents there."""

def BezierStep(*ignored: object) -> int:
    """3: by so many control points a segment of the curve advances to the next."""

def BSplineStep(*ignored: object) -> int:
    """1; see BezierStep()."""

def CatmullRomStep(*ignored: object) -> int:
    """1; see BezierStep()."""

def HermiteStep(*ignored: object) -> int:
    """2; see BezierStep()."""

class _Array(Generic[_Given, _Taken, _Assigned]):
    """What the arrays share: a growable sequence of elements of one kind.

    Elements are copied, in and out. Storage is a chain of blocks in which elements never move; when
    it runs out, one block is appended with as many elements as the whole new size, so that n calls
    of add() copy nothing and make about log2(n) blocks.

    An array of negative size, which setSize() makes, has no elements: every index is refused, len()
    is a SystemError, and the printed form shows one element, what a read beyond the storage gives.
    """

    def get(self, i: _Integer, /) -> _Given:
        """Element i, 0 <= i < size, as a number or as a new object with a copy. IndexError outside;
        -1 is outside, unlike in a[-1]."""

    def set(self, i: _Integer, element: _Taken, /) -> Self:
        """Makes element i a copy of the given one, 0 <= i < size, and returns the array itself.
        IndexError outside; the element has been read by then."""

    def add(self, element: _Taken, /) -> Self:
        """Appends a copy of the element and returns the array itself.

        On an array of negative size it only brings the size nearer to 0 and stores nothing.
        MemoryError where no memory is left, with the size one larger all the same, or where the
        size is 2147483647 and stays so.
        """

    def getSize(self, *ignored: object) -> int:
        """The number of elements; negative after setSize() with a negative number."""

    def setSize(self, n: _Integer, /) -> Self:
        """Makes n the number of elements and returns the array itself.

        New storage is zero. A smaller size keeps the storage up to the block that covers it, and
        growing again within that shows the old elements; size 0 releases everything. A negative
        number is accepted. MemoryError where no memory is left, with the new size all the same:
        beyond the storage a read then gives element 0 of the first block, or zero where there is no
        block, and a write stores nothing.
        """

    def __len__(self) -> int:
        """The number of elements. SystemError where it is negative."""

    def __getitem__(self, i: SupportsIndex, /) -> _Given:
        """Element i, -size <= i < size, as get() gives it; a negative index counts from the end.
        IndexError outside. There are no slices."""

    def __setitem__(self, i: SupportsIndex, element: _Assigned, /) -> None:
        """Makes element i a copy of the given one, -size <= i < size. IndexError outside, before
        the element is looked at. An element cannot be deleted: TypeError."""

    def __iter__(self) -> Iterator[_Given]:
        """The elements in order. Iteration goes through item access; there is no such attribute at
        run time."""

    def __repr__(self) -> str:
        """The printed form, which stands with the type. The blank before the last "]" belongs to
        it."""

@final
class _intarray(_Array[int, _Integer, _Integer]):
    """An array of integers of 32 bits. Printed as "[intarray 1, 2, 3 ]"."""

def intarray(*ignored: object) -> _intarray:
    """An empty array."""

@final
class _floatarray(_Array[float, _Real, _Integer]):
    """An array of doubles. Item assignment takes an integer, so that a[0] = 2.7 stores 2.0; set()
    and add() take fractions. Printed as "[floatarray 1, 2.5, 3 ]"."""

def floatarray(*ignored: object) -> _floatarray:
    """An empty array."""

@final
class _vector2array(_Array[_vector2, _vector2, _vector2]):
    """An array of vector2. Printed as "[vector2array ( 1, 2 ), ( 3, 4 ) ]"."""

def vector2array(*ignored: object) -> _vector2array:
    """An empty array."""

@final
class _vector3array(_Array[_vector3, _vector3, _vector3]):
    """An array of vector3. Printed as "[vector3array ( 1, 2, 3 ), ( 4, 5, 6 ) ]"."""

def vector3array(*ignored: object) -> _vector3array:
    """An empty array."""

@final
class _vector4array(_Array[_vector4, _vector4, _vector4]):
    """An array of vector4. Printed as "[vector4array ( 1, 2, 3, 4 ), ( 5, 6, 7, 8 ) ]"."""

def vector4array(*ignored: object) -> _vector4array:
    """An empty array."""

@final
class _matrix2array(_Array[_matrix2, _matrix2, _matrix2]):
    """An array of matrix2. Printed as "[matrix2array [ ( 1, 0 ), ( 0, 1 ) ] ]"."""

def matrix2array(*ignored: object) -> _matrix2array:
    """An empty array."""

@final
class _matrix3array(_Array[_matrix3, _matrix3, _matrix3]):
    """An array of matrix3. Printed as
    "[matrix3array [ ( 1, 0, 0 ), ( 0, 1, 0 ), ( 0, 0, 1 ) ] ]"."""

def matrix3array(*ignored: object) -> _matrix3array:
    """An empty array."""

@final
class _matrix4array(_Array[_matrix4, _matrix4, _matrix4]):
    """An array of matrix4. Printed as "[matrix4array [ ( 1, 0, 0, 0 ), ( 0, 1, 0, 0 ),
    ( 0, 0, 1, 0 ), ( 0, 0, 0, 1 ) ] ]", on one line."""

def matrix4array(*ignored: object) -> _matrix4array:
    """An empty array."""

@final
class _transformarray(_Array[_transform, _transform, _transform]):
    """An array of transforms; a matrix4 is refused. Elements that setSize() adds are all zeros, not
    the identity. Printed like a matrix4array, with "transformarray" in its place."""

def transformarray(*ignored: object) -> _transformarray:
    """An empty array."""
