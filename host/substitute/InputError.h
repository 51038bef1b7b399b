// Input error: what the readers of files throw when a file is wrong.
#pragma once

#include "qc/qcMessages.h"

#include <new>
#include <stdexcept>

/// The one exception of libqc's readers. It carries the complete message for the user: the file, the
/// line or the JSON path, what was found, what was expected, what to do. It never leaves libqc: the
/// public functions catch it, report it through reportProblem() and return null or 0.
class InputError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reports what a public function caught. Memory that ran out has no text of its own: `source` says what it ran out
/// for.
/// @param source  a file's path or another name; null counts as empty
/// @return 0
inline int reportProblem(const std::exception& problem, const char* source)
{
    if (dynamic_cast<const std::bad_alloc*>(&problem))
        return error("%s: there is not enough memory.", source ? source : "");
    return error("%s", problem.what());
}
