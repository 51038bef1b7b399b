// Spelled values.
#include "SpelledValues.h"

#include <cmath>

namespace {

std::string bits(float number)
{
    return std::string(std::isnan(number) ? "NaN!" : reinterpret_cast<const char*>(&number), sizeof number);
}

}   // namespace

std::vector<const qcValue*> elementsOf(const qcValue& value)
{
    std::vector<const qcValue*> all;
    for (const qcValue* element = value.firstElement(); element; element = element->next)
        all.push_back(element);
    return all;
}

std::string spelled(const qcValue& value)
{
    switch (value.kind) {
    case qcValue::Float:
        return spelled(value.payload.number);
    case qcValue::Vector:
        return spelled(value.payload.vector);
    case qcValue::String:
        return spelled(value.payload.text);
    case qcValue::List: {
        std::string elements;
        for (const qcValue* element : elementsOf(value))
            elements += spelled(*element);
        return spelledList(elements);
    }
    default:
        return "e";
    }
}

std::string spelled(const qVector& vector)
{
    return "v" + bits(vector[0]) + bits(vector[1]) + bits(vector[2]);
}

std::string spelled(float number)
{
    return "f" + bits(number);
}

std::string spelled(const char* text)
{
    return "s" + std::string(text) + '\0';
}

std::string spelledList(const std::string& elements)
{
    return "(" + elements + ")";
}

std::string spelledProperty(const qcObject* object, const char* key)
{
    qcValue value;
    return object->getProperty(key, &value) ? spelled(value) : "";
}

qVector weightForce(const qVector& gravity, float grams)
{
    qVector force = gravity;
    force.scale(static_cast<float>(double(grams) * 0.001 / double(980.665f)));
    return force;
}
