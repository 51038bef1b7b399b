// JSON reader: a JSON text, and where in it one is, so that every message names the place.
#pragma once

#include "JsonTree.h"

#include "qc/qVector.h"

#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// A place in a JSON text. Everything asked of it that does not hold throws InputError:
/// "lift.json: /humans/0/name: expected a text, found 3." The tree and the source's name must outlive it.
class JsonAt {
public:
    JsonAt(const Json& json, const std::string& sourceName) : node(&json), source(&sourceName) {}

    [[noreturn]] void fail(const std::string& problem) const;            ///< @param problem  a whole sentence
    [[noreturn]] void failExpected(const std::string& expected) const;   ///< "expected …, found …."

    bool isNull() const { return node->kind == Json::Kind::Null; }
    bool isText() const { return node->kind == Json::Kind::Text; }
    bool isNumber() const { return node->kind == Json::Kind::Number; }
    bool isArray() const { return node->kind == Json::Kind::Array; }
    bool isObject() const { return node->kind == Json::Kind::Object; }

    std::string text(const char* expected = "a text") const;   ///< without a null character
    double number(const char* expected = "a number") const;    ///< finite
    float real(const char* expected = "a number") const;       ///< finite in single precision too
    bool boolean() const;
    qVector vector() const;   ///< an array of three numbers

    /// An array's elements.
    std::vector<JsonAt> elements(const char* expected = "an array") const;

    /// Requires an object whose keys are all among the given ones.
    void requireKeys(std::initializer_list<const char*> known) const;
    JsonAt member(const std::string& key) const;
    std::optional<JsonAt> find(const std::string& key) const;   ///< nothing also for no object

    /// An object's members, whatever their keys.
    struct Member;
    std::vector<Member> members(const char* expected = "an object") const;

    /// An element of an array, or a member of an object, that is known to be there.
    JsonAt item(std::size_t i) const;
    std::size_t size() const { return node->items().size(); }

private:
    /// The last step of a path. Only a message needs its text, which may be long.
    struct Step {
        std::shared_ptr<const Step> before;   // null: the root
        const std::string* key;               // in the tree; null for an element of an array
        std::size_t index;
    };

    JsonAt inner(const Json& json, const std::string* key, std::size_t index) const;
    std::string path() const;

    const Json* node;
    const std::string* source;
    std::shared_ptr<const Step> step;   // null: the root
};

struct JsonAt::Member {
    std::string key;   // without a null character
    JsonAt at;
};

/// Whether a number stays finite when it is narrowed to single precision.
bool fitsReal(double number);

/// Parses a JSON text.
/// @throws InputError when it is no JSON, has a key twice in one object, a number beyond double
///         precision, or is nested absurdly deep
Json parseJson(const std::string& text, const std::string& source);
