// Strategy names: the texts in which a figure keeps its strategy.
#pragma once

constexpr const char* kStrategyKey = "SSTR_Strategy";   // on the figure: a text

/// The index of a strategy's name, by exact comparison; 0 for null, 6 for a text that is none.
int strategyIndex(const char* name);
