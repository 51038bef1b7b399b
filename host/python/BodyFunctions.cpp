// Body: a human's name, sex, stature and mass. Whoever asks for a measure makes the human's scale, which by
// itself changes nothing.
#include "Functions.h"
#include "Results.h"

#include "qc/qcMessages.h"

#include <cstring>

namespace {

// Sets one measure of a human's scale, made if need be. @return 1; 0 after an error message
template <class Set> PyObject* setMeasure(qcHuman& human, Set set)
{
    qcAnthroScale* scale = human.initAnthroscale(nullptr);
    return toPython(scale ? set(*scale) : error("human %s: it cannot have an anthropometric scale.", human.getName()));
}

}   // namespace

namespace functions {

// qcHuman_getName(human) -> its name
PyObject* humanGetName(PyObject*, PyObject* args)
{
    return ofObject<qcHuman>(args, "s:qcHuman_getName", [](qcHuman& h) { return toPython(h.getName()); });
}

// qcHuman_getSex(human) -> "male" or "female"; None when nothing tells it
PyObject* humanGetSex(PyObject*, PyObject* args)
{
    return ofObject<qcHuman>(args, "s:qcHuman_getSex", [](qcHuman& h) {
        const qcAnthroScale* scale = h.initAnthroscale(nullptr);
        const bool known = scale && (scale->hasSex() || scale->getStature() > 0);
        return known ? toPython(scale->getSex() == qcFemale ? "female" : "male") : none();
    });
}

// qcHuman_setSex(human, "male" or "female") -> 1; 0 after an error message
PyObject* humanSetSex(PyObject*, PyObject* args)
{
    Object<qcHuman> human;
    char* sex;
    if (!PyArg_ParseTuple(args, "ss:qcHuman_setSex", &human.text, &sex) || !decode("qcHuman_setSex", human))
        return nullptr;
    const bool female = std::strcmp(sex, "female") == 0;
    if (!female && std::strcmp(sex, "male") != 0)
        return toPython(
            error("human %s: expected the sex \"male\" or \"female\", found \"%s\".", human->getName(), sex));
    return setMeasure(*human, [&](qcAnthroScale& scale) { return scale.setSex(female ? qcFemale : qcMale); });
}

// qcHuman_getStature(human) -> cm; None when nothing tells it
PyObject* humanGetStature(PyObject*, PyObject* args)
{
    return ofObject<qcHuman>(args, "s:qcHuman_getStature", [](qcHuman& h) {
        const qcAnthroScale* scale = h.initAnthroscale(nullptr);
        return scale && scale->getStature() > 0 ? toPython(scale->getStature()) : none();
    });
}

// qcHuman_setStature(human, cm) -> 1; 0 after an error message
PyObject* humanSetStature(PyObject*, PyObject* args)
{
    Object<qcHuman> human;
    double stature;
    if (!PyArg_ParseTuple(args, "sd:qcHuman_setStature", &human.text, &stature) || !decode("qcHuman_setStature", human))
        return nullptr;
    return setMeasure(*human, [&](qcAnthroScale& scale) { return scale.setStature(stature); });
}

// qcHuman_setMass(human, grams) -> 1; 0 after an error message; qcFigure_getBodyMass() reads it
PyObject* humanSetMass(PyObject*, PyObject* args)
{
    Object<qcHuman> human;
    double grams;
    if (!PyArg_ParseTuple(args, "sd:qcHuman_setMass", &human.text, &grams) || !decode("qcHuman_setMass", human))
        return nullptr;
    return setMeasure(*human, [&](qcAnthroScale& scale) { return scale.setMass(grams); });
}

}   // namespace functions
