// Strategies as the command line and its output call them.
#pragma once

#include "qmStaticStrength.h"

#include <optional>
#include <string>

/// The strategy that only a scene can keep, because no property holds it.
constexpr const char* kUnstoredStrategyText = "hands-and-knees";

/// "two-feet", "right-foot", "left-foot", "walking", "sitting", "sitting-no-feet", "hands-and-knees";
/// "unknown" for every other value.
std::string strategyText(qmStaticStrength::Strategy strategy);

/// Reads such a text. @return nothing, after an error that names --strategy, when it is none of them
std::optional<qmStaticStrength::Strategy> parseStrategy(const std::string& text);
