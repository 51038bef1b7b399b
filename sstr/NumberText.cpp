// Numbers as text.
#include "NumberText.h"

#include <charconv>
#include <cmath>

namespace {

template <class Number> std::string shortestOf(Number number)
{
    char buffer[64];
    return {buffer, std::to_chars(buffer, buffer + sizeof buffer, number).ptr};
}

}   // namespace

std::string shortest(float number)
{
    return shortestOf(number);
}

std::string shortest(double number)
{
    return shortestOf(number);
}

std::string fixed(double number, int decimals)
{
    char buffer[512];   // the largest double has 309 digits before the point
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, number, std::chars_format::fixed, decimals).ptr;
    std::string text(buffer, end);
    const bool zero = text.find_first_not_of("-0.") == std::string::npos;
    return zero && text.front() == '-' ? text.substr(1) : text;
}

std::string fixedOrNot(double number, int decimals)
{
    return std::isfinite(number) ? fixed(number, decimals) : "not finite";
}

std::string vectorText(const qVector& vector, int decimals)
{
    return "(" + fixedOrNot(double(vector[0]), decimals) + ", " + fixedOrNot(double(vector[1]), decimals) + ", "
           + fixedOrNot(double(vector[2]), decimals) + ")";
}

std::vector<std::string> componentTexts(const qVector& vector, int decimals)
{
    std::vector<std::string> texts;
    for (const float value : {vector[0], vector[1], vector[2], vector.mag()})
        texts.push_back(fixedOrNot(double(value), decimals));
    return texts;
}

double asPrinted(float number)
{
    const std::string text = shortestOf(number);
    double printed = 0;
    std::from_chars(text.data(), text.data() + text.size(), printed);
    return static_cast<float>(printed) == number ? printed : double(number);
}
