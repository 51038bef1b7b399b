// Numbers as text, with a decimal point whatever the locale is.
#pragma once

#include "qc/qVector.h"

#include <string>
#include <vector>

/// The shortest text that reads back as the same number; "nan", "inf" or "-inf" for what is not finite.
std::string shortest(float number);
std::string shortest(double number);

/// A number with a fixed count of decimals; never "-0.00".
std::string fixed(double number, int decimals);

/// The same, or "not finite".
std::string fixedOrNot(double number, int decimals);

/// "(x, y, z)", each as fixedOrNot().
std::string vectorText(const qVector& vector, int decimals);

/// x, y, z and the length, each as fixedOrNot().
std::vector<std::string> componentTexts(const qVector& vector, int decimals);

/// The double that prints as the shortest text of a float and narrows to it: what JSON output holds.
double asPrinted(float number);
