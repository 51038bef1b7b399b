// Transforms: 4×4 homogeneous matrices for row vectors.
#pragma once

#include "qc/qVector.h"
#include "qc/qcExport.h"

/// A 4×4 homogeneous transform in single precision.
///
/// Row vectors: p' = p · M. Rows 0 to 2 are the images of the x, y and z axis, row 3 is the
/// translation, column 3 is (0, 0, 0, 1). A new transform is the identity.
class QC_API qMatrix {
public:
    qMatrix() : m{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}} {}

    /// Axis i of the transform, its row i: 0 = x, 1 = y, 2 = z. The index is not checked.
    qVector getAxis(int i) const { return {m[i][0], m[i][1], m[i][2]}; }

    /// The translation, row 3.
    qVector getTranslation() const { return {m[3][0], m[3][1], m[3][2]}; }

    /// Sets the translation in place. @return a copy of the changed transform
    qMatrix setTranslation(const qVector& translation)
    {
        m[3][0] = translation[0];
        m[3][1] = translation[1];
        m[3][2] = translation[2];
        return *this;
    }

    /// Multiplies in place: this := this · other, each element summed over k = 0, 1, 2, 3. @return 1
    int mult(const qMatrix& other);

    /// The elements, m[row][column], as vecmult() takes them.
    float m[4][4];
};

/// Transforms a point, rotation and translation: out = (in, 1) · m. `out` may be `in`.
///
///   out_j = in_0 · m_0j + in_1 · m_1j + in_2 · m_2j + m_3j        summed in this order
inline void vecmult(float* out, const float* in, const float m[4][4])
{
    const float x = in[0], y = in[1], z = in[2];
    for (int j = 0; j < 3; ++j)
        out[j] = x * m[0][j] + y * m[1][j] + z * m[2][j] + m[3][j];
}
