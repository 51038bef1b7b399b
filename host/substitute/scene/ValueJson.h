// Values as JSON: ["f", number], ["s", text], ["v", [x, y, z]], ["l", [values]], ["e"].
#pragma once

#include "JsonReader.h"

#include "qc/qcObject.h"
#include "qc/qcValue.h"

#include <string>

/// Lists in lists, at most; the same when reading and when writing.
constexpr int kDeepestValue = 100;

/// A value as JSON. Numbers that are not finite become the texts "nan", "inf" and "-inf"; a text that
/// is no UTF-8 becomes ["x", its bytes in hexadecimal].
/// @throws InputError when it is nested too deep or of no known kind
Json valueJson(const qcValue& value);

/// The value that a JSON value tells. @throws InputError
qcValue valueFrom(const JsonAt& at);

/// All properties of an object: {key: value}. @throws InputError, naming the object and the key
Json propertiesJson(const qcObject& object, const std::string& objectName);

/// Stores all properties of {key: value} on an object; null removes one where `allowNull` says so.
/// @throws InputError
void setPropertiesFrom(const JsonAt& at, qcObject& object, bool allowNull);
