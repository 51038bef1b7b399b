"""Times simulation from Python: frames a second of the default human, its postures in a list or an array.

Each frame sets all 94 angles anew and keeps the results of all 40 joints, with 5 kg in the right hand. Printed are frames a
second in processor time: the median of the runs, and the slowest and fastest.
"""
import array
import random
import sys
import time

from staticstrength import Scene, Weight, default_figure

RUNS = 15
FRAMES = 2000


def postures(human):
    """Rows of all angles, degrees, well within their limits; always the same."""
    chance = random.Random(7)
    spans = [limits or (-30, 30) for joint in human.joints.values() for limits in joint.limits]
    return [array.array("d", [chance.uniform(0.3 * low, 0.3 * high) for low, high in spans])
            for _ in range(FRAMES)]


def frames_a_second(work):
    """Sorted rates of the runs."""
    rates = []
    for _ in range(RUNS):
        start = time.process_time()
        work()
        rates.append(FRAMES / (time.process_time() - start))
    return sorted(rates)


def show(name, rates):
    print("%-34s %8.0f %8.0f %8.0f" % (name, rates[RUNS // 2], rates[0], rates[-1]))


def main():
    with Scene() as scene:
        worker = scene.add_human(default_figure(), "worker")
        analysis = worker.analysis
        analysis.loads["right_hand.right_palmcenter"] = Weight(5000)
        rows = postures(worker)
        results = analysis.simulate_array(rows)
        if len(results) != FRAMES:
            sys.exit("error: not every frame has a result")

        print("%-34s %8s %8s %8s" % ("frames a second, Python %d.%d" % sys.version_info[:2], "median", "slowest",
                                     "fastest"))
        show("simulate_array, rows of an array", frames_a_second(lambda: analysis.simulate_array(rows)))
        lists = [list(row) for row in rows]
        show("simulate_array, lists", frames_a_second(lambda: analysis.simulate_array(lists)))


main()
