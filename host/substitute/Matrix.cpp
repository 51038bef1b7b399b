// Transforms: the product.
#include "qc/qMatrix.h"

int qMatrix::mult(const qMatrix& other)
{
    qMatrix product;   // apart: the other may be this transform
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column)
            product.m[row][column] = m[row][0] * other.m[0][column] + m[row][1] * other.m[1][column]
                                     + m[row][2] * other.m[2][column] + m[row][3] * other.m[3][column];
    *this = product;
    return 1;
}
