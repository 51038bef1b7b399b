// Print: the program's result, on standard output.
#include "Commands.h"
#include "Messages.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

int print(const std::string& text)
{
    const bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
    if (std::fflush(stdout) == 0 && written)
        return 1;
    reportError(std::string("cannot write to standard output: ") + std::strerror(errno) + ".");
    return 0;
}
