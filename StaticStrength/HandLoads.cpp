// Hand loads.
#include "HandLoads.h"

#include "PointNumbers.h"

#include <cstdio>
#include <cstdlib>

namespace {

// On the figure: by hand, the load and whether it is given in the palm's axes.
constexpr const char* kHandLoadKeys[] = {"RightZelHandLoads", "LeftZelHandLoads"};
constexpr const char* kHandLoadLocalKeys[] = {"RightZelHandLoadsLocal", "LeftZelHandLoadsLocal"};

// Reads a text property of the figure; null unless it is there and a text.
char* readText(const qcFigure* figure, const char* key, qcValue& value)
{
    char* text = nullptr;
    return figure && figure->getProperty(key, &value) && value.get(text) ? text : nullptr;
}

}   // namespace

bool hasHandLoads(const qcFigure* figure)
{
    qcValue value;
    return readText(figure, kHandLoadKeys[qcRight], value) || readText(figure, kHandLoadKeys[qcLeft], value);
}

qVector readHandLoad(const qcFigure* figure, qcSide hand)
{
    qcValue value;
    const char* text = readText(figure, kHandLoadKeys[hand], value);
    float x = kNoHandLoad, y = 0.0f, z = 0.0f;
    int count = 0;
    if (text) {
        const PointNumbers pointNumbers;
        count = std::sscanf(text, "%f %f %f", &x, &y, &z);
    }
    return count == 1 ? qVector(0.0f, x, 0.0f) : qVector(x, y, z);
}

int readHandLoadLocal(const qcFigure* figure, qcSide hand)
{
    qcValue value;
    const char* text = readText(figure, kHandLoadLocalKeys[hand], value);
    return text ? static_cast<int>(std::strtol(text, nullptr, 10)) : 0;
}
