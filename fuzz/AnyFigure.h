// Any figure: what must hold for every figure that a reader let in.
#pragma once

#include "qc/qcHuman.h"

/// Analyses the human under every strategy, reports its loads, and asks every getter about every part.
/// Whatever the figure is, nothing but messages and numbers may come of it.
void analyseInEveryWay(qcHuman& human);

/// The figure, written as a posed figure and read back, is written the same again.
void checkPosedRoundTrip(qcFigure& figure);
