"""What the typed arrays and the pointer library take, they give back: the process does not grow."""
import resource

import libqmSSTRc as ss
from support import TestCase, main

TEXT = "x" * 10000


def texts():
    array = ss.string_array(2)
    ss.string_set(array, 0, TEXT)
    ss.string_set(array, 0, TEXT)
    ss.string_set(array, 1, TEXT)
    ss.string_destroy(array)


def numbers():
    for kind in ("int", "float", "double"):
        getattr(ss, kind + "_destroy")(getattr(ss, kind + "_array")(3000))


def created_texts():
    array = ss.ptrcreate("char *", TEXT, 2)
    ss.ptrset(array, TEXT, 1)
    ss.ptrfree(array)


def created_characters():
    ss.ptrfree(ss.ptrcreate("char", "x", 9000))


def untyped():
    ss.ptrfree("_" + ss.ptrcreate("char", "x", 9000).split("_")[1])


def refused():
    try:
        ss.ptrcreate("int", [], 5000)
    except TypeError:
        pass


def kilobytes():
    return resource.getrusage(resource.RUSAGE_SELF).ru_maxrss


class Memory(TestCase):

    def test_nothing_stays_behind(self):
        # 2000 rounds of some 10 kB each would leave 20 MB
        for work in (texts, numbers, created_texts, created_characters, untyped, refused):
            for i in range(200):
                work()
            before = kilobytes()
            for i in range(2000):
                work()
            self.assertTrue(kilobytes() - before < 4000, (work.__name__, kilobytes() - before))


if __name__ == "__main__":
    main()
