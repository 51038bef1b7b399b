// Decimal comma.
#include "DecimalComma.h"

#include <clocale>
#include <cstdlib>

DecimalComma::DecimalComma() : before(std::setlocale(LC_ALL, nullptr))
{
    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "de_DE", "fr_FR.UTF-8", "fr_FR.utf8", "nl_NL.UTF-8"})
        if (std::setlocale(LC_ALL, name) && inForce())
            return;
    const std::string source = folder.write("source", "LC_NUMERIC\ndecimal_point \",\"\nthousands_sep \"\"\n"
                                                      "grouping -1\nEND LC_NUMERIC\n");
    // it complains about the other categories; what counts is whether the locale is there
    const char* const name = "comma.UTF-8";
    const std::string made = folder.file(name);
    const std::string command = "localedef -c -i '" + source + "' -f UTF-8 '" + made + "' >/dev/null 2>&1";
    [[maybe_unused]] const int complains = std::system(command.c_str());
    setenv("LOCPATH", folder.path().c_str(), 1);
    std::setlocale(LC_NUMERIC, name);
    unsetenv("LOCPATH");
    EXPECT_TRUE(inForce()) << "no locale with a decimal comma: the test needs localedef and the locales package";
}

DecimalComma::~DecimalComma()
{
    std::setlocale(LC_ALL, before.c_str());
}

bool DecimalComma::inForce()
{
    return std::localeconv()->decimal_point[0] == ',';
}
