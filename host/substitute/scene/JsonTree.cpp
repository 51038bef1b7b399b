// JSON tree.
#include "JsonTree.h"

#include "Files.h"
#include "InputError.h"

#include <charconv>
#include <cmath>
#include <cstdio>

namespace {

constexpr std::size_t kLineWidth = 100;   // what fits stands on one line
constexpr std::size_t kIndent = 2;

void requireUtf8(const std::string& text)
{
    if (!isUtf8(text))
        throw InputError("the text " + inQuotes(text) + " cannot be written: it is no UTF-8.");
}

void requireFinite(double value)
{
    if (!std::isfinite(value))
        throw InputError("a number that is not finite cannot be written.");
}

void appendQuoted(std::string& out, const std::string& text)
{
    requireUtf8(text);
    out += '"';
    for (const char c : text) {
        switch (c) {
        case '"':
            out += "\\\"";
            break;
        case '\\':
            out += "\\\\";
            break;
        case '\n':
            out += "\\n";
            break;
        case '\t':
            out += "\\t";
            break;
        default:
            if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) {
                char escaped[8];
                std::snprintf(escaped, sizeof escaped, "\\u%04x", unsigned(static_cast<unsigned char>(c)));
                out += escaped;
            } else {
                out += c;
            }
        }
    }
    out += '"';
}

void appendScalar(std::string& out, const Json& json)
{
    if (json.kind == Json::Kind::Number)
        out += numberText(json.number);
    else if (json.kind == Json::Kind::Text)
        appendQuoted(out, json.text());
    else
        out += json.kind == Json::Kind::Null ? "null" : json.number != 0 ? "true" : "false";
}

bool isContainer(const Json& json)
{
    return json.kind == Json::Kind::Array || json.kind == Json::Kind::Object;
}

bool isRowOfNumbers(const Json& json)
{
    if (json.kind != Json::Kind::Array)
        return false;
    for (const Json& item : json.items())
        if (item.kind != Json::Kind::Number)
            return false;
    return true;
}

// Appends the value on one line. Gives up, false, once the text grows beyond the end.
bool appendOnOneLine(std::string& out, const Json& json, std::size_t end)
{
    if (!isContainer(json)) {
        appendScalar(out, json);
        return out.size() <= end;
    }
    const bool isObject = json.kind == Json::Kind::Object;
    out += isObject ? '{' : '[';
    for (std::size_t i = 0; i < json.items().size(); ++i) {
        if (i > 0)
            out += ", ";
        if (isObject) {
            appendQuoted(out, json.keys()[i]);
            out += ": ";
        }
        if (!appendOnOneLine(out, json.items()[i], end))
            return false;
    }
    out += isObject ? '}' : ']';
    return out.size() <= end;
}

void append(std::string& out, const Json& json, std::size_t indent, std::size_t lineStart)
{
    const std::size_t begin = out.size();
    const std::size_t end = isRowOfNumbers(json) || !isContainer(json) ? std::string::npos : lineStart + kLineWidth;
    if (appendOnOneLine(out, json, end))
        return;
    out.resize(begin);

    const bool isObject = json.kind == Json::Kind::Object;
    out += isObject ? '{' : '[';
    for (std::size_t i = 0; i < json.items().size(); ++i) {
        out += i > 0 ? ",\n" : "\n";
        const std::size_t itemStart = out.size();
        out.append(indent + kIndent, ' ');
        if (isObject) {
            appendQuoted(out, json.keys()[i]);
            out += ": ";
        }
        append(out, json.items()[i], indent + kIndent, itemStart);
    }
    out += '\n';
    out.append(indent, ' ');
    out += isObject ? '}' : ']';
}

}   // namespace

Json::Json(const Json& other)
    : kind(other.kind), number(other.number), whole(other.whole ? std::make_unique<Content>(*other.whole) : nullptr)
{}

Json& Json::operator=(const Json& other)
{
    Json copy(other);
    return *this = std::move(copy);
}

const Json::Content& Json::content() const
{
    static const Content nothing{};
    return whole ? *whole : nothing;
}

Json::Content& Json::ownContent()
{
    if (!whole)
        whole = std::make_unique<Content>();
    return *whole;
}

Json Json::ofNumber(double value)
{
    Json json;
    json.kind = Kind::Number;
    json.number = value;
    return json;
}

Json Json::ofText(const std::string& value)
{
    Json json;
    json.kind = Kind::Text;
    json.ownContent().text = value;
    return json;
}

Json Json::ofBoolean(bool value)
{
    Json json;
    json.kind = Kind::Boolean;
    json.number = value ? 1 : 0;
    return json;
}

Json Json::array(std::vector<Json> elements)
{
    Json json;
    json.kind = Kind::Array;
    if (!elements.empty())
        json.ownContent().items = std::move(elements);
    return json;
}

Json Json::object()
{
    Json json;
    json.kind = Kind::Object;
    return json;
}

Json& Json::add(Json element)
{
    return ownContent().items.emplace_back(std::move(element));
}

Json& Json::add(const std::string& key, Json member)
{
    ownContent().keys.push_back(key);
    return add(std::move(member));
}

const Json* Json::find(const std::string& key) const
{
    for (std::size_t i = 0; i < keys().size(); ++i)
        if (keys()[i] == key)
            return &items()[i];
    return nullptr;
}

std::string jsonText(const Json& json)
{
    std::string text;
    append(text, json, 0, 0);
    return text + "\n";
}

void requireWritable(const Json& json)
{
    if (json.kind == Json::Kind::Number)
        requireFinite(json.number);
    requireUtf8(json.text());
    for (std::size_t i = 0; i < json.items().size(); ++i) {
        if (i < json.keys().size())
            requireUtf8(json.keys()[i]);
        requireWritable(json.items()[i]);
    }
}

std::string numberText(double value)
{
    requireFinite(value);
    if (value == 0)
        return std::signbit(value) ? "-0.0" : "0";
    char digits[32];
    const auto end = std::to_chars(digits, digits + sizeof digits, value);
    return {digits, end.ptr};
}

// Well-formed as Unicode has it: shortest forms only, no surrogates, nothing above U+10FFFF.
bool isUtf8(const std::string& text)
{
    const auto byte = [&](std::size_t i) { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0u; };
    for (std::size_t i = 0; i < text.size();) {
        const unsigned first = byte(i), second = byte(i + 1);
        std::size_t length = 1;
        if (first >= 0x80) {
            length = first >= 0xc2 && first <= 0xdf   ? 2
                     : first >= 0xe0 && first <= 0xef ? 3
                     : first >= 0xf0 && first <= 0xf4 ? 4
                                                      : 0;
            const bool secondFits = !(first == 0xe0 && second < 0xa0) && !(first == 0xed && second > 0x9f)
                                    && !(first == 0xf0 && second < 0x90) && !(first == 0xf4 && second > 0x8f);
            if (length == 0 || !secondFits)
                return false;
            for (std::size_t k = 1; k < length; ++k)
                if ((byte(i + k) & 0xc0) != 0x80)
                    return false;
        }
        i += length;
    }
    return true;
}
