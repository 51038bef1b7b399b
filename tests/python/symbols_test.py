"""What the libraries show to others and what they need of them.

The names that they export are those of abi/*.symbols, no more and no fewer, in every build; every member of the
analysis's class is among them. What libqmSSTRc needs of Python is weak, so that a C++ program links and loads it
without an interpreter.
"""
import io
import os
import re
import subprocess
import sys

import libqmSSTRc as ss
from support import TestCase, main

SOURCES = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..")


def output_of(*command):
    process = subprocess.Popen(command, stdout=subprocess.PIPE)
    text = process.communicate()[0].decode("ascii")
    if process.returncode != 0:
        raise RuntimeError("%s failed" % (command,))
    return text


def text_of(*path):
    with io.open(os.path.join(SOURCES, *path), encoding="utf-8") as file:
        return file.read()


def library_named(name):
    """The file of a library that this process has loaded."""
    with open("/proc/self/maps") as maps:
        for line in maps:
            path = line.split(None, 5)[-1].rstrip("\n")
            if os.path.basename(path).split(".so")[0] == name:
                return path
    raise RuntimeError("%s is not loaded" % name)


def exported(path):
    """The names, as C++ writes them: the variants of a constructor or destructor are one."""
    lines = output_of("nm", "-DC", "--defined-only", path).splitlines()
    return set(line.split(None, 2)[2] for line in lines)


def members_declared():
    """The members of the analysis's class, by name: those that the header declares and does not define."""
    text = re.sub("//.*", "", text_of("StaticStrength", "qmStaticStrength.h"))
    body = re.search(r"class SSTR_API qmStaticStrength .*?\{\n(.*?)\n\};", text, re.DOTALL).group(1)
    return set(re.sub(r"\s", "", name) for name in re.findall(r"(operator\W+|~?\w+)\([^{}()]*\)[\w\s]*;", body))


class Symbols(TestCase):

    def check_exported(self, name):
        wanted = set(text_of("abi", name + ".symbols").splitlines())
        if sys.version_info[0] < 3:   # an entry by the name that this Python looks for
            wanted = set(re.sub("^PyInit_", "init", symbol) for symbol in wanted)
        found = exported(library_named(name))
        if found != wanted:
            lines = (["exported, not in the record: " + symbol for symbol in sorted(found - wanted)]
                     + ["in the record, not exported: " + symbol for symbol in sorted(wanted - found)])
            self.fail("%s:\n%s\nIf this is meant: make abi-record, and say so in CHANGELOG.md."
                      % (name, "\n".join(lines)))

    def test_the_host_library_exports_what_is_recorded(self):
        self.check_exported("libqc")

    def test_the_analysis_library_exports_what_is_recorded(self):
        self.check_exported("libqmSSTRc")

    def test_every_member_of_the_analysis_is_exported_the_private_ones_too(self):
        beginning = "qmStaticStrength::"
        found = [symbol[len(beginning):] for symbol in exported(ss.__file__) if symbol.startswith(beginning)]
        names = set(symbol[:symbol.index("(")] for symbol in found)
        declared = members_declared()
        self.assertEqual(sorted(declared - names), [])
        self.assertEqual(sorted(names - declared), [])
        # one of each kind: a constructor, the destructor, an operator, static, const, private
        for name in ("qmStaticStrength", "~qmStaticStrength", "operator=", "getHandle", "getJointForces", "humanInfo"):
            self.assertTrue(name in declared, name)

    def test_other_libraries_recognise_the_classes(self):
        # casts and exceptions compare types by these
        for path, name in ((ss.__file__, "qmStaticStrength"), (library_named("libqc"), "qcObject")):
            for what in ("vtable for ", "typeinfo for ", "typeinfo name for "):
                self.assertTrue(what + name in exported(path), what + name)

    def test_nothing_of_python_is_needed_to_load_the_library(self):
        symbols = [line.split() for line in output_of("nm", "-D", "--undefined-only", ss.__file__).splitlines()]
        weak = [name for kind, name in symbols if kind == "w" and name.lstrip("_").startswith("Py")]
        strong = [name for kind, name in symbols if kind == "U" and name.lstrip("_").startswith("Py")]
        self.assertEqual(strong, [])
        self.assertTrue("PyArg_ParseTuple" in weak, weak)


if __name__ == "__main__":
    main()
