// Input error: what the readers of files throw when a file is wrong.
#pragma once

#include <stdexcept>

/// The one exception of libqc's readers. It carries the complete message for the user: the file, the
/// line or the JSON path, what was found, what was expected, what to do. It never leaves libqc: the
/// public functions catch it, report its text through error("%s", …) and return null or 0.
class InputError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};
