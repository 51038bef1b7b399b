"""The installed package is imported from wherever it was put, the modules and the default human with it."""
import json
import os
import subprocess
import sys

PROGRAM = """
import json, libqcc, libqmSSTRc, staticstrength
with staticstrength.Scene() as scene:
    scene.add_human(staticstrength.default_figure(), "worker")
    result = scene.human.analysis.compute()
print(json.dumps({"files": [each.__file__ for each in (staticstrength, libqcc, libqmSSTRc)],
                  "figure": str(staticstrength.default_figure()), "waist": result["waist"].force.y}))
"""


def test_installed_package_runs_where_it_was_moved_to(tmp_path, worker):
    environment = {key: value for key, value in os.environ.items() if key not in ("PYTHONPATH", "DESTDIR")}
    subprocess.run(["cmake", "--install", os.environ["SSTR_BUILD_DIR"], "--prefix", str(tmp_path / "installed")],
                   check=True, capture_output=True, env=environment)
    moved = (tmp_path / "installed").rename(tmp_path / "moved")
    [folder] = [each.parent for each in moved.rglob("staticstrength") if each.is_dir()]
    assert {each.name for each in folder.iterdir()} == {
        "staticstrength", "libqcc.so", "libqmSSTRc.so", "libqcc.pyi", "libqmSSTRc.pyi"}
    assert (folder / "staticstrength" / "py.typed").exists()
    assert not list(folder.rglob("__pycache__"))

    ended = subprocess.run([sys.executable, "-c", PROGRAM], env={**environment, "PYTHONPATH": str(folder)},
                           cwd=tmp_path, capture_output=True, text=True)
    assert (ended.returncode, ended.stderr) == (0, "")
    told = json.loads(ended.stdout)
    assert all(each.startswith(str(folder)) for each in told["files"])
    assert told["figure"].startswith(str(moved))
    assert told["waist"] == worker.analysis.compute()["waist"].force.y


def test_missing_modules_are_told_with_what_to_do(tmp_path):
    from conftest import ROOT
    ended = subprocess.run([sys.executable, "-c", "import staticstrength"],
                           env={**os.environ, "PYTHONPATH": str(ROOT)}, cwd=tmp_path, capture_output=True, text=True)
    assert ended.returncode == 1
    assert "staticstrength needs the modules libqcc and libqmSSTRc" in ended.stderr
    assert "put that folder on PYTHONPATH" in ended.stderr
