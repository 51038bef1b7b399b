// JSON tree: what a JSON text says, in its order, and the text of a tree.
#pragma once

#include <string>
#include <vector>

/// A JSON value. The members of an object keep their order.
struct Json {
    enum class Kind { Null, Boolean, Number, Text, Array, Object };

    Kind kind = Kind::Null;
    double number = 0;               // of a number; 0 or 1 of a boolean
    std::string text;                // UTF-8
    std::vector<Json> items;         // of an array or an object
    std::vector<std::string> keys;   // of an object, one an item

    static Json ofNumber(double value);
    static Json ofText(const std::string& value);
    static Json ofBoolean(bool value);
    static Json array(std::vector<Json> elements = {});
    static Json object();

    void add(Json element) { items.push_back(std::move(element)); }
    void add(const std::string& key, Json member);

    /// The member of that key; null when there is none.
    const Json* find(const std::string& key) const;
};

/// The text of a tree, ready for a file: short things on one line, a row of numbers on one line.
/// @throws InputError when a text is no UTF-8 or a number is not finite
std::string jsonText(const Json& json);

/// The shortest decimal text that reads as the very same double; -0 keeps its sign.
std::string numberText(double value);

/// Whether a text can stand in a JSON file as it is.
bool isUtf8(const std::string& text);
