#!/usr/bin/env python3
"""The moment at the low back against the distance at which a box of 10 kg is held.

The default human stands upright and raises straight arms with the box, half its weight in each hand, from hanging to
nearly level. Each posture gives a distance (cm, of the palms in front of the joint between the last two lumbar
vertebrae) and the moment there (N·m, about the axis to the left: what bends the body forward), with the box and
without it. Between the two lies the box's weight times the distance.

    PYTHONPATH=build/run/python python3 examples/sweep_box_distance.py [PNG]

With matplotlib installed, it also draws the two curves into a file, sweep_box_distance.png when not told otherwise.
"""
import sys

from staticstrength import Scene, Weight, default_figure

LOW_BACK = "l4_l5"
PALMS = ("right_hand.right_palmcenter", "left_hand.left_palmcenter")
BOX = 10000   # g


def sweep(worker, angles):
    """(distance, moment with the box, moment without it) for each angle of the shoulders, degrees."""
    analysis = worker.analysis
    postures = [{"right_shoulder": angle, "left_shoulder": angle} for angle in angles]
    free = [result[LOW_BACK].moment.x for result in analysis.simulate(postures)]
    rows = []
    with analysis.temporary():
        for palm in PALMS:
            analysis.loads[palm] = Weight(BOX / 2)
        for without, result in zip(free, analysis.simulate(postures)):
            distance = worker.sites[PALMS[0]].position.z - worker.joints[LOW_BACK].position.z
            rows.append((distance, result[LOW_BACK].moment.x, without))
    return rows


def draw(rows, path):
    """Draws the curves, if matplotlib is installed. Whether it is."""
    try:
        import matplotlib
    except ImportError:
        return False
    matplotlib.use("Agg")   # into a file, without a window
    from matplotlib import pyplot
    distances, with_box, without = zip(*rows)
    figure, axes = pyplot.subplots()
    axes.plot(distances, with_box, label=f"with a box of {BOX / 1000:g} kg")
    axes.plot(distances, without, label="without")
    axes.set_xlabel("distance of the palms from the low back, cm")
    axes.set_ylabel("moment at the low back, N·m")
    axes.legend()
    figure.savefig(path)
    pyplot.close(figure)
    return True


def main():
    path = sys.argv[1] if len(sys.argv) > 1 else "sweep_box_distance.png"
    with Scene() as scene:
        rows = sweep(scene.add_human(default_figure(), "worker"), range(0, 86, 5))
    print("distance cm   moment N·m   without the box")
    for distance, with_box, without in rows:
        print(f"{distance:11.1f}   {with_box:10.2f}   {without:15.2f}")
    print(f"drawn into {path}" if draw(rows, path) else "matplotlib is not installed: nothing is drawn")


if __name__ == "__main__":
    main()
