// Messages: to a sink, or to standard error.
#include "qc/qcMessages.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <locale.h>
#include <memory>
#include <new>

namespace {

qcMessages::Sink currentSink = nullptr;
void* currentSinkData = nullptr;

constexpr std::size_t kUsualLength = 1024;   // bytes with the final zero: a longer text takes memory from the heap

// A sink that lacks the memory to keep a text must not lose it.
bool tellSink(qcMessageKind kind, const char* text)
{
    if (!currentSink)
        return false;
    try {
        currentSink(kind, text, currentSinkData);
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

void deliver(qcMessageKind kind, const char* text)
{
    if (tellSink(kind, text))
        return;
    const std::size_t length = std::strlen(text);
    const bool endsLine = length > 0 && text[length - 1] == '\n';
    std::fprintf(stderr, "%s: %s%s", kind == qcError ? "error" : "warning", text, endsLine ? "" : "\n");
}

// Numbers have a decimal point whatever the process's locale is.
locale_t pointLocale()
{
    static const locale_t made = newlocale(LC_ALL_MASK, "C", nullptr);
    return made;
}

void report(qcMessageKind kind, const char* format, va_list arguments)
{
    const locale_t callers = uselocale(pointLocale());
    va_list again;
    va_copy(again, arguments);
    char usual[kUsualLength] = "";
    const int length = std::vsnprintf(usual, sizeof usual, format, arguments);
    const std::size_t size = length < 0 ? 1 : static_cast<std::size_t>(length) + 1;
    const std::unique_ptr<char[]> whole(size > sizeof usual ? new (std::nothrow) char[size] : nullptr);
    if (whole)
        std::vsnprintf(whole.get(), size, format, again);
    va_end(again);
    uselocale(callers);
    deliver(kind, whole ? whole.get() : usual);
}

}   // namespace

int error(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    report(qcError, format, arguments);
    va_end(arguments);
    return 0;
}

int warning(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    report(qcWarning, format, arguments);
    va_end(arguments);
    return 0;
}

void qcMessages::setSink(Sink sink, void* data)
{
    currentSink = sink;
    currentSinkData = data;
}
