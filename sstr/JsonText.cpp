// JSON text.
#include "JsonText.h"

#include "NumberText.h"

#include <cmath>

Json number(float value)
{
    return std::isfinite(value) ? Json(asPrinted(value)) : Json(nullptr);
}

Json number(std::optional<float> value)
{
    return value ? number(*value) : Json(nullptr);
}

Json numbers(const qVector& vector)
{
    return {number(vector[0]), number(vector[1]), number(vector[2])};
}

void putVector(Json& object, const std::string& quantity, const std::string& unit, const qVector& vector)
{
    const char* axes[] = {"_x_", "_y_", "_z_"};
    for (int i = 0; i < 3; ++i)
        object[quantity + axes[i] + unit] = number(vector[i]);
}

std::string jsonText(const Json& document)
{
    return document.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}
