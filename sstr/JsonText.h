// JSON as the program writes it: keys carry their units, a number that is not finite is null.
#pragma once

#include "qc/qVector.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>

using Json = nlohmann::ordered_json;

/// The shortest number that reads back as the same float; null for one that is not finite or absent.
Json number(float value);
Json number(std::optional<float> value);

/// [x, y, z]
Json numbers(const qVector& vector);

/// Puts "quantity_x_unit", "quantity_y_unit" and "quantity_z_unit" into an object.
void putVector(Json& object, const std::string& quantity, const std::string& unit, const qVector& vector);

/// The whole text, indented, ending in a line break. Names come from files and may hold bytes that are no
/// UTF-8: such a byte is replaced, not fatal.
std::string jsonText(const Json& document);
