// Load values: how a load stands in a property, and back.
#pragma once

#include "qc/qcFigure.h"
#include "qc/qcValue.h"

constexpr const char* kLoadKey = "SSTR_Load";
constexpr const char* kLoadListKey = "SSTR_LoadList";

/// Kinds of a load.
enum LoadKind { kGlobalLoad = 0, kLocalLoad = 1, kWeightLoad = 2 };

/// The texts of the kinds, constant.
extern char kGlobalText[];
extern char kLocalText[];
extern char kWeightText[];

/// A new load value: vector, kind, and for a weight its grams; only the vector for any other kind.
/// @return made with `new`; the caller destroys it
qcValue* makeLoadValue(const qVector& load, int kind, float weight);

/// Reads a load value.
/// @param load    receives the stored force, kgf
/// @param local   receives 1 for a local load, else 0
/// @param weight  null: not wanted; else receives the grams of a weight load, -1 for any other
/// @return 1; 0 when it is none, the outputs are then not to be used
int decodeLoadValue(const qcValue& value, qVector& load, int& local, float* weight);

/// Reads an entry of the load list; a weight is converted anew and written back into the entry.
/// A load below 1e-5 kgf fails: a load that was set to zero disappears on reset.
/// @param key       receives the site key, which belongs to the entry
/// @param newValue  null: not wanted; else receives a new load value, which the caller destroys
/// @return 1; 0 when the entry cannot be read
int parseLoadEntry(qcValue& entry, const qVector& gravity, char*& key, qcValue** newValue);

/// Reads the force on a site, as getSiteLoad() does. @throws std::bad_alloc
int readSiteLoad(const qcSite* site, qVector& out);

/// The load of a site in the world, and where it acts.
///
/// Required: a local load is turned by the axes of the site's segment, not the site's own.
///
/// @return 1; 0 silently without a load, 0 after an error message when it cannot be read
int globalSiteLoad(qcSiteImp* site, qVector& load, qVector& point);
