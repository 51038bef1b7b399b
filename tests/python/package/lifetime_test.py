"""Lifetime: what is closed or deleted is refused, what is in use stays open, and nothing dangles."""
import copy
import gc
import pickle
import subprocess
import sys
import textwrap
import warnings

import libqcc
import libqmSSTRc
import pytest
from conftest import PALM, ROOT
from small_figure import small_body
from staticstrength import ClosedError, Scene, Strategy, Weight, default_figure

# All that asks the host for something, by the object that is asked.
SCENE = {
    "humans": lambda scene: scene.humans, "human": lambda scene: scene.human, "gravity": lambda scene: scene.gravity,
    "set gravity": lambda scene: setattr(scene, "gravity", (0, 0, 0)),
    "add_human": lambda scene: scene.add_human(default_figure()),
    "add_posed": lambda scene: scene.add_posed(small_body("late").document),
    "save": lambda scene: scene.save("never.json"), "pointer": lambda scene: scene.pointer,
    "enter": lambda scene: scene.__enter__(),
}
HUMAN = {
    "pointer": lambda human: human.pointer, "mass": lambda human: human.mass, "sex": lambda human: human.sex,
    "set sex": lambda human: setattr(human, "sex", "male"), "stature": lambda human: human.stature,
    "set stature": lambda human: setattr(human, "stature", 170), "set mass": lambda human: setattr(human, "mass", 7e4),
    "posture": lambda human: human.posture, "set posture": lambda human: setattr(human, "posture", {"waist": 1}),
    "foot": lambda human: human.foot("left"), "hand": lambda human: human.hand("left"),
    "knee": lambda human: human.knee("left"), "ankle": lambda human: human.ankle("left"),
    "hip": lambda human: human.hip("left"), "pelvis": lambda human: human.pelvis, "waist": lambda human: human.waist,
    "analysis": lambda human: human.analysis.compute(), "property": lambda human: human.get_property("x"),
    "set property": lambda human: human.set_property("x", 1.0), "remove": lambda human: human.remove_property("x"),
}
FIGURE = {
    "pointer": lambda figure: figure.pointer, "mass": lambda figure: figure.mass, "root": lambda figure: figure.root,
    "set root": lambda figure: setattr(figure, "root", ((0, 0, 0), (0, 0, 0))),
    "floor": lambda figure: figure.stand_on_floor(), "is_on_floor": lambda figure: figure.is_on_floor,
    "is_posed": lambda figure: figure.is_posed, "center": lambda figure: figure.center_of_mass,
    "reference": lambda figure: figure.reference_site, "angles": lambda figure: figure.angles,
    "posed": lambda figure: figure.posed(),
}
SEGMENT = {
    "mass": lambda segment: segment.mass, "set mass": lambda segment: setattr(segment, "mass", 1),
    "center": lambda segment: segment.center_of_mass, "transform": lambda segment: segment.transform,
    "position": lambda segment: segment.position, "sites": lambda segment: segment.sites,
    "attachment": lambda segment: segment.attachment_site,
}
SITE = {
    "segment": lambda site: site.segment, "joints": lambda site: site.joints, "transform": lambda site: site.transform,
    "second": lambda site: site.second_transform, "position": lambda site: site.position,
}
JOINT = {
    "sites": lambda joint: joint.sites, "inboard": lambda joint: joint.inboard_site,
    "position": lambda joint: joint.position, "names": lambda joint: joint.angle_names,
    "radians": lambda joint: joint.radians, "set radians": lambda joint: setattr(joint, "radians", 0),
    "degrees": lambda joint: joint.degrees, "set degrees": lambda joint: setattr(joint, "degrees", 0),
    "limits": lambda joint: joint.limits,
}
ANALYSIS = {
    "pointer": lambda a: a.pointer, "compute": lambda a: a.compute(), "stored": lambda a: a.stored_result(),
    "strategy": lambda a: a.strategy, "set strategy": lambda a: setattr(a, "strategy", Strategy.SITTING),
    "gravity": lambda a: a.gravity, "set gravity": lambda a: setattr(a, "gravity", (0, -1, 0)),
    "clear": lambda a: a.clear(), "reset": lambda a: a.reset(), "report": lambda a: a.report(),
    "simulate": lambda a: a.simulate(1), "array": lambda a: a.simulate_array([[0]], angles=["left_knee"]),
    "temporary": lambda a: a.temporary().__enter__(), "activate": lambda a: a.activate(),
    "deactivate": lambda a: a.deactivate(), "active": lambda a: a.is_active,
    "loads": lambda a: a.loads[PALM], "set load": lambda a: a.loads.__setitem__(PALM, Weight(1)),
    "del load": lambda a: a.loads.__delitem__(PALM), "list loads": lambda a: list(a.loads),
    "count loads": lambda a: len(a.loads), "in loads": lambda a: PALM in a.loads,
    "offset": lambda a: a.offset_loads[0], "add offset": lambda a: a.offset_loads.append(PALM, (0, 0, 0), Weight(1)),
    "list offset": lambda a: list(a.offset_loads), "count offset": lambda a: len(a.offset_loads),
    "clear offset": lambda a: a.offset_loads.clear(), "pop offset": lambda a: a.offset_loads.pop(),
    "torque": lambda a: a.torques["waist"], "set torque": lambda a: a.torques.__setitem__("waist", (1, 2, 3)),
    "del torque": lambda a: a.torques.__delitem__("waist"), "list torques": lambda a: list(a.torques),
    "in torques": lambda a: "waist" in a.torques, "count torques": lambda a: len(a.torques),
}
PARTS = (
    (SCENE, lambda man: man.scene), (HUMAN, lambda man: man), (FIGURE, lambda man: man.figure),
    (SEGMENT, lambda man: man.segments["l5"]), (SITE, lambda man: man.sites[PALM]),
    (JOINT, lambda man: man.joints["waist"]), (ANALYSIS, lambda man: man.analysis),
)
USES = [pytest.param(part, use, id=f"{i}-{name}") for i, (uses, part) in enumerate(PARTS) for name, use in uses.items()]


@pytest.mark.parametrize("part, use", USES)
def test_every_use_after_the_scene_was_closed_is_refused(man, part, use):
    man.analysis.loads[PALM] = Weight(1000)
    held = part(man)
    man.scene.close()
    with pytest.raises(ClosedError, match="this scene is closed"):
        use(held)


@pytest.mark.parametrize("use", [pytest.param(use, id=name) for name, use in ANALYSIS.items()])
def test_every_use_of_a_deleted_analysis_is_refused(man, use):
    analysis = man.analysis
    analysis.loads[PALM] = Weight(1000)
    analysis.delete()
    analysis.delete()
    assert analysis.is_deleted and repr(analysis) == "<Analysis of man, deleted>"
    with pytest.raises(ClosedError, match="this analysis of man was deleted; human.analysis makes a new one"):
        use(analysis)
    assert man.analysis is not analysis and man.analysis.loads[PALM] == Weight(1000)


def test_names_values_and_texts_stay_after_the_scene_was_closed(man):
    joint, analysis = man.joints["waist"], man.analysis
    load = analysis.offset_loads.append(PALM, (0, 0, 1), Weight(1))
    scene = man.scene
    scene.close()
    scene.close()
    assert scene.is_closed and repr(scene) == "<Scene, closed>" and analysis.is_deleted
    assert (joint.name, joint.key, repr(joint), man.name, repr(man)) == ("waist", "waist", "<Joint man.waist>", "man",
                                                                       "<Human man>")
    assert load.load == Weight(1) and list(man.joints)[0] == "waist" and man.joints["waist"] is joint
    analysis.delete()


def bound():
    return len(libqcc.qcSim_getBound())


# A closed scene's analyses are gone from the host: the callback that one had bound is unbound.
def test_closing_a_scene_deletes_its_analyses(man, capfd):
    man.analysis.activate()
    assert bound() == 1
    man.scene.close()
    assert bound() == 0


# The host refuses a scene that was closed, and its pointer string told by the package is the host's.
def test_scene_is_closed_when_nothing_uses_it_any_more(capfd):
    scene = Scene()
    man = scene.add_posed(small_body("man").document)
    man.analysis.activate()
    pointer = scene.pointer
    joint = man.joints["waist"]
    del scene, man
    gc.collect()
    assert joint.degrees[0] > 0 and bound() == 1   # a joint keeps its scene
    assert libqcc.qcScene_getHumans(pointer) != []
    del joint
    gc.collect()
    assert bound() == 0
    with pytest.raises(ValueError, match="this scene is not open"):
        libqcc.qcScene_getHumans(pointer)


def test_scene_is_closed_at_the_end_of_a_block_after_an_exception_too():
    with pytest.raises(ZeroDivisionError):
        with Scene() as scene:
            1 / 0
    assert scene.is_closed


def test_what_lives_in_a_scene_is_not_copied_or_pickled(man):
    for each in (man.scene, man, man.figure, man.segments["l5"], man.sites[PALM], man.joints["waist"], man.analysis):
        for use in (copy.copy, copy.deepcopy, pickle.dumps):
            with pytest.raises(TypeError, match="neither be copied nor pickled"):
                use(each)


class Closing:
    """A number, or a path, that closes a scene when it is asked what it is."""

    def __init__(self, scene):
        self._close = scene.close

    def __float__(self):
        self._close()
        return 1.0

    def __fspath__(self):
        self._close()
        return str(default_figure())


GIVEN = {
    "mass": lambda man, given: setattr(man, "mass", given),
    "stature": lambda man, given: setattr(man, "stature", given),
    "root": lambda man, given: setattr(man.figure, "root", ((0, 90, 0), (0, given, 0))),
    "segment": lambda man, given: setattr(man.segments["l5"], "mass", given),
    "degrees": lambda man, given: setattr(man.joints["left_knee"], "degrees", [given]),
    "radians": lambda man, given: setattr(man.joints["left_knee"], "radians", given),
    "posture": lambda man, given: setattr(man, "posture", {"waist": 1, "left_knee": given}),
    "scene's gravity": lambda man, given: setattr(man.scene, "gravity", (0, given, 0)),
    "gravity": lambda man, given: setattr(man.analysis, "gravity", (0, given, 0)),
    "load": lambda man, given: man.analysis.loads.__setitem__(PALM, (0, given, 0)),
    "weight": lambda man, given: man.analysis.loads.__setitem__(PALM, Weight(given)),
    "offset": lambda man, given: man.analysis.offset_loads.append(PALM, (0, given, 0), Weight(1)),
    "torque": lambda man, given: man.analysis.torques.__setitem__("waist", (0, given, 0)),
    "rows": lambda man, given: man.analysis.simulate_array([[given]], angles=["left_knee"]),
    "save": lambda man, given: man.scene.save(given), "add_human": lambda man, given: man.scene.add_human(given),
}


@pytest.mark.parametrize("use", [pytest.param(use, id=name) for name, use in GIVEN.items()])
def test_what_is_given_may_close_the_scene(worker, use):
    worker.analysis
    with pytest.raises(ClosedError, match="this scene is closed"):
        use(worker, Closing(worker.scene))
    assert worker.scene.is_closed


# What a use reports is warned of before it begins, and a warning runs what the user hooked to it.
WARNED = {
    "compute": lambda man: man.analysis.compute(), "clear": lambda man: man.analysis.clear(),
    "reset": lambda man: man.analysis.reset(), "report": lambda man: man.analysis.report(),
    "activate": lambda man: man.analysis.activate(), "deactivate": lambda man: man.analysis.deactivate(),
    "gravity": lambda man: setattr(man.analysis, "gravity", (0, -1, 0)),
    "strategy": lambda man: setattr(man.analysis, "strategy", "sitting"),
    "load": lambda man: man.analysis.loads.__setitem__(PALM, (0, 1, 0)),
    "weight": lambda man: man.analysis.loads.__setitem__(PALM, Weight(1)),
    "torque": lambda man: man.analysis.torques.__setitem__("waist", (0, 1, 0)),
    "offset": lambda man: man.analysis.offset_loads.append(PALM, (0, 1, 0), (0, 1, 0)),
    "offset weight": lambda man: man.analysis.offset_loads.append(PALM, (0, 1, 0), Weight(1)),
    "degrees": lambda man: setattr(man.joints["left_knee"], "degrees", 1),
    "posture": lambda man: setattr(man, "posture", {"left_knee": 1}),
    "simulate": lambda man: list(man.analysis.simulate(1)),
    "array": lambda man: man.analysis.simulate_array([[1]], angles=["left_knee"]),
    "mass": lambda man: setattr(man, "mass", 7e4), "sex": lambda man: setattr(man, "sex", "male"),
    "stature": lambda man: setattr(man, "stature", 170), "posed": lambda man: man.figure.posed(),
    "root": lambda man: setattr(man.figure, "root", ((0, 90, 0), (0, 0, 0))),
    "scene's gravity": lambda man: setattr(man.scene, "gravity", (0, -1, 0)),
    "save": lambda man: man.scene.save("never.json"), "add_human": lambda man: man.scene.add_human(default_figure()),
    "add_posed": lambda man: man.scene.add_posed(small_body("late").document),
}


@pytest.fixture
def hooked(worker, monkeypatch):
    """Leaves a message with the host and has a function called when it is warned of."""
    def hook(function):
        with warnings.catch_warnings():
            warnings.simplefilter("ignore")
            worker.analysis
        libqcc.qcJoint_setAngle(worker.joints["waist"].pointer, 9, 0.0)
        monkeypatch.setattr(warnings, "showwarning", lambda *told: function())
    with warnings.catch_warnings():
        warnings.simplefilter("always")
        yield hook
    monkeypatch.undo()


@pytest.mark.parametrize("use", [pytest.param(use, id=name) for name, use in WARNED.items()])
def test_hook_of_a_warning_may_close_the_scene(worker, hooked, use):
    worker.analysis.loads[PALM] = 0, -2, 0
    hooked(worker.scene.close)
    with pytest.raises(ClosedError, match="this scene is closed"):
        use(worker)
    assert worker.scene.is_closed


@pytest.mark.parametrize("use", [pytest.param(WARNED[name], id=name) for name in
                                 ("compute", "gravity", "load", "torque", "offset", "array")])
def test_hook_of_a_warning_may_delete_the_analysis(worker, hooked, use):
    analysis = worker.analysis
    hooked(analysis.delete)
    with pytest.raises(ClosedError, match="this analysis of worker was deleted"):
        use(worker)
    assert analysis.is_deleted


# A human without an anthropometric scale is warned of while its analysis is made; the hook's is the same.
def test_hook_of_a_warning_may_delete_an_analysis_that_is_being_made(scene, monkeypatch):
    body = small_body("man")
    body.document["anthro"] = "none"
    man = scene.add_posed(body.document)
    with warnings.catch_warnings():
        warnings.simplefilter("always")
        monkeypatch.setattr(warnings, "showwarning", lambda *told: man.analysis.delete())
        with pytest.raises(ClosedError, match="this analysis of man was deleted"):
            man.analysis
        monkeypatch.setattr(warnings, "showwarning", lambda *told: None)
        assert man.analysis.compute()["waist"].force.y == pytest.approx(-29)
        monkeypatch.undo()


# The hook's own vectors pass through the host's, too.
def test_hook_of_a_warning_may_use_the_analysis(worker, hooked):
    analysis = worker.analysis

    def use():
        analysis.offset_loads.append("t8.distal", (7, 8, 9), (7, 8, 9))
        analysis.loads["head.eye_level"] = 7, 8, 9

    for put, read in ((lambda value: analysis.loads.__setitem__(PALM, value), lambda: analysis.loads[PALM].vector),
                      (lambda value: analysis.torques.__setitem__("waist", value), lambda: analysis.torques["waist"]),
                      (lambda value: setattr(analysis, "gravity", value), lambda: analysis.gravity)):
        hooked(use)
        put((1, 2, 3))
        assert read() == (1, 2, 3)
    hooked(use)
    added = analysis.offset_loads.append(PALM, (1, 2, 3), (4, 5, 6))
    assert (added.offset, added.load.vector) == ((1, 2, 3), (4, 5, 6)) and analysis.offset_loads[-1] == added
    assert len(analysis.offset_loads) == 5


def test_deleted_analysis_of_one_human_leaves_the_others(scene, man):
    other = scene.add_posed(small_body("other").document)
    other.analysis.loads[PALM] = Weight(1)
    man.analysis.delete()
    assert list(other.analysis.loads) == [PALM]


# A script that the host runs may use the package; deleting its own analysis there is allowed.
def test_script_may_delete_its_own_analysis(man, capfd):
    import __main__
    from staticstrength import step
    __main__.analysis_of_test = man.analysis
    man.analysis.activate("analysis_of_test.delete()")
    assert step() == [1] and bound() == 0
    assert __main__.analysis_of_test.is_deleted
    del __main__.analysis_of_test
    assert man.analysis.compute()["waist"].force.y < 0


def test_package_and_flat_modules_speak_of_the_same_objects(man):
    assert libqcc.qcHuman_getWaistJoint(man.pointer) == man.joints["waist"].pointer
    assert libqmSSTRc.qmStaticStrength_getHuman(man.analysis.pointer) == man.pointer


# At the interpreter's end scenes that are still open are closed, whatever is left of them.
def test_interpreter_ends_well_with_scenes_open():
    program = textwrap.dedent(f"""
        from staticstrength import Scene
        scenes = [Scene.open({str(ROOT / "examples" / "lift_box.json")!r}) for _ in range(3)]
        results = [scene.human.analysis.compute() for scene in scenes]
        frames = scenes[0].human.analysis.simulate(5)
        next(frames)
        print(results[0] == results[2])
    """)
    ended = subprocess.run([sys.executable, "-W", "error", "-c", program], capture_output=True, text=True)
    assert (ended.returncode, ended.stdout, ended.stderr) == (0, "True\n", "")
