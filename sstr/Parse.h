// Parsing of option values: numbers, vectors, and "NAME=…" as the command line writes them.
//
// Each takes the option's name for the message; a text that does not parse is reported and gives nothing.
// Numbers are decimal with a point, in single precision unless a double is returned; not-a-number, infinity,
// hexadecimal, an empty text and anything behind the number are refused.
#pragma once

#include "qc/qVector.h"

#include <optional>
#include <string>
#include <vector>

std::optional<double> parseNumber(const std::string& option, const std::string& text);

/// Numbers separated by commas, at least one.
std::optional<std::vector<double>> parseNumbers(const std::string& option, const std::string& text);

/// "x,y,z". @param what  says what the three numbers are, for the message
std::optional<qVector> parseVector(const std::string& option, const std::string& text, const std::string& what);

/// What stands on either side of the last "=".
struct Assignment {
    std::string name;
    std::string value;
};
/// @param form  the expected form, for the message, e.g. "SITE=x,y,z"
std::optional<Assignment> parseAssignment(const std::string& option, const std::string& text, const std::string& form);

/// An offset load as written:
///
///   SITE@ox,oy,oz=x,y,z         a force, kgf, global axes
///   local:SITE@ox,oy,oz=x,y,z   a force, kgf, the site's axes
///   SITE@ox,oy,oz=GRAMSg        a weight, g
struct OffsetLoadText {
    std::string site;
    qVector offset;   // cm, global axes
    bool local = false;
    bool isWeight = false;
    qVector force;      // kgf
    float weight = 0;   // g
};
std::optional<OffsetLoadText> parseOffsetLoad(const std::string& option, const std::string& text);

/// A weight, g: a number, zero or more.
std::optional<float> parseWeight(const std::string& option, const std::string& text);
