// Walk sums: a testimony joint by joint, with how far the same sums in single precision may lie from it.
//
// u = 2^-24 is the relative error of one rounding. The witness and the host's kinematics work in double; the host
// narrows positions and axes once; the analysis sums in single precision. With F, M the sums at a joint J, f_i at P_i
// what acts on the segment beyond it, C the joints further out at that segment, and errors E(f_i), E(P_i) from
// Loading.h:
//
//   An addition errs by at most u times its result, and no partial sum is longer than its terms together: n terms err
//   by at most n u Σ|term|.
//
//     E_F(J) = Σ E(f_i) + Σ E_F(C) + n u (Σ |f_i| + Σ |F_C|)
//
//   A moment (P - J) × f costs 7 u |P - J| |f|: 1 for the lever; √2 + 1 for products and differences; 3 for the factor
//   0.0980665, which has two roundings, and its product. E_F is carried on by the lever.
//
//     E_M(J) = Σ |P_i - J| (E(f_i) + 7 u |f_i|) + Σ (|C - J| (E_F(C) + 7 u |F_C|) + E_M(C))
//              + n u (Σ |P_i - J| |f_i| + Σ (|C - J| |F_C| + |M_C|) + |torque|)
//
//   A joint's narrowed position is the same number in the sums at the joint and further in, so its error cancels:
//   (P - C) + (C - J). The errors of both ends are left, E_P(J) = Σ E(P_i) |f_i| of all beyond, and u |J| |F|.
//
//     force, each component       E_F(J)
//     moment, each component      E_M(J) + E_P(J) + u |J| |F|
//
// Both with 2^-40 of all that acts on the figure for what is worked out in double, here and there.
#pragma once

#include "Testimony.h"

#include <vector>

class WalkSums {
public:
    WalkSums(const std::vector<WalkStep>& steps, const Testimony& testimony, const Loading& loading);

    struct Sum {
        Wrench exact;   // the witness's, less what was dropped further out
        double forceBound = 0, momentBound = 0;
    };

    /// The sums at a joint; those that enter it must have been kept before.
    const Sum& sum(std::size_t step);

    /// Goes on with the sums as they are; with nothing; or with another moment that has no error.
    void keepWhole(std::size_t step);
    void drop(std::size_t step);
    void replaceMoment(std::size_t step, const Vec& moment);

    /// What double precision may lose, N and N·m.
    double doubleForce() const { return forceInDouble; }
    double doubleMoment() const { return momentInDouble; }

private:
    struct Joint {
        Sum sum;
        Wrench kept;
        Wrench dropped;                                           // here and beyond, about this joint
        double forceError = 0, momentError = 0, pointError = 0;   // E_F, E_M, E_P
    };

    void findDoubleErrors();

    const std::vector<WalkStep>& steps;
    const Testimony& testimony;
    const Loading& loading;
    std::vector<Joint> joints;   // by step
    double forceInDouble = 0, momentInDouble = 0;
};
