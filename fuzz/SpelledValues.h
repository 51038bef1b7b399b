// Spelled values: property values as texts that can be compared.
#pragma once

#include "qc/qcObject.h"

#include <string>
#include <vector>

/// The elements of a list value, each by itself.
std::vector<const qcValue*> elementsOf(const qcValue& value);

/// A value as a text that tells it from every other: numbers by their bits, but one not-a-number is like another.
std::string spelled(const qcValue& value);
std::string spelled(const qVector& vector);
std::string spelled(float number);
std::string spelled(const char* text);
std::string spelledList(const std::string& elements);

/// A property's spelling; empty without one.
std::string spelledProperty(const qcObject* object, const char* key);

/// A weight in grams as a force, kgf: gravity · grams · 0.001 / 980.665, the factor worked out in double.
qVector weightForce(const qVector& gravity, float grams);
