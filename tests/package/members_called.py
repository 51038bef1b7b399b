"""Tells which public members of the installed analysis another module does not call.

    members_called.py HEADER LIBRARY MODULE SOURCE

A member is called when the module needs its name from the library; a field of a load with offset when its
source reads it. Prints how many are called, or which are not and exits with 1. Members of one name, of which
some are private, are told apart by how many parameters they have.
"""
import re
import subprocess
import sys

CLASS = "qmStaticStrength"


def symbols(path, which):
    """The names with their parameters that a library exports or needs."""
    lines = subprocess.run(["nm", "-DC", which, path], stdout=subprocess.PIPE, check=True, text=True).stdout
    return {line.split(" ", 1)[1] for line in (re.sub(r"^[0-9a-f]* *", "", line) for line in lines.splitlines())}


def shape(declaration):
    """A member's name and how many parameters it has."""
    name, parameters = re.match(r"([^(]*)\((.*)\)", declaration, re.DOTALL).groups()
    while "<" in parameters:
        parameters = re.sub("<[^<>]*>", "", parameters)
    return name, parameters.count(",") + 1 if parameters.strip() else 0


def shapes(text):
    return {shape(declaration) for declaration in re.findall(r"\w+\([^(){}]*\)", text)}


def body_of(what, text):
    return re.search(what + r" .*?\{\n(.*?)\n\};", text, re.DOTALL).group(1)


def main():
    header, library, module, source = sys.argv[1:]
    with open(header, encoding="utf-8") as file:
        text = re.sub("//.*", "", file.read())
    with open(source, encoding="utf-8") as file:
        code = file.read()
    public, private = body_of("class SSTR_API " + CLASS, text).split("\nprivate:\n")
    hidden = shapes(private) - shapes(public)
    wanted = {symbol for symbol in symbols(library, "--defined-only")
              if symbol.startswith(CLASS + "::") and shape(symbol[len(CLASS) + 2:]) not in hidden}
    fields = re.findall(r"(\w+);", body_of("struct loadWithOffset", text))

    missed = sorted(wanted - symbols(module, "--undefined-only"))
    missed += ["loadWithOffset::" + field for field in fields if not re.search("->" + field + r"\b", code)]
    for name in missed:
        print("not called: " + name)
    if len(wanted) < 2 or not fields:
        print("no members found in %s" % header)
        return 1
    print("%d members and %d fields, %d not called" % (len(wanted), len(fields), len(missed)))
    return 1 if missed else 0


if __name__ == "__main__":
    sys.exit(main())
