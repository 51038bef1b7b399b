// Decimal comma: a test under a locale whose numbers have a comma.
#pragma once

#include "Support.h"

#include <string>

/// While it lives the process writes and scans numbers with a decimal comma: in a locale of the machine's, else
/// in one made in a folder of its own. Where none can be had the test fails.
class DecimalComma {
public:
    DecimalComma();
    ~DecimalComma();   ///< back to the locale of before
    DecimalComma(const DecimalComma&) = delete;
    DecimalComma& operator=(const DecimalComma&) = delete;

    /// Whether a comma is in force now.
    static bool inForce();

private:
    std::string before;
    TemporaryFolder folder;
};
