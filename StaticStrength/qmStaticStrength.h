// Static strength: what force and moment every joint of a human figure carries.
//
// Units, axes and signs of everything below, unless a member says otherwise.
//
//   lengths   cm                      masses, weights   g
//   forces    kgf                     moments           N·m, about the joint's position
//   gravity   cm/s²                   angles            rad
//
//   axes        global: x to the figure's left, y up, z forward
//   transforms  row vectors, p' = p · M; the translation is row 3
//   results     what the body beyond a joint puts on it, not the reaction to it
//   ownership   host objects are borrowed; the object owns its script, observer and offset loads
//   failure     1 success, 0 failure, or a null pointer; nothing throws
//   memory      a member that lacks it reports "StaticStrength ERROR: out of memory in " and its name, gives its
//               failure value, leaves outputs alone and everything as it was: records, lists and properties agree.
//               Only compute() keeps what it has stored so far. clear(), deactivate() and the destructor need none.
//               A constructor throws std::bad_alloc, as `new` does, and what it had entered and bound is gone
//   gone        once the host has destroyed the human or its figure, the analysis can be asked for what it keeps
//               itself, deactivated and deleted. All else reports "StaticStrength ERROR: ", the member's name and
//               ": the human of NAME is gone", gives its failure value (compute() its 1) and touches nothing
//   threads     one: module-wide state is not guarded
//
// What an analysis is told and what it computes lives in properties of the figure, its sites and its
// joints, so that it is saved with the host's scene and found again by the next analysis.
#pragma once

#include "qc/qVector.h"
#include "qc/qcFigure.h"
#include "qc/qcHuman.h"
#include "qc/qcObject.h"
#include "qc/qcSim.h"

#include <vector>

/// Marks what the library exports.
#define SSTR_API __attribute__((visibility("default")))

/// A load that acts at a point displaced from a site. Made and owned by the analysis.
struct loadWithOffset {
    qcSite* site;     ///< what it is attached to; borrowed
    qVector offset;   ///< from the site to the point of application, cm, global axes for every type
    char* type;       ///< "local", "global" or "weight"; constant, never freed
    qVector load;     ///< kgf, global axes, for "local" the site's; a weight converted along gravity
    float mass;       ///< a weight's grams; -1 for a load set as a force; 0 for one restored as a force
    bool local;       ///< only for "local"
};

/// The static-strength analysis of one human.
///
/// Properties that it keeps, beside those told at their members:
///   figure  SSTR_Strategy            text, one of the six names of getStrategyName()
class SSTR_API qmStaticStrength : public qcObject {
public:
    /// How the body is supported.
    enum Strategy : int {
        TwoFeet = 0,
        RightFoot = 1,
        LeftFoot = 2,
        Walking = 3,         ///< each computation decides by the knees: two feet, right or left foot
        Sitting = 4,         ///< on the buttocks, feet on the ground
        SittingNoFeet = 5,   ///< on the buttocks, legs hanging
        N_STRS = 6,          ///< the number of named strategies
        HandsAndKnees = 7    ///< has no name and is never stored
    };

    // ---- Life ----------------------------------------------------------------------------------

    /// Makes an analysis of a human, enters it in the registry and restores what the figure's
    /// properties say. Without an anthropometric scale it reports an error and works all the same.
    /// @param human  borrowed; not null
    explicit qmStaticStrength(qcHuman* human);

    /// Member-wise copies: they share the pointers. A copy is not in the registry. What several objects
    /// share is freed with the last of them; a callback ends with the object that bound it.
    qmStaticStrength(const qmStaticStrength& other);
    qmStaticStrength& operator=(const qmStaticStrength& other);

    /// Leaves the registry, unbinds the callback and frees what the object owns. The properties stay.
    ~qmStaticStrength() override;

    /// The human's analysis, made on first request; null for a null human, when its figure is known to be
    /// gone, or when there is no memory for it.
    static qmStaticStrength* getHandle(qcHuman* human);

    /// The human analysed; null once it is gone.
    qcHuman* getHuman();

    /// Sets gravity and resets, so that every weight is converted anew: results are gone, and records of
    /// loads with offsets are others.
    void setGravity(const qVector& newGravity);

    /// Reads gravity. @return its magnitude
    float getGravity(qVector& out);

    /// Chooses how the body is supported and stores the choice on the figure. A value without a name
    /// (hands and knees) holds for this object until the next choice or reset; a stored text stays.
    void setStrategy(Strategy newStrategy);

    /// The strategy chosen.
    Strategy getStrategy();

    /// "Two Feet", "Right Foot", "Left Foot", "Walking", "Sitting", "Sitting, No Feet"; null for
    /// every other value. Constant texts.
    static const char* getStrategyName(Strategy strategy);

    /// Computes on every simulation step, and then runs a script.
    /// @param newScript  Python source, copied; null or empty: none
    /// @return 1; 0 when already active or without memory, the given script is then ignored
    int activate(const char* newScript);

    /// Ends what activate() began and drops the script. @return 1
    int deactivate();

    /// 1 while active, else 0.
    int isActive();

    /// Runs the script, if there is one. The script may deactivate or delete the analysis.
    void run_script();

    // ---- Input: loads ---------------------------------------------------------------------------
    //
    //   site    SSTR_Load       list: vector (kgf), text "global", "local" or "weight", float (g, weights only)
    //   figure  SSTR_LoadList   list of lists: text "segment.site", then the elements of the site's load;
    //                           in the order in which the sites first received a load; never empty

    /// Puts a force on a site, in place of any load there. The site need not be on this figure.
    /// @param load  kgf, in global axes; in the site's axes for kind 1
    /// @param kind  0 global, 1 local, 2 a weight of 0 g with this force; any other value stores a
    ///              load that cannot be read
    /// @return 1; 0 when the site is null
    int setLoad(qcSite* site, const qVector& load, int kind = 0);

    /// Puts a weight on a site, in place of any load there: gravity · weight · 0.001 / 980.665.
    /// @return 1; 0 when the site is null or on another figure
    int setWeightLoad(qcSite* site, float weight);

    /// Takes the load off a site. @return 1; 0 when the site is null or has none
    int removeLoad(qcSite* site);

    /// How many loads the figure's list holds.
    int getNumLoads();

    /// The site of the n-th load, from 0; the first for a negative n; null when there is none.
    qcSite* getNthLoadSite(int n);

    /// "weight", "local" or "global", constant; null without a readable load.
    char* getLoadType(qcSite* site);

    /// A weight load's weight, g; -1 otherwise.
    float getSiteWeight(qcSite* site);

    /// Reads the force on a site, kgf, in the axes of its kind. @return 1; 0 without a readable
    /// load, `out` is then left as it was
    int getSiteLoad(qcSite* site, qVector& out);

    // ---- Input: loads with offsets --------------------------------------------------------------
    //
    //   figure  SSTR_LoadWithOffsetList  list of lists: text "segment.site", vector offset, vector load, text type,
    //                                    float (g, weights only); an empty value once there are none
    //   site    SSTR_LoadsWithOffsets    list of lists: the same without the key; stays when the last load goes

    /// Adds a force at a point displaced from a site. The site need not be on this figure.
    /// @param offset  cm, in global axes, for local loads too
    /// @param load    kgf, in global axes; in the site's axes for a local load
    /// @return the record, owned by the analysis, good until it is removed or the analysis is cleared
    ///         or reset; null when the site is null
    loadWithOffset* setLoadWithOffset(qcSite* site, const qVector& offset, const qVector& load, int local = 0);

    /// Adds a weight at a point displaced from a site.
    /// @return as setLoadWithOffset(); null also when the site is on another figure
    loadWithOffset* setWeightLoadWithOffset(qcSite* site, const qVector& offset, float weight);

    /// Removes a load and frees its record. @return 1; 0 when it is null or none of this analysis
    int removeLoadWithOffset(loadWithOffset* record);

    /// The n-th record, from 0, in the order in which they were set; null when there is none.
    loadWithOffset* getNthLoadWithOffset(int n) const;
    int getNumLoadsWithOffset() const;

    // ---- Input: torques -------------------------------------------------------------------------
    //
    //   joint   SSTR_Torque      list of one vector (N·m, global axes)
    //   figure  SSTR_TorqueList  list of lists: text joint name, vector; never empty

    /// Defines a moment at a joint, N·m, in place of any defined there. @return 1; 0 when the joint is null
    int setDefinedTorque(qcJoint* joint, qVector& torque);

    /// Removes a joint's torque. @return 1; 0 when the joint is null or has none
    int removeDefinedTorque(qcJoint* joint);

    /// How many torques the figure's list holds. Joints of one name share an entry.
    int getNumDefinedTorques() const;

    /// The joint of the n-th torque, from 0; the first for a negative n; null when there is none.
    qcJoint* getNthDefinedTorqueJoint(int n) const;

    /// Reads a joint's torque, N·m. @return 1; 0 without a readable one, `out` is then left as it was
    int getDefinedTorque(qcJoint* joint, qVector& out) const;

    // ---- Input: all of it -----------------------------------------------------------------------

    /// Removes every load, torque, result and the stored strategy from the figure, and frees the records
    /// of loads with offsets. The strategy and gravity of this object stay, and so do loads that were put
    /// on other figures.
    void clear();

    /// Rebuilds everything from the figure's saved lists: weights are converted with the present
    /// gravity, results are gone. Entries that cannot be read, or whose site or joint this figure does not
    /// have, are dropped, with a warning for loads and torques. Memory that runs out is met before anything
    /// changes: lists, records and results stay whole, and a later reset restores all of it.
    /// @return 1 when at least one of the three lists was there and restored whole, else 0
    int reset();

    // ---- Report ---------------------------------------------------------------------------------

    /// The settings as text, a line a call: each load of the list, the strategy, gravity. Loads with
    /// offsets and torques are not in it.
    ///
    ///   "hand.grip\tWeight: 1500.0 gr"      "hand.grip\tLocal Load: (1.00, 0.00, -2.50) Kg-F", or Global;
    ///   "(Error)"                           an entry that cannot be read, or of a load below 1e-5 kgf
    ///   "No loads."                         no list: gravity comes next, without a line for the strategy
    ///   "Strategy: \"Two Feet\""            or "(No Strategy Specified)"
    ///   "Gravity: (0.00, -980.66, 0.00) cm/sec^2"
    ///
    /// One report at a time for the whole module: it goes on whichever analysis is asked, with the loads as
    /// they were at its start and the asked one's strategy and gravity.
    /// @param start  not 0: begins anew; 0: goes on
    /// @return the line, without a line break, in a buffer of the module that is good until the next call; a
    ///         site key too long for its 2047 characters is cut. Null when the report is over or was never begun
    char* reportLoads(int start = 0);

    // ---- Compute --------------------------------------------------------------------------------

    /// Analyses the human in its present posture and leaves the results on the joints. Joints that the
    /// strategy does not reach keep what they had.
    /// @return 1, always: what fails is reported through error(). Where memory runs out, the joints up to there
    ///         have their new results and the others keep what they had
    int compute();

    // ---- Results --------------------------------------------------------------------------------
    //
    //   joint   SSTR_Force_Moment  list of two vectors, force (kgf) then moment (N·m), global axes.
    //                              Absent: both at most 0.01, nothing computed there since the last
    //                              reset, or a knee when sitting. A walk never stores the zero vector
    //                              as a moment: at most 0.01 becomes (0.00001, 0.00001, 0.00001)

    /// Reads the result on a joint.
    /// @param force   receives the force, kgf, global axes
    /// @param moment  receives the moment about the joint's position, N·m, global axes
    /// @return 1 when both were read. 0 when the joint is null or has no result: both are then
    ///         (0, 0, 0); or when the stored value is no result: both are then left as they were
    int getJointForces(qcJoint* joint, qVector& force, qVector& moment) const;

    /// Stores a result on a joint, whatever its size; null does nothing.
    void setFMonJoint(qcJoint* joint, const qVector& force, const qVector& moment);

    /// Adds a force that acts at a point to the sums kept at a joint.
    ///
    ///   sumForce  += f
    ///   sumMoment += (point - jointPos) × f · MOMENT_SCALE
    ///
    /// Every moment of the analysis is formed here. Source: the moment of a force about a point;
    /// 1 kgf·cm = 0.0980665 N·m, from standard gravity, 980.665 cm/s² (CGPM, 1901).
    void calcForcesAt(qVector& jointPos, qVector& point, qVector& f, qVector& sumForce, qVector& sumMoment);

    /// The share of a contribution on a segment at which a walk stops.
    /// @param joint  the joint being computed
    /// @param mode   1: of another joint's stored result; 2: of a load; 3: of the segment's weight
    /// @param name   mode 1: the other joint's name
    /// @return 0 to 1; not a number where both supports lie under the balance point or one is missing
    float getSplitFactor(qcJoint* joint, int mode, const char* name);

private:
    struct Beginning {};
    qmStaticStrength(qcHuman* analysed, Beginning);
    int humanInfo();
    bool isOrphaned(const char* member) const;
    void releaseOwned(const qmStaticStrength* keeper);
    static qcValue textOf(Strategy named);
    void takeStrategy(Strategy chosen, qcValue text);

    // Split: who carries how much.
    Strategy calculate_split();
    void splitBetweenFeet();
    Strategy splitWalking();
    void splitHandsAndKnees();
    float get_split_factor(qcJointImp* joint, int mode, const char* name);

    // Walks.
    void computeBySupport();
    int compute_joint_forces(qcJointImp* joint, qcSiteImp* site, qVector& force, qVector& moment, qcSegmentImp* stop,
                             int accumulate);
    void special_joint_forces(qcJointImp* other, qcJointImp* joint, qVector& force, qVector& moment);
    struct Walk;

    // Legs.
    void walkWaist(qVector& force, qVector& moment, qcSegmentImp* stop);
    void computeOneFoot(qcSide side, qVector& force, qVector& moment);
    void computeSitting(qVector& force, qVector& moment);
    void computeSittingLeg(qcSide side, qVector& force, qVector& moment);
    void computeSittingNoFeet(qVector& force, qVector& moment);
    void computeHandsAndKnees(qVector& force, qVector& moment);
    void calcLowerBodyFM_URmethod();

    // Two further methods for the legs, which compute() does not use. HipKneeAnkle.h tells the first one's state.
    void calcHipKneeAnkleForcesMoments();
    void createAndSetupWeights();
    void solveReactionForces();
    void computeForcesAtKnee();
    void setSiteLoads();
    void calcHipKneeAnkFMfor2FeetStgy();
    void computeFMforLegJoint(qcJoint* joint, qcSegment* segment, qVector& inForce, qVector& inPoint, qVector& outForce,
                              qVector& outMoment, qVector& outPoint);

    // Restoring from the kept lists.
    int rebuild();
    void readOffsetLoads(qcValue& list, std::vector<loadWithOffset*>& records) const;
    loadWithOffset* parseOffsetLoadEntry(qcValue& entry) const;

    // Records of loads with offsets.
    loadWithOffset* addOffsetLoad(const loadWithOffset& added);
    void replaceOffsetLoads(std::vector<loadWithOffset*>& records);
    void dropOffsetLoads();

    // The order of the fields is part of the interface.
    qcHuman* human;
    qcFigure* figure;
    qVector gravity;   // cm/s²
    Strategy strategy;
    float splitFactors[4];     // left hip, right hip, left clavicle, right clavicle; 0 to 1
    qcSegmentImp* l5Segment;   // where the upper body's walk stops on hands and knees
    qcAnthroScale* anthroScale;
    qcCallback* callback;   // null while inactive
    char* script;           // from malloc
    qcRefObserver* observer;
    std::vector<loadWithOffset*>* offsetLoads;
};
