// JSON reader.
#include "JsonReader.h"

#include "Files.h"
#include "InputError.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <unordered_set>

namespace {

// A hundred nested lists of a property take two levels each; the rest is room for what they lie in.
constexpr std::size_t kDeepest = 250;
constexpr std::size_t kMostValues = 20'000'000;   // about 1 GB as a tree; a posed chain of 100 000 segments has 14

// A key as a step of a JSON path: "~" and "/" are escaped as JSON Pointer has it (RFC 6901).
std::string pathStep(const std::string& key)
{
    std::string step = "/";
    for (const char c : key)
        step += c == '~' ? "~0" : c == '/' ? "~1" : std::string(1, c);
    return step;
}

std::string placed(const std::string& source, const std::string& path, const std::string& problem)
{
    return source + ": " + (path.empty() ? "" : path + ": ") + problem;
}

std::string described(const Json& json)
{
    switch (json.kind) {
    case Json::Kind::Null:
        return "null";
    case Json::Kind::Boolean:
        return json.number != 0 ? "true" : "false";
    case Json::Kind::Number:
        return numberText(json.number);
    case Json::Kind::Text:
        return inQuotes(json.text());
    case Json::Kind::Array:
        return json.items().size() == 1 ? "an array of 1 element"
                                        : "an array of " + std::to_string(json.items().size()) + " elements";
    case Json::Kind::Object:
        break;
    }
    return "an object";
}

// Builds the tree from the parser's events. The open containers are the last items of one another,
// so that pointers to them stay good while the innermost grows.
class TreeBuilder : public nlohmann::json_sax<nlohmann::json> {
public:
    TreeBuilder(Json& tree, const std::string& jsonText, const std::string& sourceName)
        : root(tree), text(jsonText), source(sourceName)
    {}

    bool null() override { return put({}); }
    bool boolean(bool value) override { return put(Json::ofBoolean(value)); }
    bool number_integer(number_integer_t value) override { return put(Json::ofNumber(static_cast<double>(value))); }
    bool number_unsigned(number_unsigned_t value) override { return put(Json::ofNumber(static_cast<double>(value))); }
    bool number_float(number_float_t value, const string_t&) override { return put(Json::ofNumber(value)); }
    bool string(string_t& value) override { return put(Json::ofText(value)); }
    bool binary(binary_t&) override { return false; }   // no such thing in a text
    bool start_object(std::size_t) override { return open(Json::object()); }
    bool end_object() override { return close(); }
    bool start_array(std::size_t) override { return open(Json::array()); }
    bool end_array() override { return close(); }

    bool key(string_t& value) override
    {
        Level& level = levels.back();
        if (!level.keys.insert(value).second)
            throw InputError(placed(source, path() + pathStep(value), "this key stands twice in its object."));
        level.key = value;
        return true;
    }

    bool parse_error(std::size_t position, const std::string& token, const nlohmann::json::exception& problem) override
    {
        constexpr int kNumberOverflow = 406;
        if (problem.id == kNumberOverflow)
            throw InputError(placed(source, pathOfNext(), "expected a finite number, found " + token + "."));
        std::string why = problem.what();
        const std::size_t column = why.find("column ");
        const std::size_t colon = column == std::string::npos ? column : why.find(": ", column);
        if (colon != std::string::npos)
            why.erase(0, colon + 2);
        const std::size_t null = text.find('\0');
        if (null != std::string::npos && null + 1 == position && why.find("end of input") != std::string::npos)
            failAtNull(null);
        failAt(position, why);
    }

    // The parser takes a null byte for the end of the text, and what stands behind it would be passed over.
    void checkWhole() const
    {
        const std::size_t null = text.find('\0');
        if (null != std::string::npos)
            failAtNull(null);
    }

private:
    struct Level {
        Json* container;
        std::string key;                        // of the member that comes or came last
        std::unordered_set<std::string> keys;   // seen in this object
    };

    [[noreturn]] void failAt(std::size_t position, const std::string& found) const
    {
        const auto end = text.begin() + static_cast<std::ptrdiff_t>(std::min(position, text.size()));
        throw InputError(source + ":" + std::to_string(1 + std::count(text.begin(), end, '\n'))
                         + ": expected JSON, found a " + found + ".");
    }

    [[noreturn]] void failAtNull(std::size_t position) const { failAt(position, "null byte"); }

    bool put(Json value)
    {
        place(std::move(value));
        return true;
    }

    bool open(Json container)
    {
        if (levels.size() == kDeepest)
            throw InputError(placed(source, "", "it is nested deeper than " + std::to_string(kDeepest) + " levels."));
        Json* placedContainer = place(std::move(container));
        levels.push_back({placedContainer, "", {}});
        return true;
    }

    bool close()
    {
        levels.pop_back();
        return true;
    }

    Json* place(Json value)
    {
        if (++count > kMostValues)
            throw InputError(placed(source, "", "it holds more than " + std::to_string(kMostValues) + " values."));
        if (levels.empty()) {
            root = std::move(value);
            return &root;
        }
        Json& parent = *levels.back().container;
        return parent.kind == Json::Kind::Object ? &parent.add(levels.back().key, std::move(value))
                                                 : &parent.add(std::move(value));
    }

    std::string path() const
    {
        std::string steps;
        for (std::size_t i = 0; i + 1 < levels.size(); ++i)
            steps += levels[i].container->kind == Json::Kind::Object
                         ? pathStep(levels[i].key)
                         : "/" + std::to_string(levels[i].container->items().size() - 1);
        return steps;
    }

    std::string pathOfNext() const
    {
        if (levels.empty())
            return "";
        const Level& level = levels.back();
        return path()
               + (level.container->kind == Json::Kind::Object ? pathStep(level.key)
                                                              : "/" + std::to_string(level.container->items().size()));
    }

    Json& root;
    const std::string& text;
    const std::string& source;
    std::vector<Level> levels;
    std::size_t count = 0;
};

bool hasNull(const std::string& text)
{
    return text.find('\0') != std::string::npos;
}

}   // namespace

JsonAt JsonAt::inner(const Json& json, const std::string* key, std::size_t index) const
{
    JsonAt at(json, *source);
    at.step = std::make_shared<const Step>(Step{step, key, index});
    return at;
}

std::string JsonAt::path() const
{
    std::vector<const Step*> steps;
    for (const Step* each = step.get(); each; each = each->before.get())
        steps.push_back(each);
    std::string text;
    for (auto each = steps.rbegin(); each != steps.rend(); ++each)
        text += (*each)->key ? pathStep(*(*each)->key) : "/" + std::to_string((*each)->index);
    return text;
}

void JsonAt::fail(const std::string& problem) const
{
    throw InputError(placed(*source, path(), problem));
}

void JsonAt::failExpected(const std::string& expected) const
{
    fail("expected " + expected + ", found " + described(*node) + ".");
}

std::string JsonAt::text(const char* expected) const
{
    if (!isText())
        failExpected(expected);
    if (hasNull(node->text()))
        fail("expected a text without a null character, found " + inQuotes(node->text()) + ".");
    return node->text();
}

double JsonAt::number(const char* expected) const
{
    if (!isNumber())
        failExpected(expected);
    return node->number;   // finite: the parser takes no other
}

float JsonAt::real(const char* expected) const
{
    const double value = number(expected);
    if (!fitsReal(value))
        fail("expected a number of at most 3.4028235e+38 in magnitude (single precision), found " + numberText(value)
             + ".");
    return static_cast<float>(value);
}

bool JsonAt::boolean() const
{
    if (node->kind != Json::Kind::Boolean)
        failExpected("true or false");
    return node->number != 0;
}

qVector JsonAt::vector() const
{
    if (!isArray() || size() != 3)
        failExpected("an array of 3 numbers");
    return {item(0).real(), item(1).real(), item(2).real()};
}

std::vector<JsonAt> JsonAt::elements(const char* expected) const
{
    if (!isArray())
        failExpected(expected);
    std::vector<JsonAt> all;
    all.reserve(size());
    for (std::size_t i = 0; i < size(); ++i)
        all.push_back(item(i));
    return all;
}

void JsonAt::requireKeys(std::initializer_list<const char*> known) const
{
    if (!isObject())
        failExpected("an object");
    const std::vector<std::string> names(known.begin(), known.end());
    for (std::size_t i = 0; i < size(); ++i) {
        const std::string& key = node->keys()[i];
        if (std::find(names.begin(), names.end(), key) != names.end())
            continue;
        std::string help = closeNames(key, names);
        if (help.empty()) {
            help = " Expected one of: ";
            for (const std::string& name : names)
                help += (name == names.front() ? "" : ", ") + name;
            help += ".";
        }
        item(i).fail("unknown key." + help);
    }
}

JsonAt JsonAt::member(const std::string& key) const
{
    if (!isObject())
        failExpected("an object");
    if (const auto found = find(key))
        return *found;
    fail("the key \"" + key + "\" is missing.");
}

std::optional<JsonAt> JsonAt::find(const std::string& key) const
{
    const Json* found = node->find(key);
    if (!found)
        return std::nullopt;
    const std::size_t index = static_cast<std::size_t>(found - node->items().data());
    return inner(*found, &node->keys()[index], index);
}

std::vector<JsonAt::Member> JsonAt::members(const char* expected) const
{
    if (!isObject())
        failExpected(expected);
    std::vector<Member> all;
    all.reserve(size());
    for (std::size_t i = 0; i < size(); ++i) {
        if (hasNull(node->keys()[i]))
            fail("expected keys without a null character, found " + inQuotes(node->keys()[i]) + ".");
        all.push_back({node->keys()[i], item(i)});
    }
    return all;
}

JsonAt JsonAt::item(std::size_t i) const
{
    return inner(node->items()[i], isObject() ? &node->keys()[i] : nullptr, i);
}

bool fitsReal(double number)
{
    // halfway between the largest float and the next power of two: from here on, narrowing overflows
    constexpr double kTooLarge = 0x1.ffffffp+127;
    return std::fabs(number) < kTooLarge;
}

Json parseJson(const std::string& text, const std::string& source)
{
    if (text.find_first_not_of(" \t\r\n") == std::string::npos)
        throw InputError(source + ": expected JSON, found nothing.");
    Json tree;
    TreeBuilder builder(tree, text, source);
    nlohmann::json::sax_parse(text, &builder);
    builder.checkWhole();
    return tree;
}
