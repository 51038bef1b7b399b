"""Scenes that are closed, and postures by the thousand, leave no memory behind. For builds without sanitizers.

Measured by the most memory that the process ever held, ru_maxrss of getrusage, kB, after a first round.
"""
import resource

from conftest import PALM
from staticstrength import Scene, Weight, default_figure


def grown(work, warm_up, count):
    for _ in range(warm_up):
        work()
    before = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss
    for _ in range(count):
        work()
    return resource.getrusage(resource.RUSAGE_SELF).ru_maxrss - before


def open_and_close():
    with Scene() as scene:
        scene.add_human(default_figure()).analysis.compute()


# One human with its figure and analysis is more than 100 kB: 200 of them would be 20 000.
def test_closed_scenes_leave_nothing_behind():
    assert grown(open_and_close, 20, 200) < 5000


# An input that is set, a computation and its result, which is dropped: 16 bytes lost at each of 20 000 rounds would
# be 320 kB for each thing lost.
def test_computations_leave_nothing_behind(worker):
    analysis = worker.analysis

    def round():
        analysis.loads[PALM] = Weight(1000)
        analysis.offset_loads.append(PALM, (0, 1, 0), Weight(1))
        analysis.compute()
        analysis.offset_loads.clear()
    assert grown(round, 2000, 20000) < 300
