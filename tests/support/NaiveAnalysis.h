// Naive analysis: a second, independent way to the numbers of the analysis, with the error that single precision may
// make.
//
// NaiveWalk sums every weight and load beyond a joint directly about that joint, in double.
// NaiveLegs writes the two-feet method down once more for any kind of number: with float it gives the
// same bits, with BoundedNumber the value in double and how far a computation in float may lie from it.
#pragma once

#include "qc/qcHuman.h"

#include <array>
#include <cmath>
#include <map>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

/// Half a unit in the last place of 1 in single precision: the relative error of one rounding.
constexpr double kRounding = 1.0 / (1 << 24);

/// A number in double, and a bound on the distance to what a float computation of it gives: every
/// operation hands on the errors of its operands and adds one rounding of its result.
struct BoundedNumber {
    double value = 0;
    double error = 0;

    BoundedNumber() = default;
    BoundedNumber(double exact, double bound = 0) : value(exact), error(bound) {}
    static BoundedNumber rounded(double exact, double operandErrors)
    {
        return {exact, operandErrors + kRounding * (std::abs(exact) + operandErrors)};
    }

    friend BoundedNumber operator+(BoundedNumber a, BoundedNumber b)
    {
        return rounded(a.value + b.value, a.error + b.error);
    }
    friend BoundedNumber operator-(BoundedNumber a, BoundedNumber b)
    {
        return rounded(a.value - b.value, a.error + b.error);
    }
    friend BoundedNumber operator-(BoundedNumber a) { return {-a.value, a.error}; }
    friend BoundedNumber operator*(BoundedNumber a, BoundedNumber b)
    {
        return rounded(a.value * b.value,
                       std::abs(a.value) * b.error + std::abs(b.value) * a.error + a.error * b.error);
    }
    // |a/b - a'/b'| <= (|a| eb + |b| ea) / (|b| (|b| - eb))
    friend BoundedNumber operator/(BoundedNumber a, BoundedNumber b)
    {
        const double divisor = std::abs(b.value);
        const double least = divisor - b.error;
        const double operandErrors =
            least > 0 ? (std::abs(a.value) * b.error + divisor * a.error) / (divisor * least) : HUGE_VAL;
        return rounded(a.value / b.value, operandErrors);
    }
    // |sqrt(a) - sqrt(a')| <= e / sqrt(a), and never above sqrt(e)
    friend BoundedNumber sqrt(BoundedNumber a)
    {
        const double root = std::sqrt(a.value);
        const double far = std::sqrt(a.error);
        return rounded(root, root > far ? a.error / root : far);
    }
};

/// Three numbers of any kind, in the host's order of operations.
template <class T> struct Triple {
    T x{}, y{}, z{};

    friend Triple operator+(const Triple& a, const Triple& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
    friend Triple operator-(const Triple& a, const Triple& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
    friend Triple operator*(const Triple& a, T factor) { return {a.x * factor, a.y * factor, a.z * factor}; }
    friend Triple cross(const Triple& a, const Triple& b)
    {
        return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
    }
    friend T dot(const Triple& a, const Triple& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
    friend T length(const Triple& a)
    {
        using std::sqrt;
        return sqrt(dot(a, a));
    }
    friend Triple unit(const Triple& a)
    {
        const T size = length(a);
        return {a.x / size, a.y / size, a.z / size};
    }
};
using Exact = Triple<double>;

inline Exact exactly(const qVector& v)
{
    return {v[0], v[1], v[2]};
}

// ---- The walk -----------------------------------------------------------------------------------

/// What an analysis was told, as a test knows it.
struct NaiveLoads {
    struct Force {
        Exact load;   // kgf
        bool local;   // in the site's axes
    };
    struct Displaced {
        qcSite* site;
        Exact offset;   // cm, global axes
        Force force;
    };
    std::map<const qcSite*, Force> sites;
    std::vector<Displaced> displaced;
    std::map<const qcJoint*, Exact> torques;   // N·m
    std::optional<Force> hands[2];             // by qcSide
};

/// A result, and how far one in single precision may lie from it, component by component.
struct NaiveResult {
    Exact force, moment;      // kgf, N·m
    double forceBound = 0;    // kgf
    double momentBound = 0;   // N·m
    bool stored = false;      // else it is negligible and removed
    int replaced = 0;         // here and beyond: how often a negligible force or moment was not kept as it is
    bool unsure = false;      // here or beyond, rounding may decide whether it is negligible
    qcSite* from = nullptr;   // the side on which the walk came
};

/// Walks a figure; knows no stop segment.
class NaiveWalk {
public:
    /// @param positionError  relative error of every position and axis
    NaiveWalk(qcHuman* human, const Exact& gravity, const NaiveLoads& loads, double positionError = 0)
        : human(human), gravity(gravity), loads(loads), positionError(positionError)
    {}

    void standOn(qcSide foot);   ///< everything, at that foot's ankle
    void upperBody();            ///< from the waist up
    void hangingLegs();          ///< both legs, at the hips

    /// By joint; only joints that were walked.
    const std::map<qcJoint*, NaiveResult>& results() const { return found; }

    /// One joint's force and moment from the stored results of the joints beyond it, by one step.
    NaiveResult stepFromStored(qcJoint* joint, qcSite* from,
                               const std::map<qcJoint*, std::pair<Exact, Exact>>& stored) const;

private:
    // A force at a point of the world, kgf and cm, and its errors.
    struct Term {
        Exact point, force;
        double pointError, forceError;
    };
    struct Sum {
        std::vector<Term> forces;   // all beyond the joint
        Exact couple;               // N·m, acts at no point
        NaiveResult result;
    };
    std::vector<Term> ownForces(const qcSegment* segment) const;
    Sum walk(qcJoint* joint, qcSite* from, const Sum* before);

    qcHuman* human;
    Exact gravity;   // cm/s²
    const NaiveLoads& loads;
    double positionError;
    std::map<qcJoint*, NaiveResult> found;
};

// ---- The two-feet method ------------------------------------------------------------------------

/// How a kind of number does a step that is computed in double and narrowed once.
inline float inDouble(double value, float)
{
    return static_cast<float>(value);
}
inline float timesInDouble(float a, double factor)
{
    return static_cast<float>(double(a) * factor);
}
inline float oneMinus(float a)
{
    return static_cast<float>(1.0 - double(a));
}
inline BoundedNumber inDouble(double value, BoundedNumber)
{
    return BoundedNumber::rounded(value, 0);
}
inline BoundedNumber timesInDouble(BoundedNumber a, double factor)
{
    return a * BoundedNumber(factor);
}
inline BoundedNumber oneMinus(BoundedNumber a)
{
    return BoundedNumber(1) - a;
}

/// Whether a <= b; sets `unsure` where rounding may decide it.
inline bool atMost(float a, float b, bool&)
{
    return a <= b;
}
inline bool atMost(BoundedNumber a, BoundedNumber b, bool& unsure)
{
    unsure |= !(std::abs(a.value - b.value) > a.error + b.error);
    return a.value <= b.value;
}
inline bool isNegative(float a, bool&)
{
    return a < 0;
}
inline bool isNegative(BoundedNumber a, bool& unsure)
{
    unsure |= !(std::abs(a.value) > a.error);
    return a.value < 0;
}

/// The legs of a human on two feet.
template <class T> class NaiveLegs {
public:
    using Vector = Triple<T>;
    enum Support { kRight, kLeft, kBoth };
    struct Store {
        qcJoint* joint;
        Vector force, moment;
    };

    /// @param positionError  relative error of every position; counts for BoundedNumber only
    NaiveLegs(qcHuman* human, const qVector& gravity, const Vector& waistForce, const Vector& waistMoment,
              const qVector* hPointLoad, double positionError = 0)
        : human(human), positionError(positionError), Fw(waistForce), Mw(waistMoment), hasH(hPointLoad)
    {
        gather(gravity, hPointLoad);
        balance();
        if (support == kBoth)
            bothFeet();
        else
            oneFoot(support == kRight ? qcRight : qcLeft);
    }

    std::vector<Store> stores;   ///< in the order in which they are made; a later one on a joint wins
    Support support = kBoth;
    bool unsure = false;   ///< rounding may decide a branch
    T r{}, q{};            ///< the shares of the right and the left foot, on both feet

private:
    T coordinate(double value, double size) const
    {
        if constexpr (std::is_same_v<T, float>)
            return static_cast<float>(value);
        else
            return T(value, positionError * size);
    }
    Vector position(const qVector& p) const
    {
        const double size = length(exactly(p));
        return {coordinate(p[0], size), coordinate(p[1], size), coordinate(p[2], size)};
    }
    static Vector asGiven(const qVector& v) { return {T(v[0]), T(v[1]), T(v[2])}; }
    Vector at(qcSite* site) const { return position(site->getGlobalTransform().getTranslation()); }
    qcSegment* segmentNamed(const char* name) const { return human->getFigure()->findSegment(name); }
    qcSite* siteOfTorso(const char* name) const
    {
        const std::string full = std::string(segmentNamed("lower_torso")->getFullName()) + "." + name;
        return human->getFigure()->findSiteByFullName(full.c_str());
    }

    // W = gravity · m · 0.001 / 980.665, C = centre of mass in the world
    struct Mass {
        Vector W, C;
    };
    Mass massOf(const char* name, const qVector& gravity) const
    {
        qcSegment* segment = segmentNamed(name);
        const T factor = inDouble(double(segment->getMass()) * 0.001 / double(980.665f), T());
        const qMatrix& frame = segment->getGlobalTransform();
        const Vector com = asGiven(segment->getCenterOfMass());
        const Vector axes[3] = {axis(frame, 0), axis(frame, 1), axis(frame, 2)};
        const Vector origin = position(frame.getTranslation());
        return {asGiven(gravity) * factor, axes[0] * com.x + axes[1] * com.y + axes[2] * com.z + origin};
    }
    Vector axis(const qMatrix& frame, int i) const { return position(frame.getAxis(i)); }

    void gather(const qVector& gravity, const qVector* hPointLoad)
    {
        LT = massOf("lower_torso", gravity);
        U[qcRight] = massOf("right_upper_leg", gravity);
        L[qcRight] = massOf("right_lower_leg", gravity);
        U[qcLeft] = massOf("left_upper_leg", gravity);
        L[qcLeft] = massOf("left_lower_leg", gravity);
        qcSegment* torso = segmentNamed("lower_torso");
        Pw = at(human->getWaistJoint()->siteOnSegment(torso));
        for (const qcSide side : {qcRight, qcLeft}) {
            const std::string prefix = side == qcRight ? "right_" : "left_";
            Ph[side] = at(human->getHipJoint(side)->siteOnSegment(torso));
            Pk[side] = at(human->getKneeJoint(side)->siteOnSegment(segmentNamed((prefix + "upper_leg").c_str())));
            Pa[side] = at(human->getAnkleJoint(side)->siteOnSegment(segmentNamed((prefix + "lower_leg").c_str())));
        }
        PhPoint = at(siteOfTorso("h_point"));
        X = axis(siteOfTorso("proximal")->getGlobalTransform(), 0);
        if (hasH)
            Lh = asGiven(*hPointLoad);
    }

    // Adds f at b about a: F += f, M += f × (a - b) · 0.0980665
    static void addAt(const Vector& a, const Vector& b, const Vector& f, Vector& F, Vector& M)
    {
        F = F + f;
        M = M + cross(f, a - b) * inDouble(double(980.665f) * 0.0001, T());
    }

    void balance()
    {
        for (const qcSide side : {qcRight, qcLeft}) {
            const qcSide other = side == qcRight ? qcLeft : qcRight;
            Vector M;
            // about the right ankle: left leg from below, right leg from above, and so mirrored
            addAt(Pa[side], L[other].C, L[other].W, FA[side], M);
            addAt(Pa[side], U[other].C, U[other].W, FA[side], M);
            addAt(Pa[side], U[side].C, U[side].W, FA[side], M);
            addAt(Pa[side], L[side].C, L[side].W, FA[side], M);
            addAt(Pa[side], LT.C, LT.W, FA[side], M);
            addAt(Pa[side], Pw, Fw, FA[side], M);
            if (hasH)
                addAt(Pa[side], PhPoint, Lh, FA[side], M);
            MA[side] = M + Mw;
        }
        const T product = dot(MA[qcRight], X) * dot(MA[qcLeft], X);
        if (isNegative(product, unsure))
            support = kBoth;
        else
            support = atMost(length(MA[qcRight]), length(MA[qcLeft]), unsure) ? kRight : kLeft;
    }

    void store(qcJoint* joint, const Vector& force, const Vector& moment) { stores.push_back({joint, force, moment}); }

    void oneFoot(qcSide stance)
    {
        const qcSide free = stance == qcRight ? qcLeft : qcRight;
        store(human->getAnkleJoint(stance), FA[stance], MA[stance]);
        store(human->getAnkleJoint(free), Vector(), Vector());

        Vector F = Fw + LT.W, M = Mw, dropped;
        store(human->getHipJoint(stance), F, M);
        addAt(Pk[stance], Ph[stance], F, dropped, M);
        addAt(Pk[stance], U[stance].C, U[stance].W, F, M);
        store(human->getKneeJoint(stance), F, M);

        F = M = Vector();
        addAt(Pk[free], L[free].C, L[free].W, F, M);
        store(human->getKneeJoint(free), F, M);
        addAt(Ph[free], Pk[free], F, dropped, M);
        addAt(Ph[free], U[free].C, U[free].W, F, M);
        store(human->getHipJoint(free), F, M);
    }

    static void removeAlong(Vector& v, const Vector& u)
    {
        const T p = dot(v, u);
        v = v - unit(u) * p;
    }

    void bothFeet()
    {
        constexpr double K = 10.204081632653061;
        const Vector &MR = MA[qcRight], &ML = MA[qcLeft];
        const Vector d = Pa[qcLeft] - Pa[qcRight];
        const T D = length(d);
        const Vector down = {T(0), T(-1), T(0)};
        const Vector n = unit(cross(d, down));

        const Vector F1 = down * timesInDouble(dot(MR, n) / D, K);
        const Vector F2 = down * timesInDouble(-dot(ML, n) / D, K);
        const Vector F3 = n * timesInDouble(-(dot(MR, down) / D), K);
        const Vector F4 = n * timesInDouble(dot(ML, down) / D, K);
        r = length(F2) / (length(F2) + length(F1));
        q = oneMinus(r);

        const T arm = T(0.098f);
        const Vector AR = FA[qcRight] - F1 - F3, AL = FA[qcLeft] - F2 - F4;
        store(human->getAnkleJoint(qcRight), AR, (MR + cross(F1 + F3, d) * arm) * r);
        store(human->getAnkleJoint(qcLeft), AL, (ML + cross(F2 + F4, d) * T(-1) * arm) * q);

        Vector LTr = LT.W * r, LTl = LT.W * q;
        Vector UR = U[qcRight].W, LR = L[qcRight].W, UL = U[qcLeft].W, LL = L[qcLeft].W;
        if (atMost(r, q, unsure)) {
            LTl = LTl + (UR + LR) * timesInDouble(q, 1 / 0.5);
            UR = UR * r;
            LR = LR * r;
        } else {
            LTr = LTr + (UL + LL) * timesInDouble(r, 1 / 0.5);
            UL = UL * q;
            LL = LL * q;
        }

        const Vector loadR = Fw * r + LTr, loadL = Fw * q + LTl;
        Vector sumR = loadR + UR + LR, sumL = loadL + UL + LL, hipR = loadR, hipL = loadL;
        if (hasH) {
            sumR = sumR + Lh * r;
            sumL = sumL + Lh * q;
            hipR = hipR + Lh * r;
            hipL = hipL + Lh * q;
        }
        const T kR = length(AR) / length(sumR), kL = length(AL) / length(sumL);

        const Vector HR = hipR * kR, HL = hipL * kL;
        const Vector HRm = Mw * r, HLm = Mw * q;
        Vector KRm = HRm, KLm = HLm, dropped;
        addAt(Pk[qcRight], Ph[qcRight], HR, dropped, KRm);
        addAt(Pk[qcLeft], Ph[qcLeft], HL, dropped, KLm);
        for (Vector* moment : {&KRm, &KLm}) {
            removeAlong(*moment, n);
            removeAlong(*moment, down);
        }
        store(human->getHipJoint(qcLeft), HL, HLm);
        store(human->getKneeJoint(qcLeft), HL + UL * kL, KLm);
        store(human->getHipJoint(qcRight), HR, HRm);
        store(human->getKneeJoint(qcRight), HR + UR * kR, KRm);
    }

    qcHuman* human;
    double positionError;
    Vector Fw, Mw;   // kgf, N·m
    bool hasH;
    Vector Lh;                        // kgf
    Mass LT, U[2], L[2];              // lower torso, upper legs, lower legs
    Vector Pw, Ph[2], Pk[2], Pa[2];   // waist, hips, knees, ankles, cm
    Vector PhPoint, X;
    Vector FA[2], MA[2];   // everything above the ankles, about each ankle
};
