// Roles file: NAME.roles.json, which says which parts of a URDF figure play a human's roles, and renames.
#pragma once

#include "UrdfPlan.h"

#include <string>

/// Applies a roles file to a planned figure: renames parts, adds sites, orders angles, finds the
/// parts that play roles, and takes over what it tells of the body.
///
///   "version"                           1
///   "comment"                           any text
///   "rename_links", "rename_joints"     {old name: new name}
///   "rename_sites"                      {"segment.site", both as in the model: the site's new own name}
///   "sites"                             {"segment.site": {"offset_cm": [x, y, z]}}, new ones, in the
///                                       segment's frame and the host's axes
///   "angle_order"                       {joint: [its angles' names]}: how the analysis counts the
///                                       angles; the order in which they turn stays
///   "left", "right"                     {"foot_site", "hand_site": site, "knee", "ankle", "hip": joint}
///   "pelvis_site", "reference_site"     site
///   "waist"                             joint
///   "base"                              {"sex", "stature_cm", "mass_kg"} of the model
///   "other_sex"                         {"sex", "stature_cm", "mass_kg", "mass_percent": {segment: %}}
///
/// Each key may be left out. Where nothing else is said, names are the new ones.
/// @param text  the file's content; @param file  what to call it in messages
/// @throws InputError with the file, the JSON path, what was expected and what was found
void applyRoles(UrdfPlan& plan, const std::string& text, const std::string& file);

/// Without a roles file all roles are missing.
void applyNoRoles(UrdfPlan& plan);
