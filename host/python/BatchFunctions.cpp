// Batches: all joints of a figure in one call, through arrays of the caller, for postures by the thousand.
//
// An array is any object with the buffer interface that holds its numbers without gaps: Python 3's
// array.array, a memoryview, an array of a numerical package.
#include "Functions.h"
#include "Results.h"

#include <algorithm>
#include <limits>

namespace {

constexpr int kMostVectors = 1000;   // in one joint's property

// An array for as long as the object lives.
class Array {
public:
    Array() = default;
    Array(const Array&) = delete;
    Array& operator=(const Array&) = delete;
    ~Array()
    {
        if (held)
            PyBuffer_Release(&view);
    }

    // @param format  what it has to hold: "d" double, "f" single  @return false with a TypeError set
    bool open(const char* function, int position, PyObject* object, const char* format, bool writable)
    {
        held =
            PyObject_GetBuffer(object, &view, PyBUF_C_CONTIGUOUS | PyBUF_FORMAT | (writable ? PyBUF_WRITABLE : 0)) == 0;
        if (held && isOf(*format))
            return true;
        PyErr_Clear();
        PyErr_Format(PyExc_TypeError, "Type error in argument %d of %s. Expected %s array of %s numbers.", position,
                     function, writable ? "a writable" : "an",
                     *format == 'd' ? "double-precision" : "single-precision");
        return false;
    }

    // The elements from `first` on, of which `wanted` are needed. @return null with a ValueError set
    template <class T> T* from(const char* function, int position, Py_ssize_t first, Py_ssize_t wanted)
    {
        const Py_ssize_t size = view.len / view.itemsize;
        if (first >= 0 && first <= size && size - first >= wanted)
            return static_cast<T*>(view.buf) + first;
        PyErr_Format(PyExc_ValueError,
                     "Argument %d of %s: expected %zd numbers from element %zd on, found an array of"
                     " %zd.",
                     position, function, wanted, first, size);
        return nullptr;
    }

private:
    // Native numbers, whether the exporter says so ("@d") or not ("d").
    bool isOf(char wanted) const
    {
        const char* found = view.format ? view.format : "B";
        if (*found == '@' || *found == '=')
            ++found;
        return found[0] == wanted && found[1] == '\0';
    }

    Py_buffer view;
    bool held = false;
};

template <class Visit> void forEachJoint(const qcFigure& figure, Visit visit)
{
    for (qList* node = nullptr; (node = qList::iterator(figure.getJoints(), node));)
        visit(*static_cast<qcJoint*>(node->getData()));
}

// Reads a list of `count` vectors into 3 · count numbers. @return false for any other value
bool readVectors(const qcValue& value, int count, float* into)
{
    const qcValue* element = value.kind == qcValue::List ? value.firstElement() : nullptr;
    for (int i = 0; i < count; ++i, element = element->next) {
        qVector vector;
        qVector* out = &vector;
        if (!element || !element->get(out))
            return false;
        std::copy(&vector[0], &vector[0] + 3, into + Py_ssize_t{3} * i);
    }
    return !element;
}

}   // namespace

namespace functions {

// qcFigure_setAngles(figure, angles, first, unit) -> 1; 0 after an error message, no angle is changed then
//
// The angles of all joints, in the figure's order, each joint's from 1 on: angles[first], angles[first + 1]
// and so on, times unit: rad.
PyObject* figureSetAngles(PyObject*, PyObject* args)
{
    static const char name[] = "qcFigure_setAngles";
    Object<qcFigure> figure;
    PyObject* given;
    Py_ssize_t first;
    double unit;
    Array array;
    if (!PyArg_ParseTuple(args, "sOnd:qcFigure_setAngles", &figure.text, &given, &first, &unit) || !decode(name, figure)
        || !array.open(name, 2, given, "d", false))
        return nullptr;

    Py_ssize_t count = 0;
    forEachJoint(*figure, [&](const qcJoint& joint) { count += joint.getNumAngles(); });
    const double* angles = array.from<const double>(name, 2, first, count);
    if (!angles)
        return nullptr;

    // All or none: the first angle that cannot be set is reported before any is.
    bool good = true;
    const double* angle = angles;
    forEachJoint(*figure, [&](qcJoint& joint) {
        for (int i = 1; i <= joint.getNumAngles(); ++i, ++angle)
            if (good && !joint.angleProblem(i, *angle * unit).empty())
                good = joint.setAngle(i, *angle * unit) != 0;   // fails with the host's message
    });
    angle = angles;
    if (good)
        forEachJoint(*figure, [&](qcJoint& joint) {
            for (int i = 1; i <= joint.getNumAngles(); ++i)
                joint.setAngle(i, *angle++ * unit);
        });
    return toPython(good ? 1 : 0);
}

// qcFigure_getJointVectors(figure, key, count, array, first) -> how many joints have such a property
//
// Each joint's property that is a list of `count` vectors, in the figure's order: 3 · count numbers a joint
// from array[first] on; not-a-numbers for a joint without it.
PyObject* figureGetJointVectors(PyObject*, PyObject* args)
{
    static const char name[] = "qcFigure_getJointVectors";
    Object<qcFigure> figure;
    char* key;
    int count;
    PyObject* given;
    Py_ssize_t first;
    Array array;
    if (!PyArg_ParseTuple(args, "ssiOn:qcFigure_getJointVectors", &figure.text, &key, &count, &given, &first)
        || !decode(name, figure))
        return nullptr;
    if (count < 1 || count > kMostVectors) {
        PyErr_Format(PyExc_ValueError, "Argument 3 of %s is a number of vectors: expected 1 to %d, found %d.", name,
                     kMostVectors, count);
        return nullptr;
    }
    if (!array.open(name, 4, given, "f", true))
        return nullptr;

    const Py_ssize_t stride = Py_ssize_t{3} * count;
    Py_ssize_t joints = 0;
    forEachJoint(*figure, [&](const qcJoint&) { ++joints; });
    float* into = array.from<float>(name, 4, first, stride * joints);
    if (!into)
        return nullptr;

    int found = 0;
    forEachJoint(*figure, [&](const qcJoint& joint) {
        qcValue value;
        if (joint.getProperty(key, &value) && readVectors(value, count, into))
            ++found;
        else
            std::fill(into, into + stride, std::numeric_limits<float>::quiet_NaN());
        into += stride;
    });
    return toPython(found);
}

// qcFigure_removeJointProperty(figure, key) -> how many joints had the property
PyObject* figureRemoveJointProperty(PyObject*, PyObject* args)
{
    Object<qcFigure> figure;
    char* key;
    if (!PyArg_ParseTuple(args, "ss:qcFigure_removeJointProperty", &figure.text, &key)
        || !decode("qcFigure_removeJointProperty", figure))
        return nullptr;
    int removed = 0;
    forEachJoint(*figure, [&](qcJoint& joint) { removed += joint.removeProperty(key); });
    return toPython(removed);
}

}   // namespace functions
