"""What holds for all nine array types, to be mixed into a class for each member.

A member says:
    type_name       also the name of the module function
    message         of an object without its native part
    elements        three pairs: a maker of an element, and the numbers that it holds
    texts           of the arrays of the first 0, 1, 2 and 3 elements
    zero_texts      of the arrays of 1 and 3 zero elements
    wrong_elements  makers of values that are no elements
    wrong_pattern   found in the error about each of them
    numbered()      makes an element of a number
"""

import io
import random

import samples
from expectations import Expectations
from module_under_test import vantorPM
from native_parts import block_counts, container
from names import METHODS


class Chain:
    """A plain reading of the container's rules: a chain of blocks of slots, and a size."""

    def __init__(self, zero):
        self.zero = zero
        self.size = 0
        self.blocks = []

    def set_size(self, n):
        if n == 0:
            self.blocks = []
        elif n < self.size:
            capacity = 0
            for place, block in enumerate(self.blocks):
                capacity += len(block)
                if capacity >= n:
                    del self.blocks[place + 1 :]
                    break
        elif n > self.size and sum(map(len, self.blocks)) < n:
            self.blocks.append([self.zero] * n)
        self.size = n

    def store(self, index, value):
        for block in self.blocks:
            if 0 <= index < len(block):
                block[index] = value
                return
            index -= len(block)

    def add(self, value):
        self.set_size(self.size + 1)
        self.store(self.size - 1, value)

    def elements(self):
        return [element for block in self.blocks for element in block][: max(self.size, 0)]

    def counts(self):
        return [len(block) for block in self.blocks]


class ArrayTests(Expectations):
    def setUp(self):
        self.make = getattr(vantorPM, self.type_name)
        self.array = self.array_of(3)

    def element(self, place):
        return self.elements[place][0]()

    def numbers(self, place):
        return self.elements[place][1]

    def array_of(self, count):
        """An array of the first `count` elements."""
        array = self.make()
        for place in range(count):
            array.add(self.element(place))
        return array

    def numbered_array(self, count):
        array = self.make()
        for number in range(count):
            array.add(self.numbered(number))
        return array

    def read(self, array):
        """All elements as tuples of their numbers, the same through every door."""
        size = array.getSize()
        got = [tuple(samples.numbers(array.get(index))) for index in range(size)]
        items = [tuple(samples.numbers(array[index])) for index in range(size)]
        negative = [tuple(samples.numbers(array[index - size])) for index in range(size)]
        iterated = [tuple(samples.numbers(element)) for element in array]
        self.assertEqual(items, got)
        self.assertEqual(negative, got)
        self.assertEqual(iterated, got)
        self.assertEqual(len(array), size)
        return got

    def assert_holds(self, array, places):
        self.assertEqual(self.read(array), [tuple(self.numbers(place)) for place in places])

    def assign(self, array, index, value):
        array[index] = value

    def delete(self, array, index):
        del array[index]

    def zero(self):
        return tuple([0] * len(self.numbers(0)))

    # Creation

    def test_a_new_array_is_empty(self):
        array = self.make()
        self.assertEqual(array.getSize(), 0)
        self.assertEqual(len(array), 0)
        self.assertEqual(list(array), [])
        self.assertFalse(array)
        self.assertEqual(str(array), self.texts[0])
        self.assert_out_of_bounds(array.get, 0)
        self.assert_out_of_bounds(lambda: array[0])
        self.assert_out_of_bounds(lambda: array[-1])
        native = container(array)
        self.assertEqual((native.size, native.block_size, native.first), (0, 0, None))

    def test_the_constructor_ignores_its_arguments_and_takes_no_contents(self):
        for arguments in [(3,), ([self.element(0)],), (self.array,), (1, 2, 3)]:
            with self.subTest(arguments):
                self.assertEqual(str(self.make(*arguments)), self.texts[0])

    def test_arrays_are_independent_of_each_other(self):
        other = self.array_of(1)
        other.add(self.element(2)).setSize(1)
        self.assert_holds(self.array, [0, 1, 2])
        self.assert_holds(other, [0])

    # add, get, set, items

    def test_add_returns_the_array_itself_and_chains(self):
        array = self.make()
        self.assertIs(array.add(self.element(0)).add(self.element(1)), array)
        self.assertEqual(array.getSize(), 2)
        self.assert_holds(array, [0, 1])
        self.assert_out_of_bounds(array.get, 2)

    def test_elements_read_the_same_through_every_door(self):
        self.assert_holds(self.array, [0, 1, 2])

    def test_get_returns_a_new_element_of_its_type(self):
        self.assertIs(type(self.array.get(0)), type(self.element(0)))
        self.assertIs(type(self.array[0]), type(self.element(0)))

    def test_get_out_of_range_is_an_index_error(self):
        for index in [-1, -3, -4, 3, 4, 2**31 - 1, -(2**31)]:
            with self.subTest(index):
                self.assert_out_of_bounds(self.array.get, index)

    def test_get_of_minus_one_fails_while_a_negative_subscript_counts_from_the_end(self):
        self.assert_out_of_bounds(self.array.get, -1)
        self.assertEqual(tuple(samples.numbers(self.array[-1])), tuple(self.numbers(2)))

    def test_items_out_of_range_are_index_errors(self):
        for index in [3, 4, -4, -5, 2**31, 2**32, -(2**32), 2**32 - 3, 2**62]:
            with self.subTest(index):
                self.assert_out_of_bounds(lambda: self.array[index])
                self.assert_out_of_bounds(self.assign, self.array, index, self.element(0))
                self.assert_out_of_bounds(self.delete, self.array, index)
        self.assert_holds(self.array, [0, 1, 2])

    def test_items_beyond_every_machine_integer_are_index_errors(self):
        for index in [2**64, -(2**64)]:
            self.assert_fails(IndexError, None, lambda: self.array[index])
            self.assert_fails(IndexError, None, self.assign, self.array, index, self.element(0))
        self.assert_holds(self.array, [0, 1, 2])

    def test_a_subscript_may_be_any_object_with_an_index(self):
        class Index:
            def __index__(self):
                return -1

        self.assertEqual(tuple(samples.numbers(self.array[Index()])), tuple(self.numbers(2)))
        self.assertEqual(tuple(samples.numbers(self.array[True])), tuple(self.numbers(1)))
        self.assert_out_of_bounds(self.array.get, Index())

    def test_set_changes_one_element_and_no_other(self):
        for index, after in enumerate([[2, 1, 2], [0, 2, 2], [0, 1, 2]]):
            with self.subTest(index):
                array = self.array_of(3)
                self.assert_returns_itself(array, array.set, index, self.element(2))
                self.assert_holds(array, after)

    def test_item_assignment_changes_one_element_and_no_other(self):
        for index, after in [
            (0, [2, 1, 2]),
            (1, [0, 2, 2]),
            (-3, [2, 1, 2]),
            (-2, [0, 2, 2]),
            (-1, [0, 1, 2]),
        ]:
            with self.subTest(index):
                array = self.array_of(3)
                array[index] = self.element(2)
                self.assert_holds(array, after)

    def test_set_takes_a_tuple_of_two_as_two_arguments(self):
        self.assert_returns_itself(self.array, self.array.set, (0, self.element(1)))
        self.assert_holds(self.array, [1, 1, 2])

    def test_set_can_be_chained(self):
        self.assertIs(self.array.set(0, self.element(1)).set(2, self.element(0)), self.array)
        self.assert_holds(self.array, [1, 1, 0])

    def test_set_on_an_empty_array_is_an_index_error(self):
        array = self.make()
        self.assert_out_of_bounds(array.set, 0, self.element(0))
        self.assert_out_of_bounds(self.assign, array, 0, self.element(0))
        self.assertEqual(array.getSize(), 0)

    def test_set_out_of_range_changes_nothing(self):
        for index in [-1, 3, 2**31 - 1, -(2**31)]:
            with self.subTest(index):
                self.assert_out_of_bounds(self.array.set, index, self.element(0))
                self.assert_out_of_bounds(self.array.set, (index, self.element(0)))
        self.assert_holds(self.array, [0, 1, 2])

    def test_set_parses_before_it_tests_the_index_and_item_assignment_after(self):
        wrong = self.wrong_elements[0]()
        self.assert_fails(TypeError, None, self.array.set, 99, wrong)
        self.assert_out_of_bounds(self.assign, self.array, 99, wrong)
        self.assert_fails(TypeError, None, self.assign, self.array, 0, wrong)
        self.assert_holds(self.array, [0, 1, 2])

    def test_values_that_are_no_elements_are_refused(self):
        for make_wrong in self.wrong_elements:
            wrong = make_wrong()
            with self.subTest(wrong):
                self.assert_fails(TypeError, self.wrong_pattern, self.array.add, wrong)
                self.assert_fails(TypeError, self.wrong_pattern, self.array.set, 0, wrong)
                self.assert_fails(TypeError, self.wrong_pattern, self.assign, self.array, 0, wrong)
                self.assert_fails(TypeError, self.wrong_pattern, self.assign, self.array, -1, wrong)
        self.assert_holds(self.array, [0, 1, 2])

    def test_methods_need_their_number_of_arguments(self):
        element = self.element(0)
        for name, arguments in [
            ("get", ()),
            ("get", (0, 1)),
            ("get", ((0,),)),
            ("add", ()),
            ("add", (element, element)),
            ("add", ((element,),)),
            ("setSize", ()),
            ("setSize", (1, 2)),
            ("setSize", ((1,),)),
        ]:
            with self.subTest(name, arguments=arguments):
                self.assert_fails(TypeError, None, getattr(self.array, name), *arguments)
        for arguments, count in [
            ((), 0),
            ((0,), 1),
            ((element,), 1),
            ((0, element, element), 3),
            (((0,),), 1),
            (([0, element],), 1),
            (((0, element, 0),), 3),
        ]:
            with self.subTest("set", arguments=arguments):
                self.assert_fails(
                    TypeError,
                    "exactly 2 arguments \\({} given\\)".format(count),
                    self.array.set,
                    *arguments,
                )
        self.assert_holds(self.array, [0, 1, 2])

    def test_indexes_and_sizes_are_integers(self):
        for wrong in [None, "1", b"1", 1j, [], {}, object()]:
            with self.subTest(wrong):
                self.assert_fails(TypeError, None, self.array.get, wrong)
                self.assert_fails(TypeError, None, self.array.set, wrong, self.element(0))
                self.assert_fails(TypeError, None, self.array.setSize, wrong)
                self.assert_fails(TypeError, None, lambda: self.array[wrong])
        self.assert_fails(TypeError, None, lambda: self.array[0.0])
        self.assert_holds(self.array, [0, 1, 2])

    def test_indexes_and_sizes_are_truncated_toward_zero(self):
        self.assertEqual(tuple(samples.numbers(self.array.get(1.9))), tuple(self.numbers(1)))
        self.assertEqual(tuple(samples.numbers(self.array.get(-0.9))), tuple(self.numbers(0)))
        self.array.set(2.5, self.element(0))
        self.assert_holds(self.array, [0, 1, 0])
        self.array.setSize(2.99)
        self.assert_holds(self.array, [0, 1])

    def test_indexes_and_sizes_beyond_32_bits_are_an_overflow_that_changes_nothing(self):
        message = "Python int too large to convert to C long"
        for number in [
            2**31,
            -(2**31) - 1,
            2**32,
            2**63 - 1,
            2**63,
            -(2**63),
            2**64,
            -(10**40),
        ]:
            with self.subTest(number):
                self.assert_message(OverflowError, message, self.array.get, number)
                self.assert_message(OverflowError, message, self.array.set, number, self.element(0))
                self.assert_message(OverflowError, message, self.array.setSize, number)
        self.assert_holds(self.array, [0, 1, 2])

    def test_indexes_and_sizes_that_are_no_numbers_are_refused(self):
        for number, kind in [
            (float("nan"), ValueError),
            (float("inf"), OverflowError),
            (float("-inf"), OverflowError),
        ]:
            with self.subTest(number):
                for call in [
                    lambda: self.array.get(number),
                    lambda: self.array.set(number, self.element(0)),
                    lambda: self.array.setSize(number),
                ]:
                    self.assert_fails(kind, "cannot convert float", call)
        self.assert_fails(OverflowError, None, self.array.get, 1e10)
        self.assert_fails(OverflowError, None, self.array.setSize, -1e300)
        self.assert_holds(self.array, [0, 1, 2])

    # Size and storage

    def test_get_size_ignores_its_arguments(self):
        for arguments in [(), (1,), (None,), ((),), ("x", 2, [])]:
            with self.subTest(arguments):
                self.assertEqual(self.array.getSize(*arguments), 3)
        self.assertIs(type(self.array.getSize()), int)

    def test_set_size_returns_the_array_itself(self):
        for size in [5, 5, 2, 0, -1, 4]:
            self.assert_returns_itself(self.array, self.array.setSize, size)
            self.assertEqual(self.array.getSize(), size)

    def test_adding_one_at_a_time_makes_blocks_of_1_2_4_8(self):
        array = self.make()
        seen = []
        for number in range(16):
            array.add(self.numbered(number))
            if block_counts(array) not in seen:
                seen.append(block_counts(array))
        self.assertEqual(seen, [[1], [1, 2], [1, 2, 4], [1, 2, 4, 8], [1, 2, 4, 8, 16]])

    def test_growth_appends_one_block_of_the_whole_new_size(self):
        array = self.make().setSize(10)
        self.assertEqual(block_counts(array), [10])
        array.setSize(5)
        self.assertEqual(block_counts(array), [10])
        array.setSize(20)
        self.assertEqual(block_counts(array), [10, 20])
        self.assertEqual(block_counts(self.make().setSize(5).add(self.element(0))), [5, 6])

    def test_the_same_size_changes_nothing(self):
        self.array.setSize(3)
        self.assertEqual(block_counts(self.array), [1, 2])
        self.assert_holds(self.array, [0, 1, 2])

    def test_size_0_releases_all_storage_and_add_begins_anew(self):
        self.array.setSize(0)
        self.assertEqual(block_counts(self.array), [])
        self.assertEqual(str(self.array), self.texts[0])
        self.array.add(self.element(1))
        self.assertEqual(block_counts(self.array), [1])
        self.assert_holds(self.array, [1])

    def test_shrinking_keeps_the_blocks_that_cover_the_new_size(self):
        array = self.numbered_array(7)
        self.assertEqual(block_counts(array), [1, 2, 4])
        third = samples.numbers(array.get(2))
        array.setSize(2)
        self.assertEqual(block_counts(array), [1, 2])
        self.assertEqual(array.getSize(), 2)
        array.setSize(3)
        self.assertEqual(block_counts(array), [1, 2])
        self.assertEqual(samples.numbers(array.get(2)), third)

    def test_an_element_in_a_kept_block_reappears(self):
        self.array.setSize(2)
        self.assert_holds(self.array, [0, 1])
        self.array.setSize(3)
        self.assert_holds(self.array, [0, 1, 2])

    def test_size_1_then_size_2_shows_the_former_element_1_of_a_kept_block(self):
        array = self.make().setSize(3).set(0, self.element(0)).set(1, self.element(1))
        array.setSize(1)
        self.assert_holds(array, [0])
        array.setSize(2)
        self.assert_holds(array, [0, 1])

    def test_size_1_then_size_2_shows_a_zero_where_the_block_was_released(self):
        array = self.array_of(2).setSize(1)
        self.assertEqual(block_counts(array), [1])
        array.setSize(2)
        self.assertEqual(self.read(array), [tuple(self.numbers(0)), self.zero()])

    def test_after_size_0_the_new_elements_are_zero(self):
        self.array.setSize(0).setSize(3)
        self.assertEqual(self.read(self.array), [self.zero()] * 3)

    def test_new_elements_are_zero(self):
        array = self.make().setSize(3)
        self.assertEqual(self.read(array), [self.zero()] * 3)
        self.assertEqual(str(array), self.zero_texts[3])

    def test_elements_keep_their_values_while_the_array_grows(self):
        array = self.numbered_array(100)
        expected = [tuple(samples.numbers(self.numbered(number))) for number in range(100)]
        self.assertEqual(self.read(array), expected)
        array.setSize(1000)
        self.assertEqual(self.read(array), expected + [self.zero()] * 900)

    def test_many_elements(self):
        array = self.numbered_array(5000)
        self.assertEqual(array.getSize(), 5000)
        for index in [0, 1, 2, 3, 4095, 4096, 4999]:
            self.assertEqual(samples.numbers(array[index]), samples.numbers(self.numbered(index)))
        self.assertEqual(block_counts(array), [2**power for power in range(13)])

    def test_random_operations_follow_the_rules_of_the_container(self):
        generator = random.Random(11)
        array, chain = self.make(), Chain(self.zero())
        for step in range(400):
            number = generator.randrange(1, 1000)
            value = tuple(samples.numbers(self.numbered(number)))
            operation = generator.choice(
                ["add", "add", "add", "set", "item", "size", "shrink", "zero"]
            )
            if operation == "add":
                array.add(self.numbered(number))
                chain.add(value)
            elif operation == "size":
                size = generator.randrange(-3, 40)
                array.setSize(size)
                chain.set_size(size)
            elif operation == "shrink" and chain.size > 0:
                size = generator.randrange(chain.size)
                array.setSize(size)
                chain.set_size(size)
            elif operation == "zero" and step % 7 == 0:
                array.setSize(0)
                chain.set_size(0)
            elif operation in ("set", "item") and chain.size > 0:
                index = generator.randrange(chain.size)
                if operation == "set":
                    array.set(index, self.numbered(number))
                else:
                    array[index] = self.numbered(number)
                chain.store(index, value)
            self.assertEqual(array.getSize(), chain.size)
            self.assertEqual(block_counts(array), chain.counts())
            self.assertEqual(
                [tuple(samples.numbers(array.get(index))) for index in range(chain.size)],
                chain.elements(),
            )

    # Negative sizes

    def assert_negative(self, array, size):
        """The array has this negative size, and refuses everything that needs an element."""
        self.assertEqual(array.getSize(), size)
        self.assert_fails(SystemError, None, len, array)
        self.assert_fails(SystemError, None, lambda: array[-1])
        self.assert_fails(SystemError, None, self.assign, array, -1, self.element(0))
        self.assert_fails(SystemError, None, bool, array)
        for index in [0, 1, 2, 3, 2**31]:
            self.assert_out_of_bounds(lambda: array[index])
            self.assert_out_of_bounds(self.assign, array, index, self.element(0))
            self.assert_out_of_bounds(self.delete, array, index)
        for index in [0, 1, -1, size, -(size + 1), 2**31 - 1, -(2**31)]:
            self.assert_out_of_bounds(array.get, index)
            self.assert_out_of_bounds(array.set, index, self.element(0))
        self.assertEqual([element for element in array], [])

    def test_a_negative_size_is_accepted_and_every_index_is_then_refused(self):
        for size in [-1, -2, -7, -(2**31)]:
            with self.subTest(size):
                self.assert_negative(self.make().setSize(size), size)
                self.assert_negative(self.array_of(3).setSize(size), size)

    def test_after_a_negative_size_printing_shows_the_first_element_of_the_first_block(self):
        self.array.setSize(-1)
        self.assertEqual(str(self.array), self.texts[1])
        self.assertEqual(str(self.array.setSize(-5)), self.texts[1])

    def test_after_a_negative_size_without_storage_printing_shows_a_zero_element(self):
        self.assertEqual(str(self.make().setSize(-1)), self.zero_texts[1])
        self.assertEqual(str(self.make().setSize(-(2**31))), self.zero_texts[1])

    def test_a_negative_size_keeps_the_first_block_and_releases_the_others(self):
        array = self.numbered_array(7).setSize(-1)
        self.assertEqual(block_counts(array), [1])

    def test_add_after_size_minus_1_brings_the_size_to_0_and_stores_nothing(self):
        self.array.setSize(-1)
        self.assert_returns_itself(self.array, self.array.add, self.element(1))
        self.assertEqual(self.array.getSize(), 0)
        self.assertEqual(len(self.array), 0)
        self.assertEqual(str(self.array), self.texts[0])
        self.assertEqual(block_counts(self.array), [])
        self.assert_holds(self.array.add(self.element(2)), [2])

    def test_add_after_a_smaller_size_only_comes_nearer_to_0(self):
        self.array.setSize(-3)
        for size in [-2, -1]:
            self.array.add(self.element(1))
            self.assert_negative(self.array, size)
            self.assertEqual(str(self.array), self.texts[1])

    def test_from_a_negative_size_the_first_block_is_still_there(self):
        self.array.setSize(-1).setSize(1)
        self.assert_holds(self.array, [0])

    def test_a_negative_size_gets_more_negative_and_comes_back(self):
        array = self.make().setSize(-1).setSize(-9).setSize(2)
        self.assertEqual(self.read(array), [self.zero()] * 2)

    # What an array does not do

    def test_deleting_an_element_is_refused(self):
        for index in [0, 1, 2, -1, -3]:
            with self.subTest(index):
                self.assert_fails(TypeError, None, self.delete, self.array, index)
        self.assert_out_of_bounds(self.delete, self.array, 3)
        self.assert_out_of_bounds(self.delete, self.make(), 0)
        self.assert_holds(self.array, [0, 1, 2])

    def test_slices_are_not_supported(self):
        def delete():
            del self.array[0:1]

        self.assert_fails(TypeError, None, lambda: self.array[0:2])
        self.assert_fails(TypeError, None, lambda: self.array[:])
        self.assert_fails(TypeError, None, self.assign, self.array, slice(0, 1), [self.element(0)])
        self.assert_fails(TypeError, None, delete)
        self.assert_holds(self.array, [0, 1, 2])

    def test_concatenation_and_repetition_are_not_supported(self):
        array = self.array
        for operation in [
            lambda: array + array,
            lambda: array * 2,
            lambda: 2 * array,
            lambda: array(),
        ]:
            self.assert_fails(TypeError, None, operation)

        def extend():
            nonlocal array
            array += array

        def repeat():
            nonlocal array
            array *= 2

        self.assert_fails(TypeError, None, extend)
        self.assert_fails(TypeError, None, repeat)
        self.assert_holds(self.array, [0, 1, 2])

    def test_comparison_is_by_identity(self):
        self.assertTrue(self.array == self.array)
        self.assertFalse(self.array == self.array_of(3))

    # Iteration

    def test_iteration_sees_elements_that_are_added_under_way(self):
        seen = 0
        for _ in self.array:
            seen += 1
            if self.array.getSize() < 6:
                self.array.add(self.element(0))
        self.assertEqual(seen, 6)

    def test_iteration_ends_when_the_array_shrinks_under_way(self):
        for size in (0, 1, -1):
            with self.subTest(size):
                array = self.array_of(3)
                seen = 0
                for _ in array:
                    seen += 1
                    array.setSize(size)
                self.assertEqual(seen, 1)

    def test_reversed(self):
        self.assertEqual(
            [samples.numbers(element) for element in reversed(self.array)],
            [list(self.numbers(place)) for place in (2, 1, 0)],
        )

    # Text

    def test_print_shows_exactly_the_stated_text_without_a_newline(self):
        for count, text in enumerate(self.texts):
            with self.subTest(count):
                array = self.array_of(count)
                stream = io.StringIO()
                print(array, end="", file=stream)
                self.assertEqual(stream.getvalue(), text)
                self.assertEqual(str(array), text)
                self.assertEqual(repr(array), text)

    def test_print_of_a_long_array_is_prefix_elements_and_bracket(self):
        pieces = []
        array = self.make()
        for number in range(300):
            array.add(self.numbered(number))
            alone = str(self.make().add(self.numbered(number)))
            self.assertTrue(
                alone.startswith("[" + self.type_name + " ") and alone.endswith(" ]"), alone
            )
            pieces.append(alone[len(self.type_name) + 2 : -2])
        self.assertEqual(str(array), "[" + self.type_name + " " + ", ".join(pieces) + " ]")

    # Calling convention and type

    def test_no_method_takes_keyword_arguments(self):
        for name, keywords in [
            ("get", {"i": 0}),
            ("set", {"i": 0, "v": self.element(0)}),
            ("add", {"v": self.element(0)}),
            ("getSize", {"x": 1}),
            ("setSize", {"n": 1}),
        ]:
            with self.subTest(name):
                self.assert_fails(
                    TypeError, "keyword", lambda: getattr(self.array, name)(**keywords)
                )
        self.assert_holds(self.array, [0, 1, 2])

    def test_type_and_methods(self):
        self.assertEqual(type(self.array).__name__, self.type_name)
        self.assertEqual(
            [name for name in vars(type(self.array)) if not name.startswith("__")],
            METHODS[self.type_name],
        )

    def test_a_conversion_that_raises_leaves_the_array_as_it_was(self):
        class Raises:
            def __index__(self):
                raise KeyError("under way")

        for call in [
            lambda: self.array.get(Raises()),
            lambda: self.array.set(Raises(), self.element(0)),
            lambda: self.array.setSize(Raises()),
            lambda: self.array[Raises()],
            lambda: self.assign(self.array, Raises(), self.element(0)),
        ]:
            self.assert_fails(KeyError, "under way", call)
        self.assert_holds(self.array, [0, 1, 2])

    def test_a_conversion_that_shrinks_the_array_is_seen_by_the_index_test(self):
        array = self.array

        class Shrinks:
            def __index__(self):
                array.setSize(1)
                return 2

        self.assert_out_of_bounds(array.get, Shrinks())
        self.assert_holds(array, [0])
        self.array.setSize(0).setSize(3)
        self.assert_out_of_bounds(array.set, Shrinks(), self.element(0))
        self.assertEqual(self.read(array), [self.zero()])

    def test_a_size_whose_conversion_changes_the_array_is_set_after_the_change(self):
        array = self.array

        class Grows:
            def __index__(self):
                array.setSize(9)
                return 2

        self.assert_returns_itself(array, array.setSize, Grows())
        self.assert_holds(array, [0, 1])

    # Objects without their native part

    def test_methods_of_an_uninitialised_array_say_so_before_they_parse(self):
        element = self.element(0)
        for name, arguments in [
            ("get", (0,)),
            ("get", ()),
            ("get", ("x",)),
            ("set", (0, element)),
            ("set", ()),
            ("set", (0,)),
            ("set", ("x", None)),
            ("add", (element,)),
            ("add", ()),
            ("add", (None,)),
            ("getSize", ()),
            ("getSize", (1,)),
            ("setSize", (1,)),
            ("setSize", ()),
            ("setSize", ("x",)),
        ]:
            with self.subTest(name, arguments=arguments):
                method = getattr(self.array, name)
                self.assert_not_initialized(self.array, self.message, method, *arguments)
        self.assert_holds(self.array, [0, 1, 2])

    def test_len_of_an_uninitialised_array_says_so(self):
        self.assert_not_initialized(self.array, self.message, len, self.array)
        self.assert_not_initialized(self.array, self.message, bool, self.array)
        self.assert_not_initialized(self.array, self.message, lambda: self.array[-1])
        self.assert_not_initialized(
            self.array, self.message, self.assign, self.array, -1, self.element(0)
        )
        self.assert_holds(self.array, [0, 1, 2])


class ObjectElementTests(ArrayTests):
    """What holds for arrays of vectors, matrices and transforms: elements are copied in and out."""

    def test_an_element_that_was_read_is_independent_of_the_array(self):
        for element in [self.array.get(0), self.array[0], next(iter(self.array))]:
            self.change(element)
            self.assertNotEqual(tuple(samples.numbers(element)), tuple(self.numbers(0)))
            self.assert_holds(self.array, [0, 1, 2])
        self.assertIsNot(self.array.get(0), self.array.get(0))

    def test_an_object_changed_after_it_was_stored_does_not_change_the_array(self):
        for store in [
            lambda array, element: array.add(element),
            lambda array, element: array.set(0, element),
            lambda array, element: self.assign(array, 0, element),
        ]:
            array = self.array_of(1)
            element = self.element(1)
            store(array, element)
            self.change(element)
            self.assertEqual(self.read(array)[-1], tuple(self.numbers(1)))

    def test_an_element_may_come_from_the_array_itself(self):
        self.array.add(self.array[0]).set(1, self.array.get(2))
        self.array[2] = self.array[0]
        self.assert_holds(self.array, [0, 2, 0, 0])

    def test_the_elements_of_every_other_type_are_refused(self):
        expected = type(self.element(0)).__name__
        for name, value in samples.one_of_each().items():
            if name != expected:
                with self.subTest(name):
                    pattern = "must be {}, not {}".format(expected, name)
                    self.assert_fails(TypeError, pattern, self.array.add, value)
                    self.assert_fails(TypeError, "argument 2 " + pattern, self.array.set, 0, value)
                    self.assert_fails(TypeError, pattern, self.assign, self.array, 0, value)
        self.assert_holds(self.array, [0, 1, 2])
