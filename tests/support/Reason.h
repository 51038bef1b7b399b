// Reason: what the system says about a failure, which is in the process's language.
#pragma once

#include <cerrno>
#include <cstring>
#include <string>

/// The text for an errno as our messages end with it: "File too large."
inline std::string reason(int problem)
{
    return std::string(std::strerror(problem)) + ".";
}
