// Parts: segments, sites and joints of a figure.
#include "Functions.h"
#include "Results.h"

namespace functions {

// qcSegment_getName(segment) -> its name
PyObject* segmentGetName(PyObject*, PyObject* args)
{
    return ofObject<qcSegment>(args, "s:qcSegment_getName", [](qcSegment& s) { return toPython(s.getName()); });
}

// qcSegment_getFullName(segment) -> "figure.segment"
PyObject* segmentGetFullName(PyObject*, PyObject* args)
{
    return ofObject<qcSegment>(args, "s:qcSegment_getFullName", [](qcSegment& s) { return toPython(s.getFullName()); });
}

// qcSegment_getMass(segment) -> g
PyObject* segmentGetMass(PyObject*, PyObject* args)
{
    return ofObject<qcSegment>(args, "s:qcSegment_getMass", [](qcSegment& s) { return toPython(s.getMass()); });
}

// qcSegment_setMass(segment, grams) -> None; no scale changes it from then on
PyObject* segmentSetMass(PyObject*, PyObject* args)
{
    Object<qcSegment> segment;
    double number;
    float grams;
    if (!PyArg_ParseTuple(args, "sd:qcSegment_setMass", &segment.text, &number) || !decode("qcSegment_setMass", segment)
        || !toSingle("qcSegment_setMass", 2, number, grams))
        return nullptr;
    segment->setMass(grams);
    return none();
}

// qcSegment_getCenterOfMass(segment) -> (x, y, z), cm, in the segment's frame
PyObject* segmentGetCenterOfMass(PyObject*, PyObject* args)
{
    return ofObject<qcSegment>(args, "s:qcSegment_getCenterOfMass",
                               [](qcSegment& s) { return toPython(s.getCenterOfMass()); });
}

// qcSegment_getTransform(segment) -> its frame in the world, four rows of four; the translation is row 3, cm
PyObject* segmentGetTransform(PyObject*, PyObject* args)
{
    return ofObject<qcSegment>(args, "s:qcSegment_getTransform",
                               [](qcSegment& s) { return toPython(s.getGlobalTransform()); });
}

// qcSegment_getSites(segment) -> a list of its sites
PyObject* segmentGetSites(PyObject*, PyObject* args)
{
    return ofObject<qcSegment>(args, "s:qcSegment_getSites",
                               [](qcSegment& s) { return pointersToPython<qcSite>(s.getSites()); });
}

// qcSegment_getAttachmentSite(segment) -> the site by which it hangs on its parent; "NULL" for the root
PyObject* segmentGetAttachmentSite(PyObject*, PyObject* args)
{
    return ofObject<qcSegment>(args, "s:qcSegment_getAttachmentSite",
                               [](qcSegment& s) { return pointerToPython(s.getAttachmentSite()); });
}

// qcSite_getName(site) -> its name
PyObject* siteGetName(PyObject*, PyObject* args)
{
    return ofObject<qcSite>(args, "s:qcSite_getName", [](qcSite& s) { return toPython(s.getName()); });
}

// qcSite_getFullName(site) -> "figure.segment.site"
PyObject* siteGetFullName(PyObject*, PyObject* args)
{
    return ofObject<qcSite>(args, "s:qcSite_getFullName", [](qcSite& s) { return toPython(s.getFullName()); });
}

// qcSite_getSegment(site) -> the segment it lies on
PyObject* siteGetSegment(PyObject*, PyObject* args)
{
    return ofObject<qcSite>(args, "s:qcSite_getSegment", [](qcSite& s) { return pointerToPython(s.getSegment()); });
}

// qcSite_getJoints(site) -> a list of the joints attached there
PyObject* siteGetJoints(PyObject*, PyObject* args)
{
    return ofObject<qcSite>(args, "s:qcSite_getJoints",
                            [](qcSite& s) { return pointersToPython<qcJoint>(s.getJoints()); });
}

// qcSite_getTransform(site) -> its frame in the world, four rows of four; the translation is row 3, cm
PyObject* siteGetTransform(PyObject*, PyObject* args)
{
    return ofObject<qcSite>(args, "s:qcSite_getTransform", [](qcSite& s) { return toPython(s.getGlobalTransform()); });
}

// qcSite_getSecondTransform(site) -> the transform that the host keeps beside the first
PyObject* siteGetSecondTransform(PyObject*, PyObject* args)
{
    return ofObject<qcSite>(args, "s:qcSite_getSecondTransform",
                            [](qcSite& s) { return toPython(s.getSecondTransform()); });
}

// qcJoint_getName(joint) -> its name
PyObject* jointGetName(PyObject*, PyObject* args)
{
    return ofObject<qcJoint>(args, "s:qcJoint_getName", [](qcJoint& j) { return toPython(j.getName()); });
}

// qcJoint_getFullName(joint) -> its full name
PyObject* jointGetFullName(PyObject*, PyObject* args)
{
    return ofObject<qcJoint>(args, "s:qcJoint_getFullName", [](qcJoint& j) { return toPython(j.getFullName()); });
}

// qcJoint_getSites(joint) -> [the first site, the second]
PyObject* jointGetSites(PyObject*, PyObject* args)
{
    return ofObject<qcJoint>(args, "s:qcJoint_getSites", [](qcJoint& j) -> PyObject* {
        Reference list(PyList_New(0));
        if (!list || !append(list, pointerToPython(j.getSite(0))) || !append(list, pointerToPython(j.getSite(1))))
            return nullptr;
        return list.release();
    });
}

// qcJoint_getInboardSite(joint) -> its site nearer the trunk
PyObject* jointGetInboardSite(PyObject*, PyObject* args)
{
    return ofObject<qcJoint>(args, "s:qcJoint_getInboardSite",
                             [](qcJoint& j) { return pointerToPython(j.getInboardSite()); });
}

// qcJoint_getNumAngles(joint) -> how many angles
PyObject* jointGetNumAngles(PyObject*, PyObject* args)
{
    return ofObject<qcJoint>(args, "s:qcJoint_getNumAngles", [](qcJoint& j) { return toPython(j.getNumAngles()); });
}

// qcJoint_getAngle(joint, i) -> angle i, from 1, rad, as it was set, in double precision; 0 for an index outside
PyObject* jointGetAngle(PyObject*, PyObject* args)
{
    Object<qcJoint> joint;
    int i;
    if (!PyArg_ParseTuple(args, "si:qcJoint_getAngle", &joint.text, &i) || !decode("qcJoint_getAngle", joint))
        return nullptr;
    // Not getAngle(): an angle at its limit, rounded to single precision, could not be set again.
    return toPython(joint->getAngleExactly(i));
}

// qcJoint_setAngle(joint, i, radians) -> 1; 0 after an error message
PyObject* jointSetAngle(PyObject*, PyObject* args)
{
    Object<qcJoint> joint;
    int i;
    double radians;
    if (!PyArg_ParseTuple(args, "sid:qcJoint_setAngle", &joint.text, &i, &radians)
        || !decode("qcJoint_setAngle", joint))
        return nullptr;
    return toPython(joint->setAngle(i, radians));
}

}   // namespace functions
