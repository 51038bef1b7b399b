// Observers: attached while both sides live.
#include "qc/qcObserver.h"

#include "qc/qcObject.h"

qcObserver::~qcObserver() = default;

qcRefObserver::qcRefObserver(qcSubject* observed, qcObject* forWhom) : subject(observed), object(forWhom)
{
    if (subject)
        subject->attach(this, qcChanged);
}

qcRefObserver::~qcRefObserver()
{
    if (subject)
        subject->detach(this, qcChanged);
}

void qcRefObserver::update(updateProtocol protocol)
{
    if (protocol == qcDestroyed)
        subject = nullptr;
}

void qcRefObserver::destroy()
{
    delete this;
}
