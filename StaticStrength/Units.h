// Units: the constants by which masses become forces and forces become moments.
#pragma once

#include "qc/qVector.h"

/// Standard gravity, cm/s² (CGPM, 1901). Required: held in single precision.
constexpr float STD_G = 980.665f;

/// Turns kgf·cm into N·m: 1 kgf·cm = 0.0980665 N·m. The product is formed in double and narrowed.
constexpr float MOMENT_SCALE = static_cast<float>(double(STD_G) * 0.0001);

/// The force of a weight along gravity.
///
///   load = gravity · (grams · 0.001 / STD_G)        the factor in double, narrowed once
///
/// @return kgf for gravity in cm/s²; a changed gravity changes it in proportion
inline qVector weightToLoad(const qVector& gravity, float grams)
{
    qVector load = gravity;
    load.scale(static_cast<float>(double(grams) * 0.001 / double(STD_G)));
    return load;
}
