"""The example scripts run and tell the truth, with and without what is optional."""
import re
import subprocess
import sys

import pytest
from conftest import ROOT

KGF_CM = 0.0980665   # N·m


def run(name, *arguments, folder, without=None):
    script = ROOT / "examples" / name
    program = [sys.executable, "-W", "error::staticstrength.StaticStrengthWarning", str(script), *arguments]
    if without:
        hidden = f"import runpy, sys; sys.modules[{without!r}] = None; sys.argv[1:] = {list(arguments)!r}; "
        program = [sys.executable, "-c", f"{hidden}runpy.run_path({str(script)!r}, run_name='__main__')"]
    ended = subprocess.run(program, cwd=folder, capture_output=True, text=True)
    said = [line for line in ended.stderr.splitlines() if "building the font cache" not in line]   # once a machine
    assert (ended.returncode, said) == (0, [])
    return ended.stdout.splitlines()


# The moments with the whole box are those of the README's table.
def test_lift_compares_two_boxes(tmp_path):
    lines = run("lift.py", folder=tmp_path)
    assert lines[0] == "worker lifts a box, standing on two-feet: 54 % on the right foot"
    assert "right_hand.right_palmcenter\tWeight: 2500.0 gr" in lines
    table = [line.split() for line in lines[lines.index("") + 2:]]
    assert [(joint, whole) for joint, whole, _ in table] == [
        ("waist", "146.0"), ("l4_l5", "129.9"), ("l3_l4", "114.5"), ("l2_l3", "101.4"), ("l1_l2", "89.8")]
    assert all(float(half) < float(whole) for _, whole, half in table)


# What the box of 10 kgf adds to the moment is its weight times its distance. Distances are printed to 0.1 cm, moments
# to 0.01 N·m: half a digit of the distance, 0.05 cm · 10 kgf · 0.0980665, and of two moments.
@pytest.mark.parametrize("without", [None, "matplotlib"])
def test_sweep_shows_the_box_s_share_of_the_moment(tmp_path, without):
    lines = run("sweep_box_distance.py", "here.png", folder=tmp_path, without=without)
    rows = [[float(number) for number in line.split()] for line in lines if re.match(r" +-?\d", line)]
    assert len(rows) == 18
    for distance, with_box, alone in rows:
        assert with_box - alone == pytest.approx(10 * distance * KGF_CM, abs=0.05 * 10 * KGF_CM + 0.01)
    assert [row[0] for row in rows] == sorted(row[0] for row in rows) and rows[-1][0] > 55
    if without:
        assert lines[-1] == "matplotlib is not installed: nothing is drawn" and not list(tmp_path.iterdir())
    else:
        assert lines[-1] == "drawn into here.png"
        assert (tmp_path / "here.png").read_bytes().startswith(b"\x89PNG")
