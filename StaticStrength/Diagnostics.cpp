// Diagnostics.
#include "Diagnostics.h"

#include "PointNumbers.h"

#include <cstdio>

int segmentOnly = 0;
int debugPrint = 0;

void printVector(const char* label, const qVector& vector)
{
    if (!debugPrint)
        return;
    const PointNumbers pointNumbers;
    std::printf("%s[%f][%f][%f]\n", label, double(vector[0]), double(vector[1]), double(vector[2]));
}
