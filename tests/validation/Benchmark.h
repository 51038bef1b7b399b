// Benchmark: the analysis and the libraries in turns, on the same figures and postures.
//
// One computation is: all joint angles anew, then the force and the moment of every joint at rest under gravity.
//
//   analysis   qcJoint::setAngle() for each angle, compute() on the right foot
//   MuJoCo     angles copied to qpos, mj_kinematics(), mj_comPos(), mj_rnePostConstraint(); mj_comVel() once
//              beforehand, since velocities stay zero; a joint's hinges are in one body
//   Simbody    angles copied to q, realize(Acceleration) with all accelerations prescribed, and
//              calcMobilizerReactionForces(); a joint's hinges are one Pin, Universal or Gimbal
//
// The libraries hold the root, which saves them the question about the ground; that MuJoCo's moments are not yet about
// the joints costs it nothing here either.
#pragma once

/// Compares in a few random cases, then times, and prints medians and ratios.
/// @param rounds  how often each one has its turn
/// @return 0; 1 when something disagrees
int runBenchmark(int rounds);
