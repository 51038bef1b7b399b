"""Scenes: opened, made, filled, saved, closed; their humans by name."""
import errno
import json
import os

import pytest
from conftest import PALM, ROOT
from small_figure import small_body
from staticstrength import (ClosedError, Scene, StaticStrengthError, StaticStrengthWarning, Strategy, UnknownNameError,
                            Vector, Weight, default_figure)


def test_scene_opens_from_text_bytes_and_path():
    path = ROOT / "examples" / "lift_box.json"
    for each in (path, str(path), os.fsencode(path)):
        with Scene.open(each) as scene:
            assert scene.human.name == "worker"


def test_scene_that_cannot_be_opened_raises_the_host_s_text(tmp_path):
    missing = tmp_path / "missing.json"
    with pytest.raises(StaticStrengthError) as caught:
        Scene.open(missing)
    assert str(caught.value) == f"{missing}: cannot be read: {os.strerror(errno.ENOENT)}."


def test_fault_in_a_scene_s_file_is_told_with_its_place(tmp_path):
    broken = json.loads((ROOT / "examples" / "lift_box.json").read_text())
    broken["humans"][0]["posture_degrees"]["waist"] = "ninety"
    broken["humans"][0]["figure"] = str(default_figure())
    path = tmp_path / "broken.json"
    path.write_text(json.dumps(broken))
    with pytest.raises(StaticStrengthError, match="/humans/0/posture_degrees/waist: .*ninety"):
        Scene.open(path)


def test_new_scene_is_empty(scene):
    assert list(scene.humans) == []
    assert scene.path is None
    assert repr(scene) == "<Scene: no humans>"
    with pytest.raises(StaticStrengthError, match="^the scene has no human.$"):
        scene.human


def test_human_is_added_from_a_file_and_found_by_name(scene):
    worker = scene.add_human(default_figure(), "worker")
    other = scene.add_human(os.fspath(default_figure()))
    assert list(scene.humans) == ["worker", "human"]
    assert scene.humans["worker"] is worker and scene.humans["human"] is other
    assert worker.figure.name == "worker"
    with pytest.raises(StaticStrengthError, match="has 2 humans; choose one of scene.humans: worker, human"):
        scene.human


def test_wrong_name_of_a_human_is_answered_with_the_nearest(scene):
    scene.add_human(default_figure(), "worker")
    with pytest.raises(UnknownNameError) as caught:
        scene.humans["Worke"]
    assert str(caught.value) == 'the scene has no human "Worke". Did you mean worker?'
    assert caught.value.suggestions == ("worker",) and caught.value.name == "Worke"
    assert isinstance(caught.value, KeyError) and isinstance(caught.value, StaticStrengthError)


def test_posed_human_is_added_from_text_or_content(scene):
    assert scene.add_posed(small_body("one").text()).name == "one"
    assert scene.add_posed(small_body("two").document).name == "two"
    assert list(scene.humans) == ["one", "two"]


def test_human_that_cannot_be_added_raises_and_leaves_the_scene_as_it_was(scene, tmp_path):
    scene.add_posed(small_body("man").document)
    with pytest.raises(StaticStrengthError, match='has a human named "man" already'):
        scene.add_posed(small_body("man").document)
    with pytest.raises(StaticStrengthError, match="missing.urdf: cannot be read"):
        scene.add_human(tmp_path / "missing.urdf", "worker")
    with pytest.raises(StaticStrengthError):
        scene.add_posed("{")
    assert list(scene.humans) == ["man"]


def test_saved_scene_opens_with_all_that_it_was_told(scene, tmp_path):
    worker = scene.add_human(default_figure(), "worker")
    worker.joints["left_knee"].degrees = 30
    worker.stature, worker.mass = 160, 60000
    worker.figure.stand_on_floor()
    worker.analysis.loads[PALM] = Weight(5000)
    worker.analysis.offset_loads.append(PALM, (0, -10, 0), (0, -1, 0))
    worker.analysis.torques["waist"] = (1, 2, 3)
    worker.analysis.strategy = Strategy.SITTING
    scene.gravity = (0, -500, 0)
    result = worker.analysis.compute()
    path = tmp_path / "scene.json"
    scene.save(path)
    assert scene.path == path
    with Scene.open(path) as again:
        other = again.human
        assert other.analysis.gravity == Vector(0, -500, 0)
        assert other.joints["left_knee"].degrees == (30,)
        assert (other.stature, other.mass, other.figure.is_on_floor) == (160, worker.mass, True)
        assert dict(other.analysis.loads) == dict(worker.analysis.loads)
        assert list(other.analysis.offset_loads) == list(worker.analysis.offset_loads)
        assert dict(other.analysis.torques) == {"waist": Vector(1, 2, 3)}
        assert other.analysis.compute() == result
        again.save()   # where it was opened


def test_hands_and_knees_is_saved_with_the_scene(scene, tmp_path):
    worker = scene.add_human(default_figure(), "worker")
    worker.analysis.strategy = Strategy.HANDS_AND_KNEES
    scene.save(tmp_path / "scene.json")
    with Scene.open(tmp_path / "scene.json") as again:
        assert again.human.analysis.strategy == Strategy.HANDS_AND_KNEES
        again.human.analysis.strategy = Strategy.SITTING
        again.save()
    with Scene.open(tmp_path / "scene.json") as again:
        assert again.human.analysis.strategy == Strategy.SITTING


def test_scene_without_a_file_is_saved_with_a_path_only(scene, tmp_path):
    with pytest.raises(ValueError, match="no file yet"):
        scene.save()
    scene.add_human(default_figure())
    scene.save(tmp_path / "scene.json")
    scene.save()
    with pytest.raises(StaticStrengthError, match="no folder"):
        scene.save(tmp_path / "no folder" / "scene.json")
    assert scene.path == tmp_path / "scene.json"


def test_weight_that_zero_gravity_would_lose_is_not_saved(worker, tmp_path):
    scene = worker.scene
    worker.analysis.loads[PALM] = Weight(5000)
    scene.gravity = (0, 0, 0)
    with pytest.raises(StaticStrengthError, match=f"the weight at {PALM} would not be found again"):
        scene.save(tmp_path / "scene.json")
    scene.gravity = (0, -980.665, 0)
    scene.save(tmp_path / "scene.json")


# 5000 g pull with 0.001 · 5000 · 0.001 / 980.665 = 5.1e-6 kgf under 0.001 cm/s², with ten times that under 0.01.
def test_weight_that_small_gravity_would_lose_is_not_saved(worker, tmp_path):
    scene, path = worker.scene, tmp_path / "scene.json"
    worker.analysis.loads[PALM] = Weight(5000)
    scene.gravity = (0, -0.001, 0)
    with pytest.raises(StaticStrengthError, match=f"under gravity this small the weight at {PALM} would not be found"):
        scene.save(path)
    assert not path.exists()
    scene.gravity = (0, -0.01, 0)
    scene.save(path)
    with Scene.open(path) as again:
        assert dict(again.human.analysis.loads) == {PALM: Weight(5000)}


def test_weight_that_small_gravity_of_its_analysis_would_lose_is_not_saved(worker, tmp_path):
    worker.analysis.loads[PALM] = Weight(5000)
    worker.analysis.gravity = (0, -0.001, 0)
    with pytest.raises(StaticStrengthError, match=f"the weight at {PALM} would not be found again"):
        worker.scene.save(tmp_path / "scene.json")


def test_gravity_of_an_analysis_that_is_not_saved_is_warned_of(worker, tmp_path):
    worker.analysis.gravity = (0, -162, 0)
    with pytest.warns(StaticStrengthWarning, match="the gravity of worker's analysis is not saved"):
        worker.scene.save(tmp_path / "scene.json")


def test_gravity_of_the_scene_is_that_of_its_analyses(worker, man):
    worker.analysis
    worker.scene.gravity = (0, -162, 0)
    assert worker.analysis.gravity == man.analysis.gravity == Vector(0, -162, 0)
    assert worker.scene.gravity == Vector(0, -162, 0)
    for wrong in ((0, 1), "down", (0, 0, float("nan")), 5):
        with pytest.raises((TypeError, ValueError), match="gravity, cm/s²: expected"):
            worker.scene.gravity = wrong


# As of the objects in a scene: a mistyped name is no new attribute.
def test_scene_and_analysis_have_no_other_attributes(man):
    for each in (man, man.joints["waist"], man.scene, man.analysis):
        for name in ("Gravity", "strateg"):
            with pytest.raises(AttributeError, match=f"^'{type(each).__name__}' object has no attribute '{name}'"):
                setattr(each, name, "sitting")


def test_several_scenes_are_independent(scene, tmp_path):
    scene.add_human(default_figure(), "worker")
    with Scene() as other:
        other.add_human(default_figure(), "worker")
        other.human.joints["left_knee"].degrees = 90
        other.human.analysis.loads[PALM] = Weight(1000)
        assert scene.human.joints["left_knee"].degrees == (0,)
        assert len(scene.human.analysis.loads) == 0
    with pytest.raises(ClosedError):
        other.human
    assert scene.human.analysis.compute()["waist"].force.y < 0
