"""The documentation: its program prints what stands below it, and its tables are those of the modules."""
import contextlib
import copy
import io
import re
import warnings

import libqcc
import libqmSSTRc
import pytest
from conftest import ROOT
from staticstrength import ClosedError

TEXT = (ROOT / "docs" / "python.md").read_text(encoding="utf-8")
MODULES = {"qc": libqcc, "ss": libqmSSTRc}


@pytest.fixture
def tree(tmp_path, monkeypatch):
    """A folder with what the source tree has, in which the program's files may be left."""
    for name in ("examples", "figures"):
        (tmp_path / name).symlink_to(ROOT / name)
    monkeypatch.chdir(tmp_path)
    return tmp_path


def blocks(text):
    """(program, what it prints or None) of each block."""
    fenced = re.findall(r"^```(\w+)\n(.*?)^```$", text, re.MULTILINE | re.DOTALL)
    for (kind, body), (next_kind, next_body) in zip(fenced, fenced[1:] + [("", "")]):
        if kind == "python":
            yield body, next_body if next_kind == "text" else None


def rows(text):
    """(function, arguments, result, example, its value or None) of each row of the modules' tables."""
    row = re.compile(r"^\| `(\w+)` \| (.*?) \| (.*?) \| (.*?) \|$", re.MULTILINE)
    for name, arguments, result, example in row.findall(text):
        found = re.fullmatch(r"`(.*?)`(?: → `(.*)`)?", example)
        assert found, example
        yield name, arguments, result, found.group(1), found.group(2)


def package_and_modules():
    package, separator, modules = TEXT.partition("\n# The flat modules\n")
    assert separator
    return package, modules


def test_readme_s_program_prints_what_stands_below_it(tree):
    (program, printed), = blocks((ROOT / "README.md").read_text(encoding="utf-8"))
    output = io.StringIO()
    with contextlib.redirect_stdout(output):
        exec(compile(program, "README.md", "exec"), {"__name__": "__main__"})
    assert printed and output.getvalue() == printed


def test_tutorial_prints_what_stands_below_each_block(tree):
    names = {"__name__": "__main__"}
    programs = list(blocks(package_and_modules()[0]))
    assert len(programs) > 10 and sum(printed is not None for program, printed in programs) > 10
    for program, printed in programs:
        output = io.StringIO()
        with contextlib.redirect_stdout(output), warnings.catch_warnings():
            warnings.filterwarnings("ignore", module="matplotlib|pandas|numpy")   # of their own making
            exec(compile(program, "docs/python.md", "exec"), names)
        assert output.getvalue() == (printed or ""), program
    assert (tree / "elbow.png").read_bytes().startswith(b"\x89PNG") and (tree / "person.json").exists()
    assert {each.name for each in tree.iterdir()} == {"elbow.png", "person.json", "examples", "figures"}


def test_tables_have_every_function_with_its_arguments_and_result():
    _, modules = package_and_modules()
    host, _, analysis = modules.partition("\n## libqmSSTRc\n")
    for module, text in ((libqcc, host), (libqmSSTRc, analysis)):
        found = {name: f"({arguments}) -> {result}" for name, arguments, result, _, _ in rows(text)}
        assert found == {name: function.__doc__ for name, function in vars(module).items()
                         if callable(function) and not name.startswith("_")}
        assert len(list(rows(text))) == len(found)


def test_examples_of_the_tables_give_what_is_said(tree, capfd):
    _, modules = package_and_modules()
    names = {}
    [(beginning, _)] = blocks(modules)
    exec(beginning, names)
    for name, _, _, example, value in rows(modules):
        assert f"{name}(" in example
        if value is None:
            exec(example, names)
        else:
            assert eval(example, names) == eval(value), example
    assert libqcc.qcMessages_take() == []
    libqmSSTRc.delete_qmStaticStrength(names["analysis"])
    libqcc.qcScene_close(names["scene"])
    assert {each.name for each in tree.iterdir()} == {"other.json", "examples", "figures"}


def test_constants_are_told():
    for name, value in vars(libqmSSTRc).items():
        if isinstance(value, int):
            assert f"`{name}` {value}" in TEXT, name
    assert f"`STD_G` ({libqmSSTRc.STD_G})" in TEXT


def test_exceptions_of_the_unguarded_are_as_said():
    with pytest.raises(ValueError) as caught:
        libqcc.qcSite_getName("NULL")
    assert str(caught.value) in TEXT
    with pytest.raises(TypeError) as caught:
        libqmSSTRc.qmStaticStrength_getSiteLoad("NULL", "_1000_qcJoint_p", "NULL")
    assert str(caught.value) in TEXT


# 1e39 is beyond single precision, 10 ** 400 beyond double precision.
def test_numbers_too_large_are_answered_as_said(man):
    vector, floats = libqcc.new_qVector(0, 0, 0), libqmSSTRc.float_array(1)
    assert libqmSSTRc.float_set(floats, 0, 1e39) == float("inf")
    for kind, use in ((ValueError, lambda: libqcc.qVector_set(vector, 1e39, 0, 0)),
                      (ValueError, lambda: libqcc.qcObject_setProperty(man.pointer, "x", 1e39)),
                      (ValueError, lambda: libqcc.qcObject_setProperty(man.pointer, "x", 10 ** 400)),
                      (OverflowError, lambda: libqcc.qVector_set(vector, 10 ** 400, 0, 0)),
                      (OverflowError, lambda: libqmSSTRc.float_set(floats, 0, 10 ** 400)),
                      (TypeError, lambda: libqcc.qcObject_setProperty(man.pointer, b"x", 1.0)),
                      (ValueError, lambda: libqcc.qcObject_setProperty(man.pointer, "x\0", 1.0))):
        with pytest.raises(kind):
            use()
    libqmSSTRc.float_destroy(floats)
    libqcc.delete_qVector(vector)


# What counts from the front has no last one: -1 is the first, or none.
def test_entry_before_the_first_is_as_said(man):
    analysis = man.analysis
    analysis.loads["left_hand.left_palmcenter"] = 0, 0, 1
    analysis.loads["t8.distal"] = 0, 0, 1
    analysis.torques["waist"] = 0, 0, 1
    analysis.offset_loads.append("t8.distal", (0, 0, 1), (0, 0, 1))
    for what in ("LoadSite", "DefinedTorqueJoint"):
        nth = getattr(libqmSSTRc, f"qmStaticStrength_getNth{what}")
        assert nth(analysis.pointer, -1) == nth(analysis.pointer, -5) == nth(analysis.pointer, 0) != "NULL"
    assert libqmSSTRc.qmStaticStrength_getNthLoadWithOffset(analysis.pointer, -1) == "NULL"


# The analysis made by the flat module is the package's once it is asked for.
def test_analysis_of_the_flat_module_is_taken_over(man):
    made = libqmSSTRc.new_qmStaticStrength(man.pointer)
    analysis = man.analysis
    assert analysis.pointer == made
    analysis.delete()
    assert man.analysis.compute()["waist"].force.y < 0


def test_names_and_shallow_copies_are_as_said(man):
    analysis = man.analysis
    loads = copy.copy(analysis.loads)
    kept = dict(loads)
    analysis.loads["t8.distal"] = 0, 0, 1
    assert loads == analysis.loads and list(loads) == ["t8.distal"] and kept == {}
    for mapping in (man.joints, loads):
        with pytest.raises(TypeError, match="neither be copied nor pickled"):
            copy.deepcopy(mapping)
    man.scene.close()
    assert "waist" in man.joints and "waste" not in man.joints
    assert repr(man.joints).endswith(", ".join(man.joints) + ">")
    assert len(man.joints) == len(list(man.joints)) and repr(man) == "<Human man>"
    with pytest.raises(ClosedError):
        len(loads)


def test_links_lead_to_files():
    for link in re.findall(r"\]\((\.\./[^)]*)\)", TEXT):
        assert (ROOT / "docs" / link).exists(), link
