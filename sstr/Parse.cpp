// Parsing of option values.
#include "Parse.h"

#include "Messages.h"

#include <charconv>
#include <cmath>

namespace {

// Why a text is no number; empty when it is one.
template <class Number> std::string readNumber(const std::string& text, Number& number)
{
    const char* begin = text.data();
    const char* end = begin + text.size();
    if (text.size() > 1 && text[0] == '+' && text[1] != '-' && text[1] != '+')
        ++begin;
    const auto [rest, problem] = std::from_chars(begin, end, number);
    if (problem == std::errc::result_out_of_range)
        return "a number of a size that can be computed with";
    if (problem != std::errc() || rest != end)
        return "a decimal number such as 2.5";
    if (!std::isfinite(number))
        return "a finite number";
    return "";
}

template <class Number> std::optional<Number> parse(const std::string& option, const std::string& text)
{
    Number number{};
    const std::string expected = readNumber(text, number);
    if (expected.empty())
        return number;
    reportError(option + ": expected " + expected + ", found " + quoted(text) + ".");
    return std::nullopt;
}

std::vector<std::string> split(const std::string& text, char separator)
{
    std::vector<std::string> parts;
    std::size_t begin = 0;
    for (;;) {
        const std::size_t end = text.find(separator, begin);
        parts.push_back(text.substr(begin, end - begin));
        if (end == std::string::npos)
            return parts;
        begin = end + 1;
    }
}

constexpr const char* kOffsetForm = "SITE@ox,oy,oz=x,y,z (kgf), local:SITE@ox,oy,oz=x,y,z (kgf) or "
                                    "SITE@ox,oy,oz=GRAMSg, the offset in cm";

}   // namespace

std::optional<double> parseNumber(const std::string& option, const std::string& text)
{
    return parse<double>(option, text);
}

std::optional<std::vector<double>> parseNumbers(const std::string& option, const std::string& text)
{
    std::vector<double> numbers;
    for (const std::string& part : split(text, ',')) {
        const std::optional<double> number = parse<double>(option, part);
        if (!number)
            return std::nullopt;
        numbers.push_back(*number);
    }
    return numbers;
}

std::optional<qVector> parseVector(const std::string& option, const std::string& text, const std::string& what)
{
    const std::vector<std::string> parts = split(text, ',');
    if (parts.size() != 3) {
        reportError(option + ": expected three numbers x,y,z (" + what + "), found " + quoted(text) + ".");
        return std::nullopt;
    }
    qVector vector;
    for (int i = 0; i < 3; ++i) {
        const std::optional<float> number = parse<float>(option, parts[static_cast<std::size_t>(i)]);
        if (!number)
            return std::nullopt;
        vector[i] = *number;
    }
    return vector;
}

std::optional<Assignment> parseAssignment(const std::string& option, const std::string& text, const std::string& form)
{
    const std::size_t equals = text.rfind('=');
    if (equals == std::string::npos || equals == 0 || equals + 1 == text.size()) {
        reportError(option + ": expected " + form + ", found " + quoted(text) + ".");
        return std::nullopt;
    }
    return Assignment{text.substr(0, equals), text.substr(equals + 1)};
}

std::optional<float> parseWeight(const std::string& option, const std::string& text)
{
    const std::optional<float> weight = parse<float>(option, text);
    if (!weight || *weight >= 0)
        return weight;
    reportError(option + ": expected a weight of 0 g or more, found " + quoted(text)
                + "; what pulls upwards is a force.");
    return std::nullopt;
}

std::optional<OffsetLoadText> parseOffsetLoad(const std::string& option, const std::string& text)
{
    const std::optional<Assignment> parts = parseAssignment(option, text, kOffsetForm);
    if (!parts)
        return std::nullopt;
    const std::size_t at = parts->name.rfind('@');
    OffsetLoadText load;
    load.site = parts->name.substr(0, at);
    const std::string prefix = "local:";
    if (load.site.compare(0, prefix.size(), prefix) == 0) {
        load.local = true;
        load.site.erase(0, prefix.size());
    }
    if (at == std::string::npos || load.site.empty()) {
        reportError(option + ": expected " + kOffsetForm + ", found " + quoted(text) + ".");
        return std::nullopt;
    }
    const std::string where = option + " " + load.site;
    const std::optional<qVector> offset = parseVector(where, parts->name.substr(at + 1), "the offset, cm");
    if (!offset)
        return std::nullopt;
    load.offset = *offset;

    load.isWeight = parts->value.find(',') == std::string::npos;
    if (!load.isWeight) {
        const std::optional<qVector> force = parseVector(where, parts->value, "the force, kgf");
        load.force = force.value_or(qVector());
        return force ? std::optional(load) : std::nullopt;
    }
    if (parts->value.back() != 'g' || load.local) {
        reportError(
            where + ": expected a force x,y,z in kgf"
            + (load.local ? std::string(", for local: takes no weight") : std::string(" or a weight like 2500g"))
            + ", found " + quoted(parts->value) + ".");
        return std::nullopt;
    }
    const std::optional<float> weight = parseWeight(where, parts->value.substr(0, parts->value.size() - 1));
    load.weight = weight.value_or(0.0f);
    return weight ? std::optional(load) : std::nullopt;
}
