"""What libqmSSTRc needs of Python is weak, so that a C++ program links and loads it without an interpreter."""
import subprocess

import libqmSSTRc as ss
from support import TestCase, main


class Symbols(TestCase):

    def test_nothing_of_python_is_needed_to_load_the_library(self):
        process = subprocess.Popen(["nm", "-D", "--undefined-only", ss.__file__], stdout=subprocess.PIPE)
        lines = process.communicate()[0].decode("ascii").splitlines()
        self.assertEqual(process.returncode, 0)
        symbols = [line.split() for line in lines]
        weak = [name for kind, name in symbols if kind == "w" and name.lstrip("_").startswith("Py")]
        strong = [name for kind, name in symbols if kind == "U" and name.lstrip("_").startswith("Py")]
        self.assertEqual(strong, [])
        self.assertTrue("PyArg_ParseTuple" in weak, weak)


if __name__ == "__main__":
    main()
