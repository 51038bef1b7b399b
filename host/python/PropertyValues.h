// Property values: the host's values as Python objects, and back.
//
//   float    a float, single precision      text   str, UTF-8; other bytes as pyText() shows them
//   vector   a tuple of three floats        list   a list of values
//   empty    ()
#pragma once

#include "wrapping/PyCompat.h"

#include "qc/qcValue.h"

/// Sets a value to what a Python object tells. An int counts as a float; a bool does not.
///
/// @param function  names the Python function in messages, whose argument `position` the object is
/// @return false with an exception set. TypeError: an object of another type. ValueError: a number too
///         large for single precision, a text with a zero byte, lists nested too deep (as in one that
///         contains itself), or more than a million values
bool readValue(const char* function, int position, PyObject* object, qcValue& value);

/// A value as a new Python object; null with an exception set.
PyObject* toPython(const qcValue& value);
