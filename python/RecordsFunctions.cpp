// Records: reading a load with offset.
#include "AnalysisTypes.h"
#include "Functions.h"

namespace functions {

// loadWithOffset_local_get(record) -> 1 for a load in the site's axes, else 0
PyObject* loadWithOffsetLocalGet(PyObject*, PyObject* args)
{
    Object<loadWithOffset> record;
    if (!PyArg_ParseTuple(args, "s:loadWithOffset_local_get", &record.text)
        || !decode("loadWithOffset_local_get", record))
        return nullptr;
    return toPython(record->local ? 1 : 0);
}

// loadWithOffset_mass_get(record) -> grams; -1 for a load set as a force, 0 for one restored as a force
PyObject* loadWithOffsetMassGet(PyObject*, PyObject* args)
{
    Object<loadWithOffset> record;
    if (!PyArg_ParseTuple(args, "s:loadWithOffset_mass_get", &record.text)
        || !decode("loadWithOffset_mass_get", record))
        return nullptr;
    return toPython(record->mass);
}

// loadWithOffset_load_get(record) -> the force, kgf: a vector within the record
PyObject* loadWithOffsetLoadGet(PyObject*, PyObject* args)
{
    Object<loadWithOffset> record;
    if (!PyArg_ParseTuple(args, "s:loadWithOffset_load_get", &record.text)
        || !decode("loadWithOffset_load_get", record))
        return nullptr;
    return pointerToPython(&record->load);
}

// loadWithOffset_type_get(record) -> "local", "global" or "weight"
PyObject* loadWithOffsetTypeGet(PyObject*, PyObject* args)
{
    Object<loadWithOffset> record;
    if (!PyArg_ParseTuple(args, "s:loadWithOffset_type_get", &record.text)
        || !decode("loadWithOffset_type_get", record))
        return nullptr;
    return toPython(record->type);
}

// loadWithOffset_offset_get(record) -> the displacement, cm, global axes: a vector within the record
PyObject* loadWithOffsetOffsetGet(PyObject*, PyObject* args)
{
    Object<loadWithOffset> record;
    if (!PyArg_ParseTuple(args, "s:loadWithOffset_offset_get", &record.text)
        || !decode("loadWithOffset_offset_get", record))
        return nullptr;
    return pointerToPython(&record->offset);
}

// loadWithOffset_site_get(record) -> the site
PyObject* loadWithOffsetSiteGet(PyObject*, PyObject* args)
{
    Object<loadWithOffset> record;
    if (!PyArg_ParseTuple(args, "s:loadWithOffset_site_get", &record.text)
        || !decode("loadWithOffset_site_get", record))
        return nullptr;
    return pointerToPython(record->site);
}

}   // namespace functions
