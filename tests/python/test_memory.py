"""Sizes that cannot be had: the arrays raise MemoryError and stay usable."""

import unittest

from scripts import Scripts
from names import ARRAYS

# Limits the address space to what the process has and 192 MiB more.
PROLOGUE = """
import resource
import vantorPM
import samples

with open("/proc/self/statm") as statm:
    pages = int(statm.read().split()[0])
limit = pages * resource.getpagesize() + (192 << 20)
resource.setrlimit(resource.RLIMIT_AS, (limit, resource.getrlimit(resource.RLIMIT_AS)[1]))

MAX = 2**31 - 1
make = vantorPM.{name}
element = samples.MAKE["{name}"]().get(1)
numbers = samples.numbers


def outcome(call, *arguments):
    try:
        return call(*arguments)
    except Exception as error:
        return type(error).__name__


"""


class MemoryTest(Scripts, unittest.TestCase):
    def assert_each(self, script, output, *names):
        """The script, run for each of the array types, prints this."""
        for name in names or ARRAYS:
            with self.subTest(name):
                self.assert_script(PROLOGUE.format(name=name) + script, output.format(name=name))

    def test_a_size_that_cannot_be_had_is_a_memory_error_and_is_the_size_all_the_same(self):
        self.assert_each(
            "a = make()\n" "print(outcome(a.setSize, MAX), a.getSize(), len(a))\n",
            "MemoryError 2147483647 2147483647\n",
        )

    def test_without_any_block_every_element_reads_as_zero_and_nothing_is_stored(self):
        self.assert_each(
            "a = make()\n"
            "outcome(a.setSize, MAX)\n"
            "zero = [0.0] * len(numbers(element))\n"
            "print(all(numbers(e) == zero for e in (a.get(0), a.get(MAX - 1), a[5], a[-1])))\n"
            "print(a.set(0, element) is a, a.set(MAX - 1, element) is a)\n"
            "a[7] = element\n"
            "print(all(numbers(a.get(i)) == zero for i in (0, 7, MAX - 1)))\n",
            "True\nTrue True\nTrue\n",
        )

    def test_beyond_the_storage_every_element_reads_as_element_0_and_nothing_is_stored(self):
        self.assert_each(
            "a = make().add(element).add(element)\n"
            "first = numbers(element)\n"
            "print(outcome(a.setSize, MAX), a.getSize())\n"
            "print([numbers(a.get(i)) == first for i in (0, 1, 3, 1000, MAX - 1)])\n"
            "print(numbers(a[-1]) == first)\n"
            "zero = make().setSize(1).get(0)\n"
            "print(a.set(1000, zero) is a)\n"
            "a[-1] = zero\n"
            "print([numbers(a.get(i)) == first for i in (0, 1, 1000, MAX - 1)])\n"
            "a.set(0, zero)\n"
            "print([numbers(a.get(i)) == numbers(zero) for i in (0, 1, 1000)])\n",
            "MemoryError 2147483647\n[True, True, True, True, True]\nTrue\nTrue\n"
            "[True, True, True, True]\n[True, False, True]\n",
        )

    def test_the_array_stays_usable(self):
        self.assert_each(
            "a = make().add(element).add(element)\n"
            "first = numbers(element)\n"
            "for size in (MAX, MAX - 1, 2**30):\n"
            "    outcome(a.setSize, size)\n"
            "    print(a.getSize() == size)\n"
            "a.setSize(2).add(element)\n"
            "print(a.getSize(), [numbers(e) == first for e in a])\n"
            "a.setSize(0)\n"
            "print(a.getSize(), a.add(element).getSize(), numbers(a[0]) == first)\n",
            "True\nTrue\nTrue\n3 [True, True, True]\n0 1 True\n",
        )

    def test_add_at_the_largest_size_is_a_memory_error_that_changes_nothing(self):
        self.assert_each(
            "a = make()\n"
            "outcome(a.setSize, MAX)\n"
            "print(outcome(a.add, element), a.getSize())\n"
            "print(outcome(a.add, element), a.getSize())\n",
            "MemoryError 2147483647\nMemoryError 2147483647\n",
        )

    def test_add_that_finds_no_memory_is_a_memory_error(self):
        # The block that add needs is as large as the whole array: more than half of what there is.
        self.assert_each(
            "size = (120 << 20) // (8 * len(numbers(element)))\n"
            "a = make().setSize(size)\n"
            "a.set(0, element).set(size - 1, element)\n"
            "print(outcome(a.add, element) == 'MemoryError' or make is vantorPM.intarray)\n"
            "print(a.getSize() == size + 1)\n"
            "print(numbers(a.get(0)) == numbers(a.get(size - 1)) == numbers(element))\n"
            "print(a.setSize(3).getSize(), numbers(a[0]) == numbers(element))\n",
            "True\nTrue\nTrue\n3 True\n",
        )

    def test_many_failures_in_a_row_lose_no_memory(self):
        self.assert_each(
            "def pages_now():\n"
            "    with open('/proc/self/statm') as statm:\n"
            "        return int(statm.read().split()[0])\n"
            "a = make().add(element)\n"
            "before = pages_now()\n"
            "for _ in range(2000):\n"
            "    outcome(a.setSize, MAX)\n"
            "    a.setSize(1)\n"
            "print(pages_now() - before < 256)\n",
            "True\n",
        )

    def test_an_array_without_its_storage_can_be_a_parameter(self):
        self.assert_each(
            "a = make().add(element)\n"
            "outcome(a.setSize, MAX)\n"
            "scene = vantorPM.scene()\n"
            "print(type(outcome(scene.newObject, 'x', ['a', a])) is int)\n"
            "print(a.getSize(), numbers(a.setSize(1)[0]) == numbers(element))\n",
            "True\n2147483647 True\n",
        )

    def test_printing_an_array_without_its_storage_is_a_memory_error_and_soon(self):
        # The text outgrows the memory long before the last of two thousand million elements.
        self.assert_each(
            "import signal\n"
            "a = make()\n"
            "outcome(a.setSize, MAX)\n"
            "signal.alarm(15)\n"
            "print(outcome(repr, a), a.getSize())\n"
            "print(repr(a.setSize(0)))\n",
            "MemoryError 2147483647\n[{name} ]\n",
            "intarray",
            "vector3array",
        )

    def test_printing_a_text_that_cannot_be_had_is_a_memory_error(self):
        # More than ten million numbers make a text of at least thirty million characters.
        self.assert_each(
            "a = make().setSize((100 << 20) // (8 * len(numbers(element))))\n"
            "size = a.getSize()\n"
            "result = outcome(repr, a)\n"
            "print(result == 'MemoryError' or result.endswith(' ]'), a.getSize() == size)\n",
            "True True\n",
        )


if __name__ == "__main__":
    unittest.main()
