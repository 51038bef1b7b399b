// Messages.
#include "Messages.h"

#include "qc/qcMessages.h"

#include <cstdio>

namespace {

int errors = 0;

// One message is one write: what others write in between cannot cut it.
void say(const char* kind, const std::string& text)
{
    std::string line = "sstr: ";
    line += kind;
    line += text;
    while (line.back() == '\n')
        line.pop_back();
    line += '\n';
    std::fwrite(line.data(), 1, line.size(), stderr);
}

void fromHost(qcMessageKind kind, const char* text, void*)
{
    if (kind == qcError)
        reportError(text);
    else
        reportWarning(text);
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

std::string quoted(const std::string& text)
{
    constexpr std::size_t kLongest = 80;
    static const char digits[] = "0123456789abcdef";
    std::string result = "\"";
    for (std::size_t i = 0; i < text.size() && i < kLongest; ++i) {
        const unsigned char c = static_cast<unsigned char>(text[i]);
        if (c < 0x20 || c == 0x7f) {
            result += "\\x";
            result += digits[c >> 4];
            result += digits[c & 15];
        } else {
            result += text[i];
        }
    }
    return result + (text.size() > kLongest ? "…\"" : "\"");
}
