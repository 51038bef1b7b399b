// Odd names: what somebody may call a figure, a part or a property.
#pragma once

#include <string>
#include <vector>

/// Texts of UTF-8 without a null character. Among them are beginnings of one another, and two that look the same.
inline std::vector<std::string> oddNames()
{
    return {"",
            ".",
            "a.b",
            "..x..",
            " ",
            "two words",
            " blanks around ",
            "\"double\"",
            "'single'",
            "back\\slash\\",
            "tab\tand\vother\x7f",
            "line\nbreak\r\n",
            "comma,semicolon;",
            "h\xC3\xBC"
            "fte",
            "\xC3\xA9",    // e with acute
            "e\xCC\x81",   // e, then a combining acute
            "\xE6\x97\xA5\xE6\x9C\xAC",
            "\xF0\x9F\x98\x80",
            "100%",
            "%s%n%d%5$s%",
            "a",
            "aa",
            "aaa",
            "NULL",
            "{}[]<>&~/0",
            std::string(100000, 'k'),
            std::string(99999, 'k') + "K"};
}
