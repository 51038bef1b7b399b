// Small figures: posed figures with round numbers, put together in a test and read by the host's own reader.
#pragma once

#include <nlohmann/json.hpp>

#include <array>
#include <string>
#include <vector>

/// Builds the JSON text of a posed figure. Units and axes are the host's: cm, g, rad; x left, y up,
/// z forward. Frames are parallel to the world's unless a test says otherwise. Parts are listed in
/// the order of the calls.
class SmallFigure {
public:
    using Vector = std::array<double, 3>;
    using Rows = std::array<Vector, 3>;   // row i: where axis i points

    explicit SmallFigure(const std::string& name = "man");

    /// A segment whose frame lies at a world position; its centre of mass is in its own frame.
    SmallFigure& segment(const std::string& name, double grams, Vector centerOfMass = {0, 0, 0},
                         Vector position = {0, 0, 0}, Rows axes = kWorldAxes);

    /// A site at a world position; the first one of a segment is its attachment unless told otherwise.
    SmallFigure& site(const std::string& segment, const std::string& name, Vector position, Rows axes = kWorldAxes);
    SmallFigure& secondPosition(const std::string& siteKey, Vector position);
    SmallFigure& attachment(const std::string& segment, const std::string& siteKey);

    /// A joint between two sites; it is listed at both. The inboard site is the first.
    SmallFigure& joint(const std::string& name, const std::string& firstSiteKey, const std::string& secondSiteKey,
                       const std::vector<double>& angles = {}, const std::string& fullName = "");

    /// Roles: "foot_site", "hand_site" (a site key), "knee", "ankle", "hip" (a joint) of "left" or "right".
    SmallFigure& role(const std::string& side, const std::string& role, const std::string& part);
    SmallFigure& pelvisSite(const std::string& siteKey);
    SmallFigure& waist(const std::string& joint);
    SmallFigure& referenceSite(const std::string& siteKey);
    SmallFigure& anthro(const std::string& state);   // "present", "init" or "none"

    /// A property that is there before any analysis: address like ["site", "hand.grip"], value like ["f", 1].
    SmallFigure& property(const nlohmann::json& address, const std::string& key, const nlohmann::json& value);

    std::string text() const;
    nlohmann::json& document() { return figure; }

    static constexpr Rows kWorldAxes = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};

private:
    nlohmann::json& segmentNamed(const std::string& name);
    nlohmann::json& siteKeyed(const std::string& key);

    nlohmann::json figure;
};

/// A whole small body with every part that the analysis asks for, symmetric left and right, standing
/// with straight legs. Positions in cm:
///
///   feet       right at x = -10, left at x = +10; the foot sites "sole" on the floor at z = 5
///   ankles     y = 10, z = 0        knees y = 50, z = 0        hips y = 90, z = 0
///   lower_torso  frame at (0, 90, 0); sites proximal, h_point (0, 90, 0), center_of_mass (0, 95, 0),
///                distal (0, 100, 0) with the waist, the hips' own sites, balance_point (0, 100, 5)
///   l5         (0, 100, 0) to (0, 110, 0)          t8  (0, 110, 0) to (0, 130, 0), carries solar_plexus
///   upper_torso  (0, 130, 0); clavicle joints at x = -/+ 5, y = 140
///   clavicle to (-/+ 20, 140, 0), arm (one segment, "right_arm") straight down to the wrist (-/+ 20, 80, 0),
///   hand with its palm centre at (-/+ 20, 72, 0)
///
/// Masses, g: lower_torso 10000, l5 2000, t8 10000, upper_torso 8000, each clavicle 1000, arm 3000,
/// hand 500, upper leg 8000, lower leg 4000, foot 800, toes 200. Centres of mass in the middle of
/// proximal and distal. Joints: waist, t8_l5, solar_plexus, and on each side clavicle_joint,
/// shoulder, wrist, hip, knee, ankle, ball. Angles: knees one (0), others none.
SmallFigure smallBody(const std::string& name = "man");

/// Three sites on two segments: hand.grip, hand.tip, head.top.
SmallFigure threeSites(const std::string& name = "man");
