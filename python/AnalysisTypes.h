// Analysis types: the pointer types that the analysis's functions take.
#pragma once

#include "wrapping/Wrapping.h"

#include "qmStaticStrength.h"

template <> inline const char* pointerType<qmStaticStrength>()
{
    return "_qmStaticStrength_p";
}
template <> inline const char* pointerType<loadWithOffset>()
{
    return "_loadWithOffset_p";
}
template <> inline const char* pointerType<qcHuman>()
{
    return "_qcHuman_p";
}
template <> inline const char* pointerType<qcSite>()
{
    return "_qcSite_p";
}
template <> inline const char* pointerType<qcJoint>()
{
    return "_qcJoint_p";
}
template <> inline const char* pointerType<qVector>()
{
    return "_qVector_p";
}
