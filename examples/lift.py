#!/usr/bin/env python3
"""Which joints of a person carry how much who lifts a box of 10 kg, and what a lighter box would change.

Opens the scene beside this file, computes, shows the five joints with the greatest moments, and computes once more with
half the box, for a moment only.

    PYTHONPATH=build/run/python python3 examples/lift.py
"""
from pathlib import Path

from staticstrength import Scene, Weight


def greatest_moments(result, count=5):
    return sorted(result, key=lambda joint: result[joint].moment.magnitude, reverse=True)[:count]


def main():
    with Scene.open(Path(__file__).with_name("lift_box.json")) as scene:
        worker = scene.human
        analysis = worker.analysis
        result = analysis.compute()
        print(f"{worker.name} lifts a box, standing on {result.effective_strategy.text}: "
              f"{result.shares['right_foot']:.0f} % on the right foot")
        print("\n".join(analysis.report()))
        print()

        with analysis.temporary():
            for site in list(analysis.loads):
                analysis.loads[site] = Weight(analysis.loads[site].grams / 2)
            for load in list(analysis.offset_loads):
                analysis.offset_loads.remove(load)
                analysis.offset_loads.append(load.site, load.offset, Weight(load.load.grams / 2))
            lighter = analysis.compute()

        print("joint             moment N·m   with half the box")
        for joint in greatest_moments(result):
            print(f"{joint:16}  {result[joint].moment.magnitude:10.1f}   {lighter[joint].moment.magnitude:17.1f}")


if __name__ == "__main__":
    main()
