// Host types.
#include "HostTypes.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace {

// An object's address as a qcObject's, wherever in the object that lies.
template <class T> void* objectIn(void* address)
{
    return static_cast<qcObject*>(static_cast<T*>(address));
}

}   // namespace

void registerObjectTypes()
{
    pointers::registerType("_qcObject", "_qcHuman", objectIn<qcHuman>);
    pointers::registerType("_qcObject", "_qcFigure", objectIn<qcFigure>);
    pointers::registerType("_qcObject", "_qcSegment", objectIn<qcSegment>);
    pointers::registerType("_qcObject", "_qcSite", objectIn<qcSite>);
    pointers::registerType("_qcObject", "_qcJoint", objectIn<qcJoint>);
    pointers::registerType("_qcObject", "_qcScene", objectIn<qcScene>);
    // An analysis, a class of another library, begins with its qcObject.
    pointers::registerType("_qcObject", "_qmStaticStrength", nullptr);
    pointers::registerType("_qcObject", "_class_qmStaticStrength", nullptr);
}

bool toSingle(const char* function, int position, double number, float& out)
{
    constexpr double kLargest = std::numeric_limits<float>::max();
    constexpr double kTooLarge = 0x1.ffffffp127;   // from here on the nearest single is infinite
    if (std::isfinite(number) && std::fabs(number) >= kTooLarge) {
        char text[64];
        // as "%.9g" does, but with a decimal point whatever the process's locale is
        *std::to_chars(text, text + sizeof text - 1, number, std::chars_format::general, 9).ptr = '\0';
        PyErr_Format(PyExc_ValueError, "Argument %d of %s is too large for single precision: %s.", position, function,
                     text);
        return false;
    }
    out = static_cast<float>(std::isfinite(number) ? std::clamp(number, -kLargest, kLargest) : number);
    return true;
}
