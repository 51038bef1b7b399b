"""Types: the package, the examples and the modules' declarations hold together, and the declarations are complete."""
import ast
import inspect
import os
import subprocess
import sys

import libqcc
import libqmSSTRc
import pytest
import staticstrength
from conftest import ROOT

STUBS = {libqcc: ROOT / "host" / "python" / "libqcc.pyi", libqmSSTRc: ROOT / "python" / "libqmSSTRc.pyi"}


def mypy(tmp_path, *files):
    path = os.pathsep.join(str(folder) for folder in (ROOT, ROOT / "host" / "python", ROOT / "python"))
    return subprocess.run([sys.executable, "-m", "mypy", "--strict", "--python-version", "3.9", "--cache-dir",
                           str(tmp_path / "cache"), *map(str, files)], env={**os.environ, "MYPYPATH": path},
                          cwd=tmp_path, capture_output=True, text=True)


def test_package_passes_the_strict_checks(tmp_path):
    checked = mypy(tmp_path, ROOT / "staticstrength")
    assert checked.returncode == 0, checked.stdout + checked.stderr


def test_use_of_the_package_is_checked(tmp_path):
    (tmp_path / "use.py").write_text("""
from staticstrength import Force, Scene, Strategy, Vector, Weight
with Scene.open("x.json") as scene:
    analysis = scene.human.analysis
    analysis.strategy = "sitting"
    analysis.strategy = Strategy.SITTING
    analysis.gravity = 0, -981, 0
    analysis.loads["a.b"] = Weight(1)
    analysis.loads["a.b"] = 1, 2, 3
    analysis.offset_loads.append("a.b", (0, 0, 1), Force(1, 2, 3))
    analysis.torques["waist"] = (1, 2, 3)
    scene.human.joints["waist"].degrees = 1, 2
    moment: Vector = analysis.compute()["waist"].moment
    y: float = analysis.gravity.y
    first: float = analysis.simulate_array([[1]])[0]["waist"].force.x
""")
    good = mypy(tmp_path, "use.py")
    assert good.returncode == 0, good.stdout + good.stderr
    (tmp_path / "misuse.py").write_text("""
from staticstrength import Scene
scene = Scene()
scene.human.analysis.strategy = None
scene.human.analysis.gravity = 9.81
scene.human.analysis.loads["a.b"] = 5000
scene.human.joints["waist"].degrees = "ten"
x: int = scene.human.analysis.compute()["waist"].force.x
""")
    bad = mypy(tmp_path, "misuse.py")
    lines = [int(line.split(":")[1]) for line in bad.stdout.splitlines() if ": error:" in line]
    assert lines == [4, 5, 6, 7, 8], bad.stdout


# The docstring of a flat function is "(arguments) -> result".
@pytest.mark.parametrize("module", list(STUBS), ids=lambda module: module.__name__)
def test_declarations_of_a_flat_module_are_its_functions_and_constants(module):
    declared = ast.parse(STUBS[module].read_text()).body
    functions = {each.name: each for each in declared if isinstance(each, ast.FunctionDef)}
    constants = {each.target.id for each in declared if isinstance(each, ast.AnnAssign)}
    public = {name: value for name, value in vars(module).items() if not name.startswith("_")}
    assert set(functions) | constants == set(public)
    for name, function in functions.items():
        told = public[name].__doc__[1:].partition(") -> ")[0]
        assert len(function.args.posonlyargs) == len([each for each in told.split(", ") if each]), name
        assert not function.args.args and function.returns is not None


def test_everything_public_of_the_package_is_documented_and_typed():
    assert (ROOT / "staticstrength" / "py.typed").exists()
    for name in staticstrength.__all__:
        thing = getattr(staticstrength, name)
        if not (inspect.isclass(thing) or inspect.isfunction(thing)):
            continue
        assert inspect.getdoc(thing), name
        for member, value in vars(thing).items() if inspect.isclass(thing) else ():
            if not member.startswith("_") and (callable(value) or inspect.isdatadescriptor(value)):
                assert inspect.getdoc(value), f"{name}.{member}"
