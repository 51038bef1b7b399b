"""Pointer strings, the pointer library and the typed arrays of libqmSSTRc."""
import sys

import libqmSSTRc as ss
from support import TestCase, main


def refusal(function):
    return "Type error in %s. Argument is not a valid pointer value." % function


class PointerStrings(TestCase):

    def test_null_address_keeps_its_type_in_a_cast(self):
        self.assertEqual(ss.ptrcast(0, "int *"), "_0_int_p")
        self.assertEqual(ss.ptrcast("NULL", "int *"), "_0_int_p")

    def test_address_is_written_in_lower_case_hexadecimal_without_leading_zeros(self):
        self.assertEqual(ss.ptrcast(0x1A2B3C, "qmStaticStrength *"), "_1a2b3c_qmStaticStrength_p")
        self.assertEqual(ss.ptrcast(2 ** 64 - 1, "int *"), "_ffffffffffffffff_int_p")
        self.assertEqual(ss.ptrcast("_0001_int_p", "int *"), "_1_int_p")

    def test_upper_case_digits_are_read(self):
        self.assertEqual(ss.ptrcast("_1A_int_p", "double *"), "_1a_double_p")

    def test_type_name_has_underscores_for_blanks_and_p_for_pointers_and_references(self):
        self.assertEqual(ss.ptrcast(16, "char **"), "_10_char_pp")
        self.assertEqual(ss.ptrcast(16, "unsigned\tlong &"), "_10_unsigned_long_p")
        self.assertEqual(ss.ptrcast(16, " a\nb"), "_10__a_b")

    def test_digits_end_at_the_first_other_character(self):
        self.assertEqual(ss.ptrcast("_12_fade", "x"), "_12_x")
        self.assertEqual(ss.ptrcast("_12xyz", "x"), "_12_x")
        self.assertEqual(ss.ptrcast("_", "x"), "_0_x")

    def test_text_without_the_leading_underscore_is_no_pointer(self):
        for text in ("", "1a_int_p", "NULL ", "null", " _1_int_p", "0"):
            self.check_raises(TypeError, refusal("ptrcast"), ss.ptrcast, text, "int *")

    def test_what_is_neither_text_nor_integer_is_no_pointer(self):
        for other in (None, 1.5, [], ()):
            self.check_raises(TypeError, refusal("ptrcast"), ss.ptrcast, other, "int *")

    def test_integer_that_is_no_address_is_refused(self):
        self.check_raises(TypeError, refusal("ptrcast"), ss.ptrcast, 2 ** 80, "int *")

    def test_null_is_accepted_for_every_type(self):
        self.assertEqual(ss.delete_qmStaticStrength("NULL"), None)
        self.assertEqual(ss.qmStaticStrength_getHandle("NULL"), "NULL")

    def test_typed_null_address_is_refused_where_its_type_is_wrong(self):
        self.check_raises(TypeError, "Type error in argument 1 of delete_qmStaticStrength. "
                          "Expected _qmStaticStrength_p.", ss.delete_qmStaticStrength, "_0_int_p")
        self.assertEqual(ss.delete_qmStaticStrength("_0_qmStaticStrength_p"), None)


class Equivalences(TestCase):

    def accepts(self, function, text):
        try:
            function(text)
        except TypeError:
            return False
        return True

    def test_registered_names_stand_for_each_other(self):
        self.assertTrue(self.accepts(ss.delete_qmStaticStrength, "_0_class_qmStaticStrength_p"))
        array = ss.int_array(1)
        ss.int_set(array, 0, 5)
        address = array[:-len("_int_p")]
        self.assertEqual(ss.int_get(address + "_unsigned_int_p", 0), 5)
        self.assertEqual(ss.int_get(address + "_signed_int_p", 0), 5)
        self.check_raises(TypeError, "Type error in argument 1 of double_get. Expected _double_p.",
                          ss.double_get, address + "_unsigned_int_p", 0)
        ss.int_destroy(array)

    def test_rest_after_the_name_has_to_be_the_same(self):
        for text in ("_0_class_qmStaticStrength", "_0_class_qmStaticStrength_pp", "_0_struct_qmStaticStrength_p",
                     "_0_class_qmStaticStrength_p_p", "_0"):
            self.assertFalse(self.accepts(ss.delete_qmStaticStrength, text))

    def test_unsigned_int_is_taken_for_int_only_where_registered_so(self):
        # an int may be an unsigned int; nothing says so of shorts and ints
        array = ss.int_array(1)
        address = array[:-len("_int_p")]
        self.check_raises(TypeError, "Type error in argument 1 of int_get. Expected _int_p.",
                          ss.int_get, address + "_short_p", 0)
        ss.int_destroy(array)

    def test_mapped_types_stand_for_each_other_both_ways(self):
        self.assertFalse(self.accepts(ss.delete_qmStaticStrength, "_0_myOwnAnalysis_p"))
        self.assertEqual(ss.ptrmap("qmStaticStrength", "myOwnAnalysis"), None)
        self.assertTrue(self.accepts(ss.delete_qmStaticStrength, "_0_myOwnAnalysis_p"))
        ss.ptrmap("myFloats *", "float *")
        array = ss.float_array(1)
        ss.float_set(array, 0, 0.5)
        self.assertEqual(ss.float_get(array.replace("_float_p", "_myFloats_p"), 0), 0.5)
        ss.float_destroy(array)

    def test_names_longer_than_255_characters_match_nothing(self):
        # a candidate is cut at 255 characters, so that a longer found name equals none
        long_name = "l" * 260
        ss.ptrmap("double", long_name)
        array = ss.double_array(1)
        address = array[:-len("_double_p")]
        self.check_raises(TypeError, None, ss.double_get, address + "_" + long_name + "_p", 0)
        self.assertEqual(type(ss.double_set(array, 0, 2.0)), float)
        ss.double_destroy(array)

    def test_many_types_can_be_mapped(self):
        for i in range(200):
            ss.ptrmap("short", "kind%d" % i)
        array = ss.ptrcreate("short", 3, 1)
        for i in (0, 63, 64, 127, 128, 199):
            self.assertEqual(ss.ptrvalue(array.replace("_short_p", "_kind%d_p" % i)), 3)
        ss.ptrfree(array)


class TypedArrays(TestCase):

    def test_ints_floats_and_doubles_come_back(self):
        for name, value in (("int", -2147483648), ("int", 2147483647), ("float", 0.5), ("double", 0.1)):
            array = getattr(ss, name + "_array")(3)
            self.assertEqual(array[-len(name) - 3:], "_" + name + "_p")
            self.assertEqual(getattr(ss, name + "_set")(array, 2, value), value)
            self.assertEqual(getattr(ss, name + "_get")(array, 2), value)
            self.assertEqual(getattr(ss, name + "_destroy")(array), None)

    def test_float_is_rounded_to_single_precision(self):
        array = ss.float_array(1)
        self.assertEqual(ss.float_set(array, 0, 0.1), 0.10000000149011612)
        self.assertEqual(ss.float_get(array, 0), 0.10000000149011612)
        ss.float_destroy(array)

    def test_texts_are_copied_and_replaced(self):
        array = ss.string_array(2)
        self.assertTrue(array.endswith("_char_pp"), array)
        self.assertEqual(ss.string_get(array, 0), "")
        self.assertEqual(ss.string_set(array, 0, "one"), "one")
        self.assertEqual(ss.string_set(array, 1, "two"), "two")
        self.assertEqual(ss.string_set(array, 0, "three"), "three")
        self.assertEqual(ss.string_get(array, 0), "three")
        self.assertEqual(ss.string_get(array, 1), "two")
        self.assertEqual(ss.string_set(array, 0, ""), "")
        self.assertEqual(ss.string_get(array, 0), "")
        self.assertEqual(ss.ptrvalue(array, 0), "")
        ss.string_set(array, 0, "again")
        self.assertEqual(ss.string_destroy(array), None)

    def test_null_array_is_refused(self):
        for name in ("int", "float", "double", "string"):
            null = "Received a NULL Pointer"
            value = "x" if name == "string" else 1
            self.check_raises(ValueError, null, getattr(ss, name + "_get"), "NULL", 0)
            self.check_raises(ValueError, null, getattr(ss, name + "_set"), "NULL", 0, value)
            self.check_raises(ValueError, null, getattr(ss, name + "_destroy"), "NULL")

    def test_array_of_another_type_is_refused(self):
        array = ss.int_array(1)
        for name in ("float", "double", "string"):
            expected = {"string": "_char_pp"}.get(name, "_%s_p" % name)
            self.check_raises(TypeError, "Type error in argument 1 of %s_get. Expected %s." % (name, expected),
                              getattr(ss, name + "_get"), array, 0)
            self.check_raises(TypeError, "Type error in argument 1 of %s_destroy. Expected %s." % (name, expected),
                              getattr(ss, name + "_destroy"), array)
        ss.int_destroy(array)

    def test_array_of_a_negative_size_cannot_be_made(self):
        for name in ("int", "float", "double", "string"):
            self.check_raises(MemoryError, "Out of memory.", getattr(ss, name + "_array"), -1)

    def test_array_of_no_elements_can(self):
        for name in ("int", "float", "double", "string"):
            array = getattr(ss, name + "_array")(0)
            getattr(ss, name + "_destroy")(array)


class PointerLibrary(TestCase):

    KINDS = (("int", "_int_p", 7, 4), ("double", "_double_p", 0.1, 8), ("float", "_float_p", 0.5, 4),
             ("short", "_short_p", -3, 2), ("long", "_long_p", 2147483647, 4), ("char", "_char_p", "x", 1))

    def test_created_array_is_filled_with_the_value(self):
        for kind, name, value, size in self.KINDS + (("char *", "_char_pp", "a text", 0),):
            array = ss.ptrcreate(kind, value, 3)
            self.assertEqual(array[array.index("_", 1):], name)
            for i in range(3):
                self.assertEqual(ss.ptrvalue(array, i), value)
                self.assertEqual(ss.ptrvalue(array, i, kind), value)
            self.assertEqual(ss.ptrvalue(array), value)
            ss.ptrfree(array)

    def test_created_array_without_a_value_holds_zeros_and_one_element(self):
        for kind, zero in (("int", 0), ("double", 0.0), ("float", 0.0), ("short", 0), ("long", 0), ("char", ""),
                           ("char *", "")):
            array = ss.ptrcreate(kind)
            self.assertEqual(ss.ptrvalue(array), zero)
            ss.ptrfree(array)

    def test_element_is_set_and_read_by_index(self):
        for kind, name, value, size in self.KINDS + (("char *", "_char_pp", "a text", 0),):
            array = ss.ptrcreate(kind, value, 4)
            other = {"_char_p": "y", "_char_pp": "other"}.get(name, 1)
            self.assertEqual(ss.ptrset(array, other, 2), None)
            self.assertEqual([ss.ptrvalue(array, i) for i in range(4)], [value, value, other, value])
            ss.ptrset(array, other)
            self.assertEqual(ss.ptrvalue(array), other)
            ss.ptrset(array, value, 0, kind)
            self.assertEqual(ss.ptrvalue(array), value)
            ss.ptrfree(array)

    def test_long_has_four_bytes(self):
        array = ss.ptrcreate("long", 1, 2)
        self.assertEqual(int(ss.ptradd(array, 1)[1:].split("_")[0], 16) - int(array[1:].split("_")[0], 16), 4)
        self.check_raises(OverflowError, "integer does not fit into the element", ss.ptrset, array, 2 ** 31)
        self.check_raises(OverflowError, None, ss.ptrset, array, 2 ** 80)
        self.assertEqual(ss.ptrvalue(array), 1)
        ss.ptrfree(array)

    def test_added_offset_counts_elements_and_keeps_the_type_text(self):
        for kind, name, value, size in self.KINDS:
            self.assertEqual(ss.ptradd("_100" + name, 3), "_%x%s" % (0x100 + 3 * size, name))
            self.assertEqual(ss.ptradd("_100" + name, -1), "_%x%s" % (0x100 - size, name))
        self.assertEqual(ss.ptradd("_100", 3), "_103")
        self.assertEqual(ss.ptradd("NULL", 3), "_3")
        self.assertEqual(ss.ptradd("NULL", 0), "_0")
        self.assertEqual(ss.ptradd("_100_unsigned_long_p", 1), "_104_unsigned_long_p")
        self.assertEqual(ss.ptradd("_100_signed_long_p", 1), "_104_signed_long_p")
        self.assertEqual(ss.ptradd("_100_unsigned_short_p", 1), "_102_unsigned_short_p")
        self.assertEqual(ss.ptradd("_100_signed_short_p", 1), "_102_signed_short_p")
        self.assertEqual(ss.ptradd("_100_unsigned_int_p", 1), "_104_unsigned_int_p")
        self.assertEqual(ss.ptradd("_4_int_p", -1), "_0_int_p")

    def test_pointer_of_unknown_elements_cannot_be_moved_or_freed(self):
        for text in ("_100_qcSite_p", "_100_char_ppp", "x"):
            self.check_raises(TypeError, refusal("ptradd"), ss.ptradd, text, 1)
            self.check_raises(TypeError, refusal("ptrfree"), ss.ptrfree, text)
        self.check_raises(TypeError, refusal("ptradd"), ss.ptradd, 5, 1)
        self.check_raises(TypeError, refusal("ptrfree"), ss.ptrfree, None)

    def test_value_of_what_is_no_pointer_null_or_unknown_is_refused(self):
        self.check_raises(TypeError, refusal("ptrvalue"), ss.ptrvalue, "x")
        self.check_raises(TypeError, refusal("ptrvalue"), ss.ptrvalue, 5)
        self.check_raises(TypeError, "Unable to dereference NULL pointer.", ss.ptrvalue, "NULL")
        self.check_raises(TypeError, "Unable to dereference NULL pointer.", ss.ptrvalue, "_0_int_p")
        self.check_raises(TypeError, "Unable to dereference unsupported datatype.", ss.ptrvalue, "_10_qcSite_p")
        self.check_raises(TypeError, "Unable to dereference unsupported datatype.", ss.ptrvalue, "_10_int_p", 0, "void")

    def test_setting_what_is_no_pointer_null_or_unknown_is_refused(self):
        self.check_raises(TypeError, refusal("ptrset"), ss.ptrset, "x", 1)
        self.check_raises(TypeError, "Unable to set NULL pointer.", ss.ptrset, "NULL", 1)
        self.check_raises(TypeError, "Unable to set unsupported datatype.", ss.ptrset, "_10_qcSite_p", 1)
        self.check_raises(TypeError, "Unable to set unsupported datatype.", ss.ptrset, "_10_int_p", 1, 0, "void")

    def test_value_of_another_kind_is_refused_and_changes_nothing(self):
        for kind, name, value, size in self.KINDS + (("char *", "_char_pp", "a text", 0),):
            array = ss.ptrcreate(kind, value)
            self.check_raises(TypeError, None, ss.ptrset, array, [])
            self.assertEqual(ss.ptrvalue(array), value)
            ss.ptrfree(array)
            self.check_raises(TypeError, None, ss.ptrcreate, kind, [], 3)

    def test_unknown_type_or_negative_number_cannot_be_created(self):
        self.check_raises(TypeError, "Unable to create unknown datatype.", ss.ptrcreate, "void")
        self.check_raises(TypeError, "Unable to create unknown datatype.", ss.ptrcreate, "")
        self.check_raises(MemoryError, "Out of memory in swig_create.", ss.ptrcreate, "int", 1, -1)

    def test_null_can_be_freed(self):
        self.assertEqual(ss.ptrfree("NULL"), None)

    def test_reference_counts_are_stable(self):
        value, text = 1.5, "a text of its own"
        before = sys.getrefcount(value), sys.getrefcount(text), sys.getrefcount(None)
        for i in range(100000):
            array = ss.ptrcreate("double", value, 2)
            ss.ptrset(array, value, 1)
            ss.ptrvalue(array, 1)
            ss.ptrfree(array)
            try:
                ss.ptrset(text, value)
            except TypeError:
                pass
        after = sys.getrefcount(value), sys.getrefcount(text), sys.getrefcount(None)
        for a, b in zip(before, after):
            self.assertTrue(abs(a - b) < 100, (before, after))


if __name__ == "__main__":
    main()
