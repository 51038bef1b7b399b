// Saved values: building property values in a test, and telling exactly what a property holds.
#pragma once

#include "NumberText.h"

#include "qc/qcObject.h"
#include "qc/qcValue.h"

#include <nlohmann/json.hpp>

#include <initializer_list>
#include <string>

// ---- Building ------------------------------------------------------------------------------------

inline qcValue number(float value)
{
    return qcValue(value);
}

inline qcValue text(const char* value)
{
    return qcValue(value);
}

inline qcValue vector(float x, float y, float z)
{
    const qVector components(x, y, z);
    qcValue value;
    value.set(&components);
    return value;
}

/// A list of copies of the elements.
inline qcValue list(std::initializer_list<qcValue> elements)
{
    qcValue* first = nullptr;
    qcValue** link = &first;
    for (const qcValue& element : elements) {
        *link = new qcValue(element);
        link = &(*link)->next;
    }
    qcValue value;
    value.setList(first);
    return value;
}

// ---- Telling -------------------------------------------------------------------------------------

/// A value with its kinds: 1.5 a float, "a" a text (kind 7), (0, -1, 0) a vector, [..] a list (kind 9),
/// empty. Nine digits tell every float apart.
inline std::string describe(const qcValue& value)
{
    const auto digits = [](float component) { return numberText(double(component)); };

    if (value.kind == 9) {
        std::string elements;
        for (const qcValue* element = value.firstElement(); element; element = element->next)
            elements += (elements.empty() ? "" : ", ") + describe(*element);
        return "[" + elements + "]";
    }
    char* asText = nullptr;
    if (value.get(asText))
        return value.kind == 7 ? '"' + std::string(asText) + '"' : "a text of another kind";
    float asNumber = 0;
    if (value.get(asNumber))
        return digits(asNumber);
    qVector components;
    qVector* asVector = &components;
    if (value.get(asVector))
        return "(" + digits(components[0]) + ", " + digits(components[1]) + ", " + digits(components[2]) + ")";
    return value.kind == qcValue::Empty ? "empty" : "a value of unknown kind";
}

/// What an object holds under a key; "absent" without such a property.
inline std::string stored(const qcObject* object, const char* key)
{
    qcValue value;
    return object->getProperty(key, &value) ? describe(value) : "absent";
}

/// A value as a posed figure's file writes it.
inline nlohmann::json inFile(const qcValue& value)
{
    using nlohmann::json;

    char* asText = nullptr;
    if (value.get(asText))
        return json::array({"s", asText});
    float asNumber = 0;
    if (value.get(asNumber))
        return json::array({"f", asNumber});
    qVector components;
    qVector* asVector = &components;
    if (value.get(asVector))
        return json::array({"v", json::array({components[0], components[1], components[2]})});
    if (value.kind != qcValue::List)
        return json::array({"e"});
    json elements = json::array();
    for (const qcValue* element = value.firstElement(); element; element = element->next)
        elements.push_back(inFile(*element));
    return json::array({"l", elements});
}

/// Where a posed figure's file keeps the figure's own properties.
inline nlohmann::json onFigure()
{
    return nlohmann::json::array({"figure"});
}
