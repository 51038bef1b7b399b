// Messages.
#include "Messages.h"

#include "qc/qcMessages.h"

#include <cstdio>

namespace {

int errors = 0;

// One message is one write: what others write in between cannot cut it.
void say(const char* kind, std::string text)
{
    while (!text.empty() && text.back() == '\n')
        text.pop_back();
    const std::string line = std::string("sstr: ") + kind + escaped(text) + "\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
}

void fromHost(qcMessageKind kind, const char* text, void*)
{
    errors += kind == qcError ? 1 : 0;   // first: it counts even where memory for its line runs out
    say(kind == qcError ? "error: " : "warning: ", text);
}

}   // namespace

void reportError(const std::string& text)
{
    ++errors;
    say("error: ", text);
}

void reportWarning(const std::string& text)
{
    say("warning: ", text);
}

void reportNote(const std::string& text)
{
    say("note: ", text);
}

int errorCount()
{
    return errors;
}

void forwardHostMessages()
{
    qcMessages::setSink(fromHost, nullptr);
}

std::string escaped(const std::string& text)
{
    static const char digits[] = "0123456789abcdef";
    std::string result;
    for (const char each : text) {
        const unsigned char c = static_cast<unsigned char>(each);
        if (c < 0x20 || c == 0x7f) {
            result += "\\x";
            result += digits[c >> 4];
            result += digits[c & 15];
        } else {
            result += each;
        }
    }
    return result;
}

std::string quoted(const std::string& text)
{
    constexpr std::size_t kLongest = 80;
    if (text.size() <= kLongest)
        return "\"" + escaped(text) + "\"";
    std::size_t end = kLongest;
    for (int i = 0; i < 3 && (static_cast<unsigned char>(text[end]) & 0xC0u) == 0x80u; ++i)
        --end;   // a character of UTF-8 has at most three bytes that go on with it
    return "\"" + escaped(text.substr(0, end)) + "…\"";
}
