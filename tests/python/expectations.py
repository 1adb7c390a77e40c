"""Assertions that several test files share."""

import math
import struct

from module_under_test import vantorPM
from native_parts import without_native_part


def bits(number):
    return struct.pack("<d", number)


class Expectations:
    """To be mixed into a TestCase."""

    def assert_fails(self, kind, pattern, call, *arguments):
        """The call raises exactly this kind of error; the pattern, if any, is found in its text."""
        with self.assertRaises(kind) as caught:
            call(*arguments)
        self.assertIs(type(caught.exception), kind)
        if pattern is not None:
            self.assertRegex(str(caught.exception), pattern)

    def assert_message(self, kind, message, call, *arguments):
        """The call raises exactly this kind of error with exactly this text."""
        with self.assertRaises(kind) as caught:
            call(*arguments)
        self.assertIs(type(caught.exception), kind)
        self.assertEqual(str(caught.exception), message)

    def assert_out_of_bounds(self, call, *arguments):
        self.assert_message(IndexError, "index out-of-bounds", call, *arguments)

    def assert_module_error(self, message, call, *arguments):
        """An error of the module's own: a SystemError, which vantorPM.error does not catch."""
        self.assert_message(SystemError, message, call, *arguments)
        self.assertFalse(issubclass(SystemError, vantorPM.error))

    def assert_not_initialized(self, value, message, call, *arguments):
        """The call on an object without its native part fails with this message."""
        with without_native_part(value):
            self.assert_module_error(message, call, *arguments)

    def assert_same_bits(self, got, expected):
        """The same doubles, bit by bit; any NaN is as good as another."""
        got, expected = list(got), list(expected)
        self.assertEqual(len(got), len(expected))
        for place, (one, other) in enumerate(zip(got, expected)):
            self.assertIs(type(one), float, place)
            if math.isnan(other):
                self.assertTrue(math.isnan(one), (place, got, expected))
            else:
                self.assertEqual(bits(one), bits(other), (place, got, expected))

    def assert_returns_itself(self, value, call, *arguments):
        self.assertIs(call(*arguments), value)
