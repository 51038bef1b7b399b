// Property room: places for properties, taken before a change begins, so that the change itself needs no memory.
#pragma once

#include "qc/qcObject.h"

#include <utility>
#include <vector>

/// Takes places, and gives up at its end those that were not kept.
///
/// The host needs memory for a property that an object has not. So each property that a change will store
/// gets an empty value first; then the change replaces values, which cannot fail. An object keeps the room of
/// properties that were removed: a place also serves a change that removes properties before it stores them.
class PropertyRoom {
public:
    PropertyRoom() = default;
    ~PropertyRoom();
    PropertyRoom(const PropertyRoom&) = delete;
    PropertyRoom& operator=(const PropertyRoom&) = delete;

    /// Takes a place, unless the object has that property already. @throws std::bad_alloc
    void take(qcObject* object, const char* key);

    /// The places hold what they were taken for.
    void keep() { places.clear(); }

private:
    std::vector<std::pair<qcObject*, const char*>> places;
};
