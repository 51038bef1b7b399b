// Process locale: the run that is to have a decimal comma has one, and no other.
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <string>

namespace {

// scripts/test-comma.sh tells by this variable that it preloads the locale.
std::string expectedPoint()
{
    return std::getenv("SSTR_COMMA_PRELOAD") ? "," : ".";
}

TEST(ProcessLocale, HasADecimalCommaInTheRunThatIsToHaveOneOnly)
{
    EXPECT_EQ(std::localeconv()->decimal_point, expectedPoint());
    char half[8];
    std::snprintf(half, sizeof half, "%.1f", 0.5);
    EXPECT_EQ(half, "0" + expectedPoint() + "5");
}

}   // namespace
