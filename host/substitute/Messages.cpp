// Messages: to a sink, or to standard error.
#include "qc/qcMessages.h"

#include <cstdarg>
#include <cstdio>
#include <string>

namespace {

qcMessages::Sink currentSink = nullptr;
void* currentSinkData = nullptr;

std::string formatted(const char* format, va_list arguments)
{
    va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    std::string text(static_cast<std::size_t>(length < 0 ? 0 : length), '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, again);
    va_end(again);
    return text;
}

void deliver(qcMessageKind kind, const std::string& text)
{
    if (currentSink) {
        currentSink(kind, text.c_str(), currentSinkData);
        return;
    }
    const bool endsLine = !text.empty() && text.back() == '\n';
    std::fprintf(stderr, "%s: %s%s", kind == qcError ? "error" : "warning", text.c_str(), endsLine ? "" : "\n");
}

}   // namespace

int error(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    deliver(qcError, formatted(format, arguments));
    va_end(arguments);
    return 0;
}

int warning(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    deliver(qcWarning, formatted(format, arguments));
    va_end(arguments);
    return 0;
}

void qcMessages::setSink(Sink sink, void* data)
{
    currentSink = sink;
    currentSinkData = data;
}
