// Hand loads: what other tools of the host write on the figure for its hands, as texts.
#pragma once

#include "qc/qcFigure.h"

/// The x component that stands for "no hand load".
constexpr float kNoHandLoad = 7777.0f;

/// Whether the figure has any hand load, so that palm centres matter. @param figure  null: none
bool hasHandLoads(const qcFigure* figure);

/// The load of a hand, kgf. One number in the text is a vertical load, two or three are x, y, z.
/// Numbers have a decimal point whatever the locale is.
/// @param figure  null: no load
/// @return (7777, 0, 0) without a load
qVector readHandLoad(const qcFigure* figure, qcSide hand);

/// Whether the load of a hand is given in the palm's axes; 0 unless its text says another integer.
int readHandLoadLocal(const qcFigure* figure, qcSide hand);
