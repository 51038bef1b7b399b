// Property room.
#include "PropertyRoom.h"

#include <cstring>

namespace {

// Without a copy of its value.
bool hasProperty(const qcObject& object, const char* key)
{
    for (int i = 0; i < object.getNumProperties(); ++i)
        if (std::strcmp(object.getPropertyKey(i), key) == 0)
            return true;
    return false;
}

}   // namespace

PropertyRoom::~PropertyRoom()
{
    for (const auto& [object, key] : places)
        object->removeProperty(key);
}

void PropertyRoom::take(qcObject* object, const char* key)
{
    if (hasProperty(*object, key))
        return;
    places.emplace_back(object, key);   // first: giving up a place that was not got changes nothing
    object->setProperty(key, qcValue());
}
