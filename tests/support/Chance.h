// Chance: the same random numbers on every machine, from a seed.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <random>

class Chance {
public:
    explicit Chance(unsigned seed) : generator(seed) {}

    double within(double low, double high)
    {
        return low + (high - low) * static_cast<double>(generator()) / 4294967295.0;
    }
    /// A number that is exact in binary: a multiple of 1/64.
    double roundWithin(double low, double high) { return std::round(within(low, high) * 64) / 64; }
    std::size_t below(std::size_t count) { return static_cast<std::size_t>(generator() % count); }
    bool coin() { return generator() & 1u; }

    std::array<double, 3> vector(double size)
    {
        return {within(-size, size), within(-size, size), within(-size, size)};
    }

    /// Three axes at right angles, of length 1, from a quaternion.
    std::array<std::array<double, 3>, 3> axes()
    {
        double w = within(-1, 1), x = within(-1, 1), y = within(-1, 1), z = within(-1, 1);
        const double size = std::sqrt(w * w + x * x + y * y + z * z);
        w /= size, x /= size, y /= size, z /= size;
        return {{{1 - 2 * (y * y + z * z), 2 * (x * y + z * w), 2 * (x * z - y * w)},
                 {2 * (x * y - z * w), 1 - 2 * (x * x + z * z), 2 * (y * z + x * w)},
                 {2 * (x * z + y * w), 2 * (y * z - x * w), 1 - 2 * (x * x + y * y)}}};
    }

private:
    std::mt19937 generator;
};
