// Testimony: what a witness says that the body beyond each joint puts on it.
#pragma once

#include "Loading.h"
#include "Walks.h"

#include <vector>

struct Testimony {
    std::vector<Vec> points;      // of the joints, m, by step, as the next
    std::vector<Wrench> beyond;   // N and N·m, about the joint
    Wrench held;                  // what holds the root at last, about its origin: nothing when a foot carries all
};

/// Asks a witness that has been posed.
///
/// The library holds the root and tells what each parent puts on its child, R. The child's side of a joint then puts -R
/// on it. Where a foot carries the body, the library is first asked what holds the root, H, and then that is put on the
/// foot instead, as the ground does: the root is held by nothing any more, and what the parent's side of a joint, which
/// the foot does not carry otherwise, puts on it is R. The whole body, the foot included, puts -H on the ankle.
///
/// A torque defined at a joint acts on the body beyond it, so that the joint and those between it and the support
/// carry it; the standing ankle is met twice and carries it twice.
Testimony testify(Witness& witness, const std::vector<WalkStep>& steps, int foot, const Loading& loading);
