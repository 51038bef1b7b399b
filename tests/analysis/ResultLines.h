// Result lines: every number that an analysis holds, as lines of text that differ when one bit does.
//
//   world gravity X Y Z SIZE                        cm/s²
//   load SITE TYPE X Y Z GRAMS                      kgf and g, as the analysis reads them; no weight: -1 g
//   offset-load N SITE TYPE OX OY OZ X Y Z GRAMS    cm, kgf and g of the N-th record
//   torque JOINT X Y Z                              N·m
//   RUN shares LH RH LC RC                          of left and right hip, left and right clavicle joint
//   RUN JOINT FX FY FZ MX MY MZ                     kgf and N·m; "none" for a joint without a result
//
// A number is printf's %a of the float: every bit of it, the sign of a zero too. "nan" is any
// not-a-number. The first two words of a line are its key; a set of lines has each key once.
#pragma once

#include "qmStaticStrength.h"

#include <cstdint>
#include <string>
#include <vector>

using ResultLines = std::vector<std::string>;

std::string hexadecimal(float number);

/// What the analysis was told.
ResultLines inputLines(qmStaticStrength& analysis);

/// What it has computed: its strategy's shares, and every joint of its figure.
/// @param run  the first word of each line
ResultLines resultLines(const std::string& run, qmStaticStrength& analysis);

/// One sentence for each key whose lines are not the same to the letter, or which one set alone has, or
/// which a set has twice. Empty: the same numbers.
std::vector<std::string> differences(const ResultLines& committed, const ResultLines& computed);

/// The lines of a file but for comments, which begin with '#'.
ResultLines readLines(const std::string& path);

/// FNV-1a, 64 bits, of the lines, each with its line feed, continued from an earlier hash.
constexpr std::uint64_t kHashStart = 0xcbf29ce484222325;
std::uint64_t hashOf(const ResultLines& lines, std::uint64_t start = kHashStart);
