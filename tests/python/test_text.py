"""Numbers as text: "%g" and "%ld" as C prints them, whatever the locale."""

import ctypes
import locale
import math
import random
import struct
import unittest

from module_under_test import vantorPM
from native_parts import doubles, transform_of
from scripts import Scripts

LIBC = ctypes.CDLL(None)

SPECIAL = [
    0.0,
    -0.0,
    math.inf,
    -math.inf,
    math.nan,
    5e-324,
    -5e-324,
    2.2250738585072014e-308,
    1.7976931348623157e308,
    1.0,
    -1.0,
    0.1,
    1 / 3,
    2 / 3,
    100000.0,
    999999.0,
    999999.4,
    999999.5,
    1000000.0,
    1e-4,
    1e-5,
    9.9999949e-5,
    9.9999951e-5,
    0.00012345678,
    123456.5,
    123457.5,
    1234565.0,
    0.5,
    2.5,
    1e15,
    1e16,
    1e21,
    1e22,
    1e100,
    1e-100,
    12345678.0,
    65536.0,
    2147483648.0,
    0.30000000000000004,
    3.0000005,
    1.000005,
    1.0000049999,
]


def c_text(number):
    """What C's printf makes of the number."""
    buffer = ctypes.create_string_buffer(64)
    LIBC.snprintf(buffer, ctypes.c_size_t(64), b"%g", ctypes.c_double(number))
    return buffer.value.decode()


def any_double(generator):
    """A double of any sign, exponent and mantissa, NaNs and infinities included."""
    return struct.unpack("<d", struct.pack("<Q", generator.getrandbits(64)))[0]


def everyday_double(generator):
    return round(
        generator.uniform(-1, 1) * 10.0 ** generator.randint(-6, 8), generator.randint(0, 8)
    )


class NumberTextTest(unittest.TestCase):
    def check(self, numbers):
        numbers = list(numbers)
        while len(numbers) % 16:
            numbers.append(0.0)
        for start in range(0, len(numbers), 16):
            sixteen = numbers[start : start + 16]
            texts = [c_text(number) for number in sixteen]
            rows = [", ".join(texts[4 * row : 4 * row + 4]) for row in range(4)]
            transform = transform_of(sixteen)
            self.assertEqual(repr(transform), "transform( ({}), ({}), ({}), ({}) )".format(*rows))
            self.assertEqual(repr(transform.get(1)), "vector4( {} )".format(rows[1]))

    def test_special_numbers_are_printed_as_c_prints_them(self):
        self.check(SPECIAL)

    def test_a_negative_nan_is_printed_as_c_prints_it(self):
        number = struct.unpack("<d", struct.pack("<Q", 0xFFF8000000000001))[0]
        self.assertEqual(c_text(number), "-nan")
        self.check([number])

    def test_random_doubles_are_printed_as_c_prints_them(self):
        generator = random.Random(31)
        self.check(any_double(generator) for _ in range(4000))

    def test_everyday_doubles_are_printed_as_c_prints_them(self):
        generator = random.Random(32)
        self.check(everyday_double(generator) for _ in range(4000))

    def test_powers_of_ten_and_their_neighbours_are_printed_as_c_prints_them(self):
        numbers = []
        for exponent in range(-20, 25):
            power = float("1e{}".format(exponent))
            numbers += [
                power,
                math.nextafter(power, 0.0),
                math.nextafter(power, math.inf),
                -power,
                power * 0.9999995,
                power * 9.999995,
            ]
        self.check(numbers)

    def test_every_type_prints_a_number_in_the_same_way(self):
        generator = random.Random(33)
        for number in SPECIAL + [any_double(generator) for _ in range(200)]:
            text = c_text(number)
            vector2 = vantorPM.vector2(number, 0)
            vector3 = vantorPM.vector3(0, number, 0)
            vector4 = vantorPM.vector4(0, 0, 0, number)
            matrix2 = vantorPM.matrix2(vector2, vector2)
            matrix3 = vantorPM.matrix3(vector3, vector3, vector3)
            matrix4 = vantorPM.matrix4(vector4, vector4, vector4, vector4)
            self.assertEqual(str(vector2), "vector2( {}, 0 )".format(text))
            self.assertEqual(str(vector3), "vector3( 0, {}, 0 )".format(text))
            self.assertEqual(str(vector4), "vector4( 0, 0, 0, {} )".format(text))
            self.assertEqual(str(matrix2), "matrix2( ({0}, 0), ({0}, 0) )".format(text))
            self.assertEqual(
                str(matrix3), "matrix3( (0, {0}, 0), (0, {0}, 0), (0, {0}, 0) )".format(text)
            )
            self.assertEqual(str(matrix4).count(" " + text + ")"), 4)
            self.assertEqual(
                str(vantorPM.floatarray().add(number)), "[floatarray {} ]".format(text)
            )
            self.assertEqual(
                str(vantorPM.vector2array().add(vector2)), "[vector2array ( {}, 0 ) ]".format(text)
            )
            self.assertEqual(
                str(vantorPM.vector3array().add(vector3)),
                "[vector3array ( 0, {}, 0 ) ]".format(text),
            )
            self.assertEqual(
                str(vantorPM.vector4array().add(vector4)),
                "[vector4array ( 0, 0, 0, {} ) ]".format(text),
            )
            self.assertEqual(
                str(vantorPM.matrix2array().add(matrix2)),
                "[matrix2array [ ( {0}, 0 ), ( {0}, 0 ) ] ]".format(text),
            )
            self.assertEqual(
                str(vantorPM.matrix3array().add(matrix3)),
                "[matrix3array [ ( 0, {0}, 0 ), ( 0, {0}, 0 ), ( 0, {0}, 0 ) ] ]".format(text),
            )
            self.assertEqual(
                str(vantorPM.matrix4array().add(matrix4)).count(", {} )".format(text)), 4
            )

    def test_integers_are_printed_in_full(self):
        generator = random.Random(34)
        for _ in range(1000):
            number = generator.randint(-(2**31), 2**31 - 1)
            self.assertEqual(str(vantorPM.intarray().add(number)), "[intarray {} ]".format(number))

    def test_the_bits_of_a_number_do_not_suffer_from_printing(self):
        number = struct.unpack("<d", struct.pack("<Q", 0x7FF8000000ABCDEF))[0]
        vector = vantorPM.vector2(1, 2)
        doubles(vector, 2)[0] = number
        before = bytes(doubles(vector, 2))
        repr(vector)
        self.assertEqual(bytes(doubles(vector, 2)), before)


def locale_with_a_comma():
    """The name of an installed locale whose decimal point is a comma, or None."""
    before = locale.setlocale(locale.LC_NUMERIC)
    try:
        for language in [
            "de_DE",
            "fr_FR",
            "es_ES",
            "it_IT",
            "nl_NL",
            "pt_BR",
            "ru_RU",
            "sv_SE",
            "pl_PL",
            "da_DK",
        ]:
            for encoding in [".UTF-8", ".utf8", "", ".ISO8859-1"]:
                try:
                    locale.setlocale(locale.LC_NUMERIC, language + encoding)
                except locale.Error:
                    continue
                if locale.localeconv()["decimal_point"] == ",":
                    return language + encoding
        return None
    finally:
        locale.setlocale(locale.LC_NUMERIC, before)


class LocaleTest(Scripts, unittest.TestCase):
    def test_text_does_not_depend_on_the_locale(self):
        name = locale_with_a_comma()
        if name is None:
            self.skipTest("no locale with a decimal comma is installed (locale -a)")
        self.assert_script(
            """
            import locale
            locale.setlocale(locale.LC_ALL, "{}")
            assert locale.localeconv()["decimal_point"] == ","
            import vantorPM
            print(vantorPM.vector3(1.5, -0.25, 1234567.5))
            print(vantorPM.floatarray().add(1.5).add(1e-7))
            print(vantorPM.transform().scaling(vantorPM.vector3(0.5, 1000000, 1e10)))
            print(vantorPM.intarray().add(1234567))
            """.format(
                name
            ),
            "vector3( 1.5, -0.25, 1.23457e+06 )\n"
            "[floatarray 1.5, 1e-07 ]\n"
            "transform( (0.5, 0, 0, 0), (0, 1e+06, 0, 0), (0, 0, 1e+10, 0), (0, 0, 0, 1) )\n"
            "[intarray 1234567 ]\n",
        )


if __name__ == "__main__":
    unittest.main()
