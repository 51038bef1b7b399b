// JSON tree: what a JSON text says, in its order, and the text of a tree.
#pragma once

#include <memory>
#include <string>
#include <vector>

/// A JSON value. The members of an object keep their order. Most values of a large file are numbers, so that
/// these take no more memory than they need.
class Json {
public:
    enum class Kind { Null, Boolean, Number, Text, Array, Object };

    Json() = default;
    Json(const Json& other);
    Json(Json&&) noexcept = default;
    Json& operator=(const Json& other);
    Json& operator=(Json&&) noexcept = default;
    ~Json() = default;

    static Json ofNumber(double value);
    static Json ofText(const std::string& value);
    static Json ofBoolean(bool value);
    static Json array(std::vector<Json> elements = {});
    static Json object();

    Kind kind = Kind::Null;
    double number = 0;   // of a number; 0 or 1 of a boolean

    const std::string& text() const { return content().text; }                // UTF-8
    const std::vector<Json>& items() const { return content().items; }        // of an array or an object
    const std::vector<std::string>& keys() const { return content().keys; }   // of an object, one an item

    /// Each returns the new last item.
    Json& add(Json element);
    Json& add(const std::string& key, Json member);

    /// The member of that key; null when there is none.
    const Json* find(const std::string& key) const;

private:
    struct Content {
        std::string text;
        std::vector<Json> items;
        std::vector<std::string> keys;
    };

    const Content& content() const;
    Content& ownContent();

    std::unique_ptr<Content> whole;   // null: a number, or nothing in it
};

/// The text of a tree, ready for a file: short things on one line, a row of numbers on one line.
/// @throws InputError when a text is no UTF-8 or a number is not finite
std::string jsonText(const Json& json);

/// Throws what jsonText() would, without making the text.
void requireWritable(const Json& json);

/// The shortest decimal text that reads as the very same double; -0 keeps its sign.
std::string numberText(double value);

/// Whether a text can stand in a JSON file as it is.
bool isUtf8(const std::string& text);
