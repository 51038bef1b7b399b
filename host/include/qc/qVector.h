// Vectors: three single-precision components, a value type.
#pragma once

#include "qc/qcExport.h"

#include <cmath>

/// A vector or a point of three single-precision components, x, y, z.
///
/// The unit and the axes are those of whoever holds it. Every operation works in single precision,
/// in the order in which its formula is written.
class QC_API qVector {
public:
    qVector() : components{0.0f, 0.0f, 0.0f} {}
    qVector(float x, float y, float z) : components{x, y, z} {}

    /// Assigns the three components. @return 1
    int set(float x, float y, float z)
    {
        components[0] = x;
        components[1] = y;
        components[2] = z;
        return 1;
    }

    /// Assigns from another vector.
    void copy(const qVector& other) { *this = other; }

    /// Component i: 0 = x, 1 = y, 2 = z. The index is not checked.
    float& operator[](int i) { return components[i]; }
    float operator[](int i) const { return components[i]; }

    /// Adds, component by component, in place. @return 1
    int add(const qVector& other)
    {
        components[0] += other[0];
        components[1] += other[1];
        components[2] += other[2];
        return 1;
    }

    /// Subtracts, component by component, in place. @return 1
    int sub(const qVector& other)
    {
        components[0] -= other[0];
        components[1] -= other[1];
        components[2] -= other[2];
        return 1;
    }

    /// Cross product in place: this := this × other.
    void cross(qVector other)
    {
        set(components[1] * other[2] - components[2] * other[1], components[2] * other[0] - components[0] * other[2],
            components[0] * other[1] - components[1] * other[0]);
    }

    /// Scalar product, summed x, y, z.
    float dotProd(const qVector& other) const
    {
        return components[0] * other[0] + components[1] * other[1] + components[2] * other[2];
    }

    /// Euclidean length: the square root of the scalar product with itself.
    float mag() const { return std::sqrt(dotProd(*this)); }

    /// Divides every component by the length. A zero vector becomes not-a-number throughout.
    void normalize()
    {
        const float length = mag();
        set(components[0] / length, components[1] / length, components[2] / length);
    }

    /// Multiplies every component, in place.
    void scale(float factor)
    {
        components[0] *= factor;
        components[1] *= factor;
        components[2] *= factor;
    }

private:
    float components[3];
};

/// The sum, by value.
inline qVector operator+(const qVector& a, const qVector& b)
{
    return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}
