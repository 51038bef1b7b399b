// Saved lists: the figure's list properties, an entry a key; and building list values.
#pragma once

#include "qc/qcFigure.h"
#include "qc/qcValue.h"

#include <memory>
#include <string>
#include <unordered_map>

/// A value made with `new`, destroyed on every path.
struct DestroyValue {
    void operator()(qcValue* value) const { qcValue::destroy(value); }
};
using OwnedValue = std::unique_ptr<qcValue, DestroyValue>;

/// Reads a vector value. @param value  null counts as none
/// @return 1; 0 when it is no vector, `out` is then left as it was
inline int readVector(const qcValue* value, qVector& out)
{
    qVector vector;
    qVector* read = &vector;
    if (!value || !value->get(read))
        return 0;
    out = *read;
    return 1;
}

/// Builds the elements of a list value, in order.
class ListBuilder {
public:
    ListBuilder() = default;
    ListBuilder(const ListBuilder&) = delete;
    ListBuilder& operator=(const ListBuilder&) = delete;
    ~ListBuilder() { freeval(first); }

    /// Appends an element made with `new`, which the builder owns from then on.
    void append(qcValue* element)
    {
        *link = element;
        link = &element->next;
    }
    void append(const qVector& vector)
    {
        qcValue* element = new qcValue;
        element->set(&vector);
        append(element);
    }
    void append(const char* text) { append(new qcValue(text)); }
    void append(float number) { append(new qcValue(number)); }

    /// Makes `list` a list of the elements; the builder is empty afterwards.
    void moveInto(qcValue& list)
    {
        list.setList(first);
        first = nullptr;
        link = &first;
    }
    /// A new list value of the elements, made with `new`.
    qcValue* newList()
    {
        qcValue* list = new qcValue;
        moveInto(*list);
        return list;
    }

private:
    qcValue* first = nullptr;
    qcValue** link = &first;
};

/// Stores a value on a part and as the entry of one key in a list property of the figure, or removes both. Memory
/// that runs out (std::bad_alloc) leaves both as they were.
///
/// An entry is a list whose first element is the key's text, followed by the elements of a value. A
/// set replaces what follows the key of an entry that is there, in its place, or appends a new entry.
/// The property goes with its last entry. Elements of any other shape are kept and passed over.
///
/// @param part          gets the value first, under `partProperty`
/// @param value         a list value; null removes
void storeWithEntry(qcObject* part, const char* partProperty, qcFigure* figure, const char* listName, const char* key,
                    OwnedValue value);

/// Builds a list property anew, an entry a key, in time linear in the entries. The result is that of
/// storeWithEntry() for each in turn: equal keys share the place of the first and the value of the last.
class RestoredList {
public:
    RestoredList() = default;

    /// @param value  a list value, copied
    void set(const char* key, const qcValue& value);

    /// Stores the list on the figure; an empty one is no property. Needs memory only where the figure has no
    /// room for the property.
    void storeOn(qcFigure* figure, const char* listName);

private:
    ListBuilder entries;
    std::unordered_map<std::string, qcValue*> entryOf;   // borrowed from the entries
};

/// The number of elements of a list property, whatever their shape; 0 without one.
int countSavedEntries(const qcFigure* figure, const char* listName);

/// Copies the key text of the n-th entry, from 0; the first for a negative n.
/// @return a text value holding the key; an empty value when there is no such entry or it has no key
qcValue nthSavedKey(const qcFigure* figure, const char* listName, int n);
