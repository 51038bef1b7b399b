// Lists: nodes, and the end that the first node remembers.
#include "qc/qList.h"

int qList::append(qList** head, void* data)
{
    qList* node = new qList(data);
    if (!*head) {
        *head = node;
    } else {
        (*head)->last->next = node;
        (*head)->last = node;
    }
    return 1;
}

// Required: callers may ask a null list, which holds nothing. This file is built so that the compiler
// keeps the test.
qList* qList::findNode(void* key, int (*compare)(int*, void*))
{
    for (qList* node = this; node; node = node->next) {
        const bool matches = compare ? compare(static_cast<int*>(node->data), key) == 0 : node->data == key;
        if (matches)
            return node;
    }
    return nullptr;
}

int qList::deleteNode(qList** head, qList* node, int (*freeData)())
{
    qList* previous = nullptr;
    qList* found = *head;
    while (found && found != node) {
        previous = found;
        found = found->next;
    }
    if (!found)
        return 0;

    if (!previous) {
        if (found->next)
            found->next->last = found->last;
        *head = found->next;
    } else {
        previous->next = found->next;
        if ((*head)->last == found)
            (*head)->last = previous;
    }
    if (freeData)
        freeData();
    delete found;
    return 1;
}
