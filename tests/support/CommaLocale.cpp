// Comma locale: loaded into a process before all else (LD_PRELOAD), it makes a German locale that process's, whose
// numbers have a decimal comma. The whole test suite runs so, its programs and interpreters too.
#include <clocale>
#include <cstdio>
#include <cstdlib>

namespace {

__attribute__((constructor)) void speakGerman()
{
    const char* const name = "de_DE.UTF-8";
    if (std::setlocale(LC_ALL, name) && std::localeconv()->decimal_point[0] == ',')
        return;
    // the tests must not pass because nothing was tested
    std::fprintf(stderr, "error: there is no locale %s with a decimal comma here; scripts/test-comma.sh makes one\n",
                 name);
    std::_Exit(99);
}

}   // namespace
