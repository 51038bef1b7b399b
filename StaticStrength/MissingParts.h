// Missing parts: a leg method that lacks parts of the figure refuses, and names all of them at once.
#pragma once

#include "qc/qcMessages.h"

#include <string>

/// Gathers what is missing. Allocates nothing while nothing is.
class MissingParts {
public:
    /// Notes the part by a text and the rest of it, unless it is there. @return the part
    template <class Part> Part* check(Part* part, const char* text, const char* rest)
    {
        if (!part)
            names.append(names.empty() ? "" : ", ").append(text).append(rest);
        return part;
    }

    /// Reports what is missing, if anything. @return whether there was
    bool report(const char* consequence) const
    {
        if (names.empty())
            return false;
        error("StaticStrength ERROR: %s: missing %s", consequence, names.c_str());
        return true;
    }

private:
    std::string names;
};
