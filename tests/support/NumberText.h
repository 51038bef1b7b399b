// Number texts: how tests write and read numbers, with a decimal point whatever the process's locale is.
#pragma once

#include <charconv>
#include <cmath>
#include <locale.h>
#include <stdexcept>
#include <string>

/// As the C locale's "%.9g" (or %.*f, by the format): nine digits tell every float apart.
inline std::string numberText(double number, int digits = 9, std::chars_format format = std::chars_format::general)
{
    char text[512];   // the largest double has 309 digits before the point
    const auto end = std::to_chars(text, text + sizeof text, number, format, digits);
    return {text, end.ptr};
}

/// As the C locale's "%a": 0x1.8p+1.
inline std::string hexadecimalText(double number)
{
    char text[64];
    const auto end = std::to_chars(text, text + sizeof text, std::fabs(number), std::chars_format::hex);
    return (std::signbit(number) ? "-" : "") + std::string(std::isfinite(number) ? "0x" : "")
           + std::string(text, end.ptr);
}

/// The number that a whole text is, rounded once.
/// @throws std::invalid_argument when it is none
template <class Number> Number numberIn(const std::string& text)
{
    Number number = 0;
    const char* const textEnd = text.data() + text.size();
    const auto end = std::from_chars(text.data(), textEnd, number);
    if (end.ec != std::errc() || end.ptr != textEnd)
        throw std::invalid_argument("expected a number, found \"" + text + "\"");
    return number;
}

/// While it lives the calling thread's C library, its scans too, works as in the C locale.
class StandardLocale {
public:
    StandardLocale() : standard(newlocale(LC_ALL_MASK, "C", nullptr)), before(uselocale(standard)) {}
    ~StandardLocale()
    {
        uselocale(before);
        freelocale(standard);
    }
    StandardLocale(const StandardLocale&) = delete;
    StandardLocale& operator=(const StandardLocale&) = delete;

private:
    locale_t standard, before;
};
