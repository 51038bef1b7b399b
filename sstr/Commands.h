// Commands: each does what its options ask for.
#pragma once

#include "Options.h"

/// Each @return the exit status; what went wrong was reported.
int runCompute(const ComputeOptions& options);
int runExplain(const ExplainOptions& options);
int runFigure(const FigureOptions& options);
int runLoads(const LoadsOptions& options);
int runReport(const ReportOptions& options);
int runNewScene(const NewSceneOptions& options);

/// Writes a whole text to standard output. @return 1; 0 after an error when it cannot be written
int print(const std::string& text);
