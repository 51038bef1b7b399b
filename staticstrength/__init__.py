"""Static strength of human figures: what each joint of a posed person carries.

::

    from staticstrength import Scene, Weight

    with Scene.open("examples/lift_box.json") as scene:
        worker = scene.human
        worker.joints["right_elbow"].degrees = 30, 0
        worker.analysis.loads["right_hand.right_palmcenter"] = Weight(5000)
        result = worker.analysis.compute()
        print(result["waist"].moment.magnitude, "N·m")

Lengths are in cm, weights and masses in g, forces in kgf, moments in N·m, gravity in cm/s², angles in degrees. Axes:
x to the figure's left, y up, z forward. Force and moment are what the body beyond a joint puts on it.

There is one thread: the host and its analyses are not to be used from several.
"""
from .analysis import Analysis, step
from .data import default_figure
from .errors import ClosedError, StaticStrengthError, StaticStrengthWarning, UnknownNameError
from .figure import Figure, Root
from .frames import FrameResults
from .human import Human
from .inputs import Loads, OffsetLoads, Torques
from .loads import Force, OffsetLoad, Weight
from .names import NamedMapping
from .parts import Joint, Segment, Site
from .result import JointForce, JointResult, Result
from .scene import Scene
from .strategy import Strategy
from .vectors import NEWTON_PER_KGF, Vector

__all__ = [
    "NEWTON_PER_KGF", "Analysis", "ClosedError", "Figure", "Force", "FrameResults", "Human", "Joint", "JointForce",
    "JointResult", "Loads", "NamedMapping", "OffsetLoad", "OffsetLoads", "Result", "Root", "Scene", "Segment", "Site",
    "StaticStrengthError", "StaticStrengthWarning", "Strategy", "Torques", "UnknownNameError", "Vector", "Weight",
    "default_figure", "step",
]
