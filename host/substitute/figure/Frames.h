// Frames: rotations and placements in double precision, for row vectors.
#pragma once

#include <array>
#include <cstddef>

/// A rotation in double precision, row vectors: row i is the image of axis i.
using Rotation = std::array<double, 9>;
using Point = std::array<double, 3>;

constexpr Rotation kNoRotation = {1, 0, 0, 0, 1, 0, 0, 0, 1};

/// The frame of a child in its parent's: p_parent = p_child · rotation + offset.
struct Placement {
    Point offset{0, 0, 0};   // cm
    Rotation rotation = kNoRotation;
};

inline bool isZero(const Point& p)
{
    return p[0] == 0 && p[1] == 0 && p[2] == 0;
}

/// p · r
inline Point turned(const Point& p, const Rotation& r)
{
    return {p[0] * r[0] + p[1] * r[3] + p[2] * r[6], p[0] * r[1] + p[1] * r[4] + p[2] * r[7],
            p[0] * r[2] + p[1] * r[5] + p[2] * r[8]};
}

inline void add(Point& p, const Point& q)
{
    for (std::size_t i = 0; i < 3; ++i)
        p[i] += q[i];
}

/// first · second: the rotation that turns by `first` and then by `second`.
inline Rotation product(const Rotation& first, const Rotation& second)
{
    Rotation result;
    for (std::size_t row = 0; row < 3; ++row) {
        const Point image = turned({first[3 * row], first[3 * row + 1], first[3 * row + 2]}, second);
        for (std::size_t column = 0; column < 3; ++column)
            result[3 * row + column] = image[column];
    }
    return result;
}
