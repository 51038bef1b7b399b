// Global variables.
#include "GlobalVariables.h"

#include "wrapping/PyCompat.h"

namespace {

PyObject* variables = nullptr;   // lives as long as the process

PyObject* show(PyObject*)
{
    return PyStr_FromString("Global variables { }");
}

PyObject* get(PyObject*, char* name)
{
    PyErr_Format(PyExc_NameError, "C global variable %s not found.", name);
    return nullptr;
}

int set(PyObject*, char* name, PyObject*)
{
    PyErr_Format(PyExc_NameError, "C global variable %s not found.", name);
    return -1;
}

PyTypeObject* variablesType()
{
    static PyTypeObject type;   // all null
    Py_INCREF(reinterpret_cast<PyObject*>(&type));
    type.tp_name = "varlink";
    type.tp_basicsize = sizeof(PyObject);
    type.tp_getattr = get;
    type.tp_setattr = set;
    type.tp_repr = show;
    type.tp_str = show;
    type.tp_flags = Py_TPFLAGS_DEFAULT;
    return PyType_Ready(&type) == 0 ? &type : nullptr;
}

}   // namespace

bool makeGlobalVariables()
{
    if (variables)
        return true;
    PyTypeObject* type = variablesType();
    variables = type ? PyObject_New(PyObject, type) : nullptr;
    return variables != nullptr;
}
