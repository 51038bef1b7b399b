"""The lifting example by the two flat modules alone, in the dialect that every Python from 2.6 on runs.

Objects are pointer strings, vectors are made and deleted, and nothing here keeps a script from using what is gone: a
record of a load after a change of gravity, an analysis or a figure after its scene was closed.

    PYTHONPATH=build/run/python python3 examples/legacy_script.py
"""
import os
import sys

import libqcc
import libqmSSTRc

HERE = os.path.dirname(os.path.abspath(__file__))


def show_messages():
    for kind, text in libqcc.qcMessages_take():
        sys.stderr.write("%s: %s\n" % (kind, text.rstrip()))


def show_loads(analysis):
    line = libqmSSTRc.qmStaticStrength_reportLoads(analysis, 1)
    while line is not None:
        sys.stdout.write(line + "\n")
        line = libqmSSTRc.qmStaticStrength_reportLoads(analysis)


def show_offset_loads(analysis):
    for i in range(libqmSSTRc.qmStaticStrength_getNumLoadsWithOffset(analysis)):
        record = libqmSSTRc.qmStaticStrength_getNthLoadWithOffset(analysis, i)
        site = libqmSSTRc.loadWithOffset_site_get(record)
        offset = libqcc.qVector_get(libqmSSTRc.loadWithOffset_offset_get(record))   # a vector within the record
        sys.stdout.write("%s\t%s at (%.2f, %.2f, %.2f) cm\n" % (
            (libqcc.qcSite_getFullName(site), libqmSSTRc.loadWithOffset_type_get(record)) + offset))


def show_results(analysis, figure, names):
    force = libqcc.new_qVector(0, 0, 0)
    moment = libqcc.new_qVector(0, 0, 0)
    for name in names:
        joint = libqcc.qcFigure_findJoint(figure, name)
        if joint == "NULL":
            sys.stderr.write("error: there is no joint %s\n" % name)
        elif libqmSSTRc.qmStaticStrength_getJointForces(analysis, joint, force, moment):
            sys.stdout.write("%-12s force (%.3f, %.3f, %.3f) kgf, moment (%.3f, %.3f, %.3f) N m\n" % (
                (name,) + libqcc.qVector_get(force) + libqcc.qVector_get(moment)))
        else:
            sys.stdout.write("%-12s no result\n" % name)
    libqcc.delete_qVector(force)
    libqcc.delete_qVector(moment)


def main():
    scene = libqcc.qcScene_open(os.path.join(HERE, "lift_box.json"))
    if scene == "NULL":
        show_messages()
        return 1
    human = libqcc.qcScene_getHumans(scene)[0]
    figure = libqcc.qcHuman_getFigure(human)
    analysis = libqmSSTRc.qmStaticStrength_getHandle(human)
    strategy = libqmSSTRc.qmStaticStrength_getStrategyName(libqmSSTRc.qmStaticStrength_getStrategy(analysis))
    sys.stdout.write("%s: %s\n" % (libqcc.qcFigure_getName(figure), strategy))
    show_loads(analysis)
    show_offset_loads(analysis)
    libqmSSTRc.qmStaticStrength_compute(analysis)
    show_results(analysis, figure, ("waist", "l4_l5", "right_hip", "left_knee", "left_ball"))
    show_messages()

    # In this order: the analysis uses the human, and the human is the scene's.
    libqmSSTRc.delete_qmStaticStrength(analysis)
    libqcc.qcScene_close(scene)
    return 0


if __name__ == "__main__":
    sys.exit(main())
