// Message number: a number in a message, with a decimal point whatever the process's locale is.
#pragma once

#include <charconv>
#include <string>

/// A number as the C locale's "%g" writes it: at most six digits.
inline std::string messageNumber(double number)
{
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, number, std::chars_format::general, 6);
    return {text, end.ptr};
}
