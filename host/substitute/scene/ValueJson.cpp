// Values as JSON.
#include "ValueJson.h"

#include "InputError.h"

#include <cmath>
#include <limits>

namespace {

Json tagged(const char* tag, Json content)
{
    return Json::array({Json::ofText(tag), std::move(content)});
}

// Results may hold what arithmetic left; a saved one must be readable all the same.
Json componentJson(float number)
{
    if (std::isnan(number))
        return Json::ofText("nan");
    if (std::isinf(number))
        return Json::ofText(number > 0 ? "inf" : "-inf");
    return Json::ofNumber(double(number));
}

float componentFrom(const JsonAt& at)
{
    constexpr const char* kExpected = "a number, \"nan\", \"inf\" or \"-inf\"";
    if (!at.isText())
        return at.real(kExpected);
    const std::string text = at.text();
    if (text == "nan")
        return std::numeric_limits<float>::quiet_NaN();
    if (text == "inf")
        return std::numeric_limits<float>::infinity();
    if (text == "-inf")
        return -std::numeric_limits<float>::infinity();
    at.failExpected(kExpected);
}

Json textJson(const std::string& text)
{
    if (isUtf8(text))
        return tagged("s", Json::ofText(text));
    constexpr const char* kDigits = "0123456789abcdef";
    std::string hex;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        hex += kDigits[byte >> 4];
        hex += kDigits[byte & 15];
    }
    return tagged("x", Json::ofText(hex));
}

std::string bytesFrom(const JsonAt& at)
{
    constexpr const char* kExpected = "bytes, two lower-case hexadecimal digits each and none 00";
    const std::string hex = at.text(kExpected);
    const std::string digits = "0123456789abcdef";
    if (hex.size() % 2 != 0)
        at.failExpected(kExpected);
    std::string bytes;
    for (std::size_t i = 0; i < hex.size(); i += 2) {
        const std::size_t high = digits.find(hex[i]), low = digits.find(hex[i + 1]);
        if (high == std::string::npos || low == std::string::npos || high + low == 0)
            at.failExpected(kExpected);
        bytes += static_cast<char>(high * 16 + low);
    }
    return bytes;
}

Json jsonOf(const qcValue& value, int depth)
{
    switch (value.kind) {
    case qcValue::Empty:
        return Json::array({Json::ofText("e")});
    case qcValue::Float:
        return tagged("f", componentJson(value.payload.number));
    case qcValue::Vector: {
        const qVector& v = value.payload.vector;
        return tagged("v", Json::array({componentJson(v[0]), componentJson(v[1]), componentJson(v[2])}));
    }
    case qcValue::String:
        return textJson(value.payload.text);
    case qcValue::List: {
        if (depth == kDeepestValue)
            throw InputError("it nests lists deeper than " + std::to_string(kDeepestValue) + " levels.");
        Json elements = Json::array();
        for (const qcValue* element = value.firstElement(); element; element = element->next)
            elements.add(jsonOf(*element, depth + 1));
        return tagged("l", std::move(elements));
    }
    default:
        throw InputError("it holds a value of unknown kind " + std::to_string(value.kind) + ".");
    }
}

qcValue valueAt(const JsonAt& at, int depth)
{
    constexpr const char* kExpected =
        "a value: [\"f\", number], [\"s\", text], [\"v\", [x, y, z]], [\"l\", [values]] or [\"e\"]";
    if (!at.isArray() || at.size() == 0 || !at.item(0).isText())
        at.failExpected(kExpected);
    const std::string tag = at.item(0).text();
    if (tag.size() != 1 || std::string("fsvlex").find(tag) == std::string::npos)
        at.item(0).failExpected("the kind of a value: \"f\", \"s\", \"v\", \"l\" or \"e\"");
    if (at.size() != (tag == "e" ? 1u : 2u))
        at.failExpected(kExpected);

    qcValue value;
    if (tag == "e")
        return value;
    const JsonAt content = at.item(1);
    if (tag == "f") {
        value.set(componentFrom(content));
    } else if (tag == "s") {
        value.set(content.text().c_str());
    } else if (tag == "x") {
        value.set(bytesFrom(content).c_str());
    } else if (tag == "v") {
        if (!content.isArray() || content.size() != 3)
            content.failExpected("an array of 3 numbers");
        const qVector vector(componentFrom(content.item(0)), componentFrom(content.item(1)),
                             componentFrom(content.item(2)));
        value.set(&vector);
    } else {
        if (depth == kDeepestValue)
            at.fail("lists are nested deeper than " + std::to_string(kDeepestValue) + " levels.");
        if (!content.isArray())
            content.failExpected("an array of values");
        value.setList(nullptr);
        qcValue* last = nullptr;
        for (std::size_t i = 0; i < content.size(); ++i) {
            auto* element = new qcValue(valueAt(content.item(i), depth + 1));
            if (last)
                last->next = element;
            else
                value.setList(element);
            last = element;
        }
    }
    return value;
}

}   // namespace

Json valueJson(const qcValue& value)
{
    return jsonOf(value, 0);
}

qcValue valueFrom(const JsonAt& at)
{
    return valueAt(at, 0);
}

Json propertiesJson(const qcObject& object, const std::string& objectName)
{
    Json properties = Json::object();
    for (int i = 0; i < object.getNumProperties(); ++i) {
        const std::string key = object.getPropertyKey(i);
        try {
            properties.add(key, valueJson(object.getPropertyValue(i)));
        } catch (const InputError& problem) {
            throw InputError(objectName + ": its property \"" + key + "\" cannot be saved: " + problem.what());
        }
    }
    return properties;
}

void setPropertiesFrom(const JsonAt& at, qcObject& object, bool allowNull)
{
    for (const JsonAt::Member& property : at.members("an object of properties")) {
        if (allowNull && property.at.isNull())
            object.removeProperty(property.key.c_str());
        else
            object.setProperty(property.key.c_str(), valueFrom(property.at));
    }
}
