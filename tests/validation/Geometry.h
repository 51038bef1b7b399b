// Geometry: points, frames and wrenches in double precision, for column vectors, in the axes and units of URDF.
//
//   lengths m      forces N      moments N·m      x forward, y to the figure's left, z up
#pragma once

#include <cmath>

struct Vec {
    double x = 0, y = 0, z = 0;
};

inline Vec operator+(const Vec& a, const Vec& b)
{
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
inline Vec operator-(const Vec& a, const Vec& b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
inline Vec operator-(const Vec& a)
{
    return {-a.x, -a.y, -a.z};
}
inline Vec operator*(const Vec& a, double factor)
{
    return {a.x * factor, a.y * factor, a.z * factor};
}
inline Vec cross(const Vec& a, const Vec& b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline double dot(const Vec& a, const Vec& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
inline double length(const Vec& a)
{
    return std::sqrt(dot(a, a));
}

/// A rotation by its columns: where the axes x, y and z point.
struct Turn {
    Vec x{1, 0, 0}, y{0, 1, 0}, z{0, 0, 1};
};

/// R · v
inline Vec operator*(const Turn& r, const Vec& v)
{
    return r.x * v.x + r.y * v.y + r.z * v.z;
}
/// Rᵀ · v
inline Vec turnedBack(const Turn& r, const Vec& v)
{
    return {dot(r.x, v), dot(r.y, v), dot(r.z, v)};
}
inline Turn operator*(const Turn& a, const Turn& b)
{
    return {a * b.x, a * b.y, a * b.z};
}

/// The turn by an angle (rad) about a unit axis: cos · v + sin · u × v + (1 - cos) (u · v) u, for each axis v.
inline Turn turnAbout(const Vec& axis, double angle)
{
    const double c = std::cos(angle), s = std::sin(angle);
    const auto turned = [&](const Vec& v) { return v * c + cross(axis, v) * s + axis * ((1 - c) * dot(axis, v)); };
    return {turned({1, 0, 0}), turned({0, 1, 0}), turned({0, 0, 1})};
}

/// A frame in another: p' = R · p + origin.
struct Pose {
    Turn turn;
    Vec origin;
};

inline Vec operator*(const Pose& pose, const Vec& point)
{
    return pose.turn * point + pose.origin;
}
inline Pose operator*(const Pose& outer, const Pose& inner)
{
    return {outer.turn * inner.turn, outer * inner.origin};
}

/// A force and a moment about some point.
struct Wrench {
    Vec force, moment;
};

inline Wrench operator+(const Wrench& a, const Wrench& b)
{
    return {a.force + b.force, a.moment + b.moment};
}
inline Wrench operator-(const Wrench& a, const Wrench& b)
{
    return {a.force - b.force, a.moment - b.moment};
}
inline Wrench operator-(const Wrench& a)
{
    return {-a.force, -a.moment};
}

/// The same wrench about another point: M' = M + (from - to) × F.
inline Wrench moved(const Wrench& wrench, const Vec& from, const Vec& to)
{
    return {wrench.force, wrench.moment + cross(from - to, wrench.force)};
}
/// A force that acts at a point, about another.
inline Wrench forceAt(const Vec& force, const Vec& point, const Vec& about)
{
    return {force, cross(point - about, force)};
}
