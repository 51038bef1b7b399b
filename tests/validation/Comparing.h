// Comparing: the default human and the public model, in random cases, on every support, beside every witness.
#pragma once

/// Prints the worst differences. @return 0 when all results agree, else 1
int compareFigures(int cases);
