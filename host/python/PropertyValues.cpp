// Property values.
#include "PropertyValues.h"

#include "HostTypes.h"
#include "Results.h"

#include <cstring>

namespace {

// What a scene file can hold, so that whatever Python sets can be saved: there a value is up to six of
// 20 million items.
constexpr int kDeepest = 100;      // lists in lists
constexpr int kMost = 1'000'000;   // values in one property

class Reader {
public:
    Reader(const char* theFunction, int thePosition) : function(theFunction), position(thePosition) {}

    bool read(PyObject* object, int depth, qcValue& value)
    {
        if (++count > kMost) {
            PyErr_Format(PyExc_ValueError, "Argument %d of %s holds more than %d values.", position, function, kMost);
            return false;
        }
        if (isNumber(object))
            return readNumber(object, value);
        if (PyStr_Check(object))
            return readText(object, value);
        if (PyTuple_Check(object))
            return readTuple(object, value);
        if (PyList_Check(object))
            return readList(object, depth, value);
        return refuse(Py_TYPE(object)->tp_name);
    }

private:
    static bool isNumber(PyObject* object)
    {
        return PyFloat_Check(object) || (pyIsInteger(object) && !PyBool_Check(object));
    }

    bool refuse(const char* found) const
    {
        PyErr_Format(PyExc_TypeError,
                     "Type error in argument %d of %s. Expected a float, a text, a tuple of three numbers, a list of"
                     " such values or (), found %s.",
                     position, function, found);
        return false;
    }

    // A class of the user's may turn itself into a float by code of its own, which could close the scene whose
    // object receives the value; so the number that it is built on is taken.
    static double toDouble(PyObject* object)
    {
        if (PyFloat_Check(object))
            return PyFloat_AsDouble(object);
        return PyLong_Check(object) ? PyLong_AsDouble(object) : static_cast<double>(PyInt_AsLong(object));
    }

    bool toFloat(PyObject* object, float& number) const
    {
        const double wide = toDouble(object);
        if (wide == -1.0 && PyErr_Occurred()) {
            if (!PyErr_ExceptionMatches(PyExc_OverflowError))
                return false;
            PyErr_Clear();
            PyErr_Format(PyExc_ValueError, "Argument %d of %s is too large for single precision.", position, function);
            return false;
        }
        return toSingle(function, position, wide, number);
    }

    bool readNumber(PyObject* object, qcValue& value) const
    {
        float number;
        if (!toFloat(object, number))
            return false;
        value.set(number);
        return true;
    }

    bool readText(PyObject* object, qcValue& value) const
    {
        const Reference bytes(pyTextBytes(object, "surrogateescape"));
        if (!bytes)
            return false;
        const char* text = PyBytes_AsString(bytes.get());
        if (std::strlen(text) != static_cast<std::size_t>(PyBytes_Size(bytes.get()))) {
            PyErr_Format(PyExc_ValueError, "Argument %d of %s holds a text with a zero byte.", position, function);
            return false;
        }
        value.set(text);
        return true;
    }

    bool readTuple(PyObject* object, qcValue& value) const
    {
        const Py_ssize_t size = PyTuple_Size(object);
        if (size == 0) {
            value.clear();
            return true;
        }
        if (size != 3) {
            const std::string found = "a tuple of " + std::to_string(size);
            return refuse(found.c_str());
        }
        qVector vector;
        for (int i = 0; i < 3; ++i) {
            PyObject* component = PyTuple_GetItem(object, i);   // the tuple's
            if (!isNumber(component)) {
                const std::string found = std::string("a tuple with ") + Py_TYPE(component)->tp_name;
                return refuse(found.c_str());
            }
            if (!toFloat(component, vector[i]))
                return false;
        }
        value.set(&vector);
        return true;
    }

    // The value owns its elements from the first on, so that a failure frees them.
    bool readList(PyObject* object, int depth, qcValue& value)
    {
        if (depth == kDeepest) {
            PyErr_Format(PyExc_ValueError,
                         "Argument %d of %s nests lists deeper than %d levels; a list may not contain itself.",
                         position, function, kDeepest);
            return false;
        }
        value.setList(nullptr);
        qcValue** end = &value.payload.first;
        for (Py_ssize_t i = 0; i < PyList_Size(object); ++i) {
            PyObject* item = PyList_GetItem(object, i);
            Py_INCREF(item);   // for as long as it is read
            const Reference element(item);
            *end = new qcValue;
            if (!read(element.get(), depth + 1, **end))
                return false;
            end = &(*end)->next;
        }
        return true;
    }

    const char* function;
    int position;
    int count = 0;
};

PyObject* listToPython(const qcValue& value, int depth);

PyObject* valueToPython(const qcValue& value, int depth)
{
    float number;
    char* text;
    qVector vector;
    qVector* into = &vector;
    if (value.get(number))
        return toPython(number);
    if (value.get(text))
        return toPython(text);
    if (value.get(into))
        return toPython(vector);
    if (value.kind == qcValue::List)
        return listToPython(value, depth);
    if (value.kind == qcValue::Empty)
        return PyTuple_New(0);
    PyErr_Format(PyExc_ValueError, "The property holds a value of unknown kind %d.", static_cast<int>(value.kind));
    return nullptr;
}

PyObject* listToPython(const qcValue& value, int depth)
{
    if (depth == kDeepest) {
        PyErr_Format(PyExc_ValueError, "The property nests lists deeper than %d levels.", kDeepest);
        return nullptr;
    }
    Reference list(PyList_New(0));
    if (!list)
        return nullptr;
    for (const qcValue* element = value.firstElement(); element; element = element->next)
        if (!append(list, valueToPython(*element, depth + 1)))
            return nullptr;
    return list.release();
}

}   // namespace

bool readValue(const char* function, int position, PyObject* object, qcValue& value)
{
    return Reader(function, position).read(object, 0, value);
}

PyObject* toPython(const qcValue& value)
{
    return valueToPython(value, 0);
}
