"""The native parts of the module's objects, read and changed through ctypes.

An object's record is the interpreter's object header and one pointer to the native part. A vector,
matrix or transform is its doubles, row after row. An array is a container: size, block size, first
block; a block is a number of slots, its elements and the following block.
"""

import contextlib
import ctypes

from module_under_test import vantorPM


def pointer_slot(value):
    """The pointer in the object's record."""
    address = id(value) + type(value).__basicsize__ - ctypes.sizeof(ctypes.c_void_p)
    return ctypes.c_void_p.from_address(address)


@contextlib.contextmanager
def without_native_part(value):
    """The object is one that has not been initialised; afterwards it is what it was."""
    slot = pointer_slot(value)
    native = slot.value
    slot.value = None
    try:
        yield
    finally:
        slot.value = native


def doubles(value, count):
    """The doubles of a native vector, matrix or transform, to be read and written in place."""
    view = (ctypes.c_double * count).from_address(pointer_slot(value).value)
    view.owner = value  # keeps the object, and so the memory, while the view lives
    return view


def transform_of(numbers):
    """A transform with any sixteen entries, row after row; a script cannot set them all."""
    transform = vantorPM.transform()
    doubles(transform, 16)[:] = numbers
    return transform


class Block(ctypes.Structure):
    _fields_ = [("count", ctypes.c_int32), ("data", ctypes.c_void_p), ("next", ctypes.c_void_p)]


class Container(ctypes.Structure):
    _fields_ = [
        ("size", ctypes.c_int32),
        ("block_size", ctypes.c_int32),
        ("first", ctypes.c_void_p),
    ]


def container(array):
    return Container.from_address(pointer_slot(array).value)


def blocks(array):
    """The array's blocks, first to last."""
    chain = []
    address = container(array).first
    while address:
        chain.append(Block.from_address(address))
        address = chain[-1].next
    return chain


def block_counts(array):
    """The numbers of slots in the array's blocks, first to last."""
    return [block.count for block in blocks(array)]
