// Offset loads: the names of the properties that hold them.
#pragma once

constexpr const char* kOffsetLoadListKey = "SSTR_LoadWithOffsetList";   // on the figure
constexpr const char* kSiteOffsetLoadsKey = "SSTR_LoadsWithOffsets";    // on a site
