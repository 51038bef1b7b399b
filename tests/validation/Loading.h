// Loading: the forces that a case puts on a figure as a witness has posed it, each with the error that single precision
// makes of it before it enters a sum.
#pragma once

#include "Case.h"
#include "Witness.h"

#include <vector>

/// The relative error of one rounding in single precision, 2^-24; a thousandth more pays for products of errors, which
/// are never counted. The environment variable SSTR_TEST_TOLERANCE scales it: 0 shows the real differences.
double rounding();

/// A force at a point, N and m, and how far the analysis's own may lie from them.
struct AppliedForce {
    Vec force, point;
    double forceError, pointError;
};

/// What acts on the bodies.
struct Loading {
    std::vector<std::vector<AppliedForce>> loads;   // by body
    std::vector<AppliedForce> weights;              // by body; a witness has them from gravity
    std::map<int, Vec> torques;                     // N·m, by the body that the joint carries
};

/// Errors in roundings:
///
///   weight          4   mass, 980.665, their quotient, its product with gravity
///   weight load     3   the same without the mass
///   global load     0   as told
///   local load      7   of |L|: axis and product, and two sums, are 4 Σ_i |L_i| |axis_ij| in component j, and such
///                       sums, of a turn, are together at most √3 |L|
///   site            1   of its distance from the world's origin: narrowed once
///   with an offset  1   more, of the point's distance: the sum
///   centre of mass  9   of its distance c from the segment's origin t: c, axis, product and two sums, 5 √3 |c|;
///                   1   each of |t|, narrowed, and of |t + c|, the last sum
///   balance point       the mean of the centres of mass, formed in double: of each 2 √3 |c| + |t|, and 1 of how far it
///                       lies from the mean, for its mass; 1 of the mean, narrowed
Loading loadingOf(const Case& drawn, const Figure& figure, const HostFigure& host, const Witness& witness);
