// Vectors and transforms: the operations that are not inline.
#include "qc/qMatrix.h"
#include "qc/qVector.h"

#include <cmath>

float qVector::mag() const
{
    return std::sqrt(dotProd(*this));
}

void qVector::normalize()
{
    const float length = mag();
    set(components[0] / length, components[1] / length, components[2] / length);
}

int qMatrix::mult(const qMatrix& other)
{
    const qMatrix left = *this;
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column)
            m[row][column] = left.m[row][0] * other.m[0][column] + left.m[row][1] * other.m[1][column]
                             + left.m[row][2] * other.m[2][column] + left.m[row][3] * other.m[3][column];
    return 1;
}
