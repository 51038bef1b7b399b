// Saved lists.
#include "SavedLists.h"

#include "PropertyRoom.h"

#include <cstring>
#include <utility>

namespace {

// The link that points at the entry of a key, or at the null at the end of the list.
qcValue** linkToEntry(qcValue** link, const char* key)
{
    for (; *link; link = &(*link)->next) {
        const qcValue* entryKey = (*link)->firstElement();
        char* text;
        if (entryKey && entryKey->get(text) && std::strcmp(text, key) == 0)
            break;
    }
    return link;
}

// Puts copies of a list's elements behind an element that has none behind it.
void linkCopies(qcValue* behind, const qcValue* list)
{
    qcValue** link = &behind->next;
    for (const qcValue* element = list->firstElement(); element; element = element->next) {
        *link = dupval(element);
        link = &(*link)->next;
    }
}

// Replaces what follows the key of an entry.
void replaceElements(qcValue* entry, const qcValue* list)
{
    qcValue* key = entry->firstElement();
    freeval(std::exchange(key->next, nullptr));
    linkCopies(key, list);
}

qcValue* newEntry(const char* key, const qcValue* list)
{
    OwnedValue entry(new qcValue);
    entry->setList(new qcValue(key));
    linkCopies(entry->firstElement(), list);
    return entry.release();
}

// Sets or removes the entry of a key. @return whether the list changed
bool updateEntry(qcValue& list, const char* key, const qcValue* value)
{
    qcValue** link = linkToEntry(&list.payload.first, key);
    qcValue* entry = *link;
    if (value && entry) {
        replaceElements(entry, value);
    } else if (value) {
        *link = newEntry(key, value);
    } else if (entry) {
        *link = std::exchange(entry->next, nullptr);
        freeval(entry);
    } else {
        return false;
    }
    return true;
}

// The first entry of a saved list as it stands, without a copy: whoever asks for each entry in turn would copy the
// list as often. Null without one.
const qcValue* firstEntry(const qcFigure* figure, const char* listName)
{
    for (int i = 0; i < figure->getNumProperties(); ++i)
        if (std::strcmp(figure->getPropertyKey(i), listName) == 0)
            return figure->getPropertyValue(i).firstElement();
    return nullptr;
}

}   // namespace

void storeWithEntry(qcObject* part, const char* partProperty, qcFigure* figure, const char* listName, const char* key,
                    OwnedValue value)
{
    // what is there but no list counts as an empty list
    qcValue list;
    if (!figure->getProperty(listName, &list) || list.kind != qcValue::List)
        list.setList(nullptr);
    const bool changed = updateEntry(list, key, value.get());
    PropertyRoom room;
    if (value) {
        room.take(part, partProperty);
        room.take(figure, listName);
    }

    // from here on nothing needs memory
    room.keep();
    if (value)
        part->setProperty(partProperty, std::move(*value));
    else
        part->removeProperty(partProperty);
    if (changed && list.firstElement())
        figure->setProperty(listName, std::move(list));
    else if (changed)
        figure->removeProperty(listName);
}

void RestoredList::set(const char* key, const qcValue& value)
{
    qcValue*& entry = entryOf[key];
    if (entry) {
        replaceElements(entry, &value);
        return;
    }
    entry = newEntry(key, &value);
    entries.append(entry);
}

void RestoredList::storeOn(qcFigure* figure, const char* listName)
{
    if (entryOf.empty())
        return;
    qcValue list;
    entries.moveInto(list);
    entryOf.clear();
    figure->setProperty(listName, std::move(list));
}

int countSavedEntries(const qcFigure* figure, const char* listName)
{
    qcValue list;
    int count = 0;
    if (figure->getProperty(listName, &list))
        for (const qcValue* entry = list.firstElement(); entry; entry = entry->next)
            ++count;
    return count;
}

qcValue nthSavedKey(const qcFigure* figure, const char* listName, int n)
{
    const qcValue* entry = firstEntry(figure, listName);
    for (; entry && n > 0; --n)
        entry = entry->next;
    qcValue key;
    char* text;
    if (entry && entry->firstElement() && entry->firstElement()->get(text))
        key.set(text);
    return key;
}
