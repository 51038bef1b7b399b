// Point numbers: texts of numbers have a decimal point, whatever the process's locale is.
#pragma once

#include <locale.h>

/// In force for the calling thread while it lives: the C library reads and writes numbers with a point.
class PointNumbers {
public:
    PointNumbers()
    {
        static const locale_t pointLocale = newlocale(LC_ALL_MASK, "C", nullptr);
        callers = uselocale(pointLocale);
    }
    ~PointNumbers() { uselocale(callers); }
    PointNumbers(const PointNumbers&) = delete;
    PointNumbers& operator=(const PointNumbers&) = delete;

private:
    locale_t callers;
};
