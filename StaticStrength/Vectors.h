// Vectors: the host's vector operations, which work in place, as functions that leave their arguments.
#pragma once

#include "qc/qVector.h"

inline qVector scaled(qVector v, float factor)
{
    v.scale(factor);
    return v;
}

inline qVector difference(qVector a, const qVector& b)
{
    a.sub(b);
    return a;
}

inline qVector crossProduct(qVector a, const qVector& b)
{
    a.cross(b);
    return a;
}

/// Of length 1; a zero vector becomes not-a-number throughout.
inline qVector unit(qVector v)
{
    v.normalize();
    return v;
}
