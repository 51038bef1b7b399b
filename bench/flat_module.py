"""Times calls through the flat module: what a call costs above the member that it calls.

The default human stands on two feet and has been computed. Printed are nanoseconds a call, less an empty Python call: the
median of the runs, and the fastest and slowest. The members themselves take from 1 ns (getStrategy) to 30 ns
(getJointForces); ComputeBench and InputBench measure them.
"""
import os
import sys
import timeit

import libqcc as qc
import libqmSSTRc as ss

RUNS = 15
CALLS = 100000
FIGURE = os.path.join(os.path.dirname(os.path.dirname(os.path.abspath(__file__))), "figures", "human.urdf")


def nanoseconds(function, *arguments):
    """Sorted times of one call."""
    timer = timeit.Timer(lambda: function(*arguments))
    return sorted(seconds / CALLS * 1e9 for seconds in timer.repeat(RUNS, CALLS))


def nothing():
    pass


def main():
    scene = qc.qcScene_new()
    human = qc.qcScene_addHuman(scene, FIGURE, "worker")
    if human == "NULL":
        sys.exit("error: %s could not be added: %s" % (FIGURE, qc.qcMessages_take()))
    analysis = ss.qmStaticStrength_getHandle(human)
    figure = qc.qcHuman_getFigure(human)
    waist = qc.qcFigure_findJoint(figure, "waist")
    force, moment = qc.new_qVector(0, 0, 0), qc.new_qVector(0, 0, 0)
    ss.qmStaticStrength_compute(analysis)
    if ss.qmStaticStrength_getJointForces(analysis, waist, force, moment) != 1:
        sys.exit("error: there is no result at the waist")

    empty = nanoseconds(nothing)[RUNS // 2]
    print("%-34s %8s %8s %8s" % ("ns a call, Python %d.%d" % sys.version_info[:2], "median", "fastest", "slowest"))
    for function, arguments in (
            (ss.qmStaticStrength_getStrategy, (analysis,)),
            (ss.qmStaticStrength_getNthLoadSite, (analysis, 0)),
            (ss.qmStaticStrength_getJointForces, (analysis, waist, force, moment)),
            (ss.qmStaticStrength_calcForcesAt, (analysis, force, force, force, force, moment))):
        times = nanoseconds(function, *arguments)
        print("%-34s %8.0f %8.0f %8.0f" % (function.__name__, times[RUNS // 2] - empty, times[0] - empty,
                                           times[-1] - empty))

    ss.delete_qmStaticStrength(analysis)
    qc.qcScene_close(scene)


main()
