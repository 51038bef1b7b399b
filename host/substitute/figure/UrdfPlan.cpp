// URDF plan: links become segments, sites and joints.
#include "UrdfPlan.h"

#include "Files.h"
#include "InputError.h"
#include "MessageNumber.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

namespace {

constexpr double kMassless = 0.01;   // g: at most this is a filler that published models write
constexpr const char* kProximal = "proximal";

std::size_t at(int index)
{
    return static_cast<std::size_t>(index);
}

// A placement in a frame that is itself placed by `outer`:
//   rotation = inner · outer        offset = inner offset · outer + outer offset
Placement composed(const Placement& inner, const Placement& outer)
{
    Placement result{turned(inner.offset, outer.rotation), product(inner.rotation, outer.rotation)};
    add(result.offset, outer.offset);
    return result;
}

// The placement of the outer frame in the inner one: rotationᵀ, -offset · rotationᵀ.
Placement inverse(const Placement& placement)
{
    Placement result;
    for (std::size_t row = 0; row < 3; ++row)
        for (std::size_t column = 0; column < 3; ++column)
            result.rotation[3 * row + column] = placement.rotation[3 * column + row];
    const Point back = turned(placement.offset, result.rotation);
    result.offset = {0 - back[0], 0 - back[1], 0 - back[2]};
    return result;
}

std::string kilograms(double grams)
{
    return messageNumber(grams * 0.001) + " kg";
}

class Planner {
public:
    explicit Planner(const UrdfModel& urdf) : model(urdf) {}

    UrdfPlan run()
    {
        plan.name = model.name;
        plan.notes = model.notes;
        chooseRoot();
        classify();
        makeSegments();
        placeLinks();
        makeLinkSites();
        makeJoints();
        finishMasses();
        return std::move(plan);
    }

private:
    enum Kind { kSegment, kSite, kInner };

    const UrdfLink& link(int index) const { return model.links[at(index)]; }
    const UrdfJoint& joint(int index) const { return model.joints[at(index)]; }
    bool hasMass(int index) const { return link(index).mass > kMassless; }
    void note(const std::string& line) { plan.notes.push_back(line); }

    // A massless root, with what is rigid with it, belongs to the one link with mass that is fixed to it.
    void chooseRoot()
    {
        base = model.root;
        inHost.resize(model.links.size());
        if (hasMass(model.root))
            return;
        std::vector<int> rigid = {model.root};   // massless links, placed in the root's frame
        std::vector<int> bodies;
        for (std::size_t i = 0; i < rigid.size(); ++i)
            for (const int j : link(rigid[i]).children) {
                if (joint(j).moves)
                    continue;
                const int child = joint(j).child;
                inHost[at(child)] = composed(joint(j).origin, inHost[at(rigid[i])]);
                (hasMass(child) ? bodies : rigid).push_back(child);
            }
        if (bodies.size() != 1) {
            inHost.assign(model.links.size(), {});
            return;
        }
        base = bodies[0];
        const Placement rootInBase = inverse(inHost[at(base)]);
        for (const int index : rigid)
            inHost[at(index)] = composed(inHost[at(index)], rootInBase);
        inHost[at(base)] = {};
        aroundBase.insert(rigid.begin(), rigid.end());
    }

    void classify()
    {
        kinds.resize(model.links.size(), kSegment);
        for (std::size_t i = 0; i < model.links.size(); ++i)
            kinds[i] = kindOf(static_cast<int>(i));
    }

    Kind kindOf(int index) const
    {
        const UrdfLink& l = model.links[at(index)];
        if (aroundBase.count(index))
            return kSite;
        if (hasMass(index) || index == base)
            return kSegment;
        if (!joint(l.parentJoint).moves)
            return kSite;
        return l.children.size() == 1 && joint(l.children[0]).moves ? kInner : kSegment;
    }

    void makeSegments()
    {
        segmentOf.resize(model.links.size(), -1);
        for (std::size_t i = 0; i < model.links.size(); ++i) {
            if (kinds[i] != kSegment)
                continue;
            segmentOf[i] = static_cast<int>(plan.segments.size());
            PlannedSegment segment;
            segment.source = segment.name = model.links[i].name;
            plan.segments.push_back(segment);
            if (!hasMass(static_cast<int>(i)))
                note("link " + inQuotes(segment.name) + ": it has no mass and "
                     + (static_cast<int>(i) == base       ? "is the root"
                        : model.links[i].children.empty() ? "ends a chain of moving joints"
                                                          : "does not just pass one moving joint on to another")
                     + ": a segment of mass 0.");
        }
        moments.resize(plan.segments.size(), Point{0, 0, 0});
        merged.resize(plan.segments.size(), 0);
    }

    // Where each link stands in the segment that it belongs to, and what it weighs there.
    void placeLinks()
    {
        hosts.resize(model.links.size(), -1);
        const int root = segmentOf[at(base)];
        hosts[at(base)] = root;
        plan.outward.push_back(root);
        addMass(base, root, {});
        for (const int index : model.outward) {
            const std::size_t i = at(index);
            if (index == base)
                continue;
            if (aroundBase.count(index)) {
                hosts[i] = root;
                if (index == model.root)
                    note("link " + inQuotes(link(index).name)
                         + ": a root without mass; it is now a site of the segment " + inQuotes(link(base).name)
                         + ", which became the root.");
                addMass(index, root, inHost[i]);
                continue;
            }
            const UrdfJoint& j = joint(link(index).parentJoint);
            const Placement outer = composed(j.origin, inHost[at(j.parent)]);
            const int outerHost = hosts[at(j.parent)];
            if (kinds[i] == kSegment) {
                hosts[i] = segmentOf[i];
                plan.segments[at(segmentOf[i])].parent = outerHost;
                plan.outward.push_back(segmentOf[i]);
            } else {
                hosts[i] = outerHost;
                inHost[i] = outer;
            }
            if (hasMass(index))
                addMass(index, hosts[i], {});
            else
                addMass(index, outerHost, outer);
        }
    }

    //   mass := mass + m        moment := moment + m · (center in the segment's frame)
    void addMass(int index, int segment, const Placement& place)
    {
        const UrdfLink& l = link(index);
        if (!(l.mass > 0))
            return;
        PlannedSegment& into = plan.segments[at(segment)];
        if (segmentOf[at(index)] != segment)
            note("link " + inQuotes(l.name) + ": its mass of " + kilograms(l.mass) + " was merged into the segment "
                 + inQuotes(into.name) + ".");
        Point center = turned(l.center, place.rotation);
        into.mass += l.mass;
        for (std::size_t k = 0; k < 3; ++k)
            moments[at(segment)][k] += l.mass * (center[k] + place.offset[k]);
        // a segment of one link keeps its centre to the bit
        if (++merged[at(segment)] == 1)
            for (std::size_t k = 0; k < 3; ++k)
                into.center[k] = center[k] + place.offset[k];
    }

    //   center = Σ m_i · center_i / Σ m_i
    void finishMasses()
    {
        for (std::size_t s = 0; s < plan.segments.size(); ++s)
            if (merged[s] > 1)
                for (std::size_t k = 0; k < 3; ++k)
                    plan.segments[s].center[k] = moments[s][k] / plan.segments[s].mass;
    }

    int addSite(int segment, const std::string& name, const Placement& placement, int maker, int namesake)
    {
        PlannedSite site;
        site.source = site.name = name;
        site.segment = segment;
        site.placement = placement;
        site.maker = maker;
        site.namesake = namesake;
        plan.sites.push_back(site);
        const int index = static_cast<int>(plan.sites.size()) - 1;
        siteNames.emplace(std::to_string(segment) + "." + name, index);
        return index;
    }

    int findSite(int segment, const std::string& name) const
    {
        const auto found = siteNames.find(std::to_string(segment) + "." + name);
        return found == siteNames.end() ? -1 : found->second;
    }

    void makeLinkSites()
    {
        siteOf.resize(model.links.size(), -1);
        for (std::size_t i = 0; i < model.links.size(); ++i) {
            if (kinds[i] != kSite)
                continue;
            const int segment = hosts[i];
            std::string name = model.links[i].name;
            const std::string prefix = plan.segments[at(segment)].source + ".";
            if (name.size() > prefix.size() && name.compare(0, prefix.size(), prefix) == 0)
                name.erase(0, prefix.size());
            siteOf[i] = addSite(segment, name, inHost[i], model.links[i].parentJoint, -1);
        }
    }

    // Joints.

    // The URDF joints between a segment and the next one further in, the innermost first.
    std::vector<int> chainTo(int segmentLink) const
    {
        std::vector<int> chain;
        int inward = segmentLink;
        do {
            chain.push_back(link(inward).parentJoint);
            inward = joint(chain.back()).parent;
        } while (kinds[at(inward)] == kInner);
        std::reverse(chain.begin(), chain.end());
        return chain;
    }

    void makeJoints()
    {
        std::vector<std::pair<std::vector<int>, int>> chains;   // and the segment that each leads to
        for (std::size_t i = 0; i < model.links.size(); ++i)
            if (kinds[i] == kSegment && static_cast<int>(i) != base)
                chains.emplace_back(chainTo(static_cast<int>(i)), segmentOf[i]);
        std::sort(chains.begin(), chains.end(),
                  [](const auto& a, const auto& b) { return a.first.front() < b.first.front(); });
        for (const UrdfJoint& j : model.joints)
            jointNames.insert(j.name);
        for (const auto& [chain, segment] : chains)
            makeJoint(chain, segment);
    }

    void makeJoint(const std::vector<int>& chain, int segment)
    {
        const UrdfJoint& first = joint(chain.front());
        PlannedJoint planned;
        planned.maker = chain.front();
        const std::size_t angleNamesFrom = nameJoint(chain, planned);
        planned.source = planned.name;
        Placement outer = inHost[at(first.parent)];
        bool meet = true;
        for (const int index : chain) {
            const UrdfJoint& j = joint(index);
            Step step;
            step.placement = index == chain.front() ? composed(j.origin, outer) : j.origin;
            meet = meet && (index == chain.front() || isZero(j.origin.offset));
            if (j.moves) {
                step.angle = static_cast<int>(planned.angles.size()) + 1;
                step.axis = j.axis;
                planned.angles.push_back(
                    {chain.size() > 1 ? j.name.substr(angleNamesFrom) : "", j.limited, j.lower, j.upper});
            }
            planned.steps.push_back(step);
        }
        if (!meet)
            note("joint " + inQuotes(planned.name)
                 + ": its axes do not meet in one point; on the parent's side it lies on "
                 + "the first one, on the child's at the child's origin.");

        const int index = static_cast<int>(plan.joints.size());
        planned.parentSite = parentSite(first, index, planned);
        const int own = findSite(segment, kProximal);
        planned.childSite = own >= 0 ? own : addSite(segment, kProximal, {}, -1, -1);
        plan.segments[at(segment)].joint = index;
        plan.joints.push_back(planned);
    }

    // The site that the joint's parent link is, when the joint lies there; otherwise one of its own.
    int parentSite(const UrdfJoint& first, int index, const PlannedJoint& planned)
    {
        const int existing = siteOf[at(first.parent)];
        if (existing >= 0 && isZero(first.origin.offset))
            return existing;
        const int host = hosts[at(first.parent)];
        std::string name = planned.name;
        while (findSite(host, name) >= 0)
            name += "_joint";
        if (name != planned.name)
            note("joint " + inQuotes(planned.name) + ": its site on the segment "
                 + inQuotes(plan.segments[at(host)].name) + " is called " + inQuotes(name)
                 + ", because there is another site of the joint's name.");
        return addSite(host, name, planned.steps.front().placement, planned.maker, name == planned.name ? index : -1);
    }

    // A chain bears what the names of its joints begin with, up to the last '_' or '.' in it.
    // Returns where the names of its angles begin.
    std::size_t nameJoint(const std::vector<int>& chain, PlannedJoint& planned)
    {
        const std::string& last = joint(chain.back()).name;
        planned.name = last;
        if (chain.size() == 1)
            return 0;
        std::size_t common = last.size();
        for (const int index : chain) {
            const std::string& name = joint(index).name;
            const auto differ = std::mismatch(name.begin(), name.end(), last.begin(), last.end());
            common = std::min(common, static_cast<std::size_t>(differ.first - name.begin()));
        }
        const std::size_t cut = common == 0 ? std::string::npos : last.find_last_of("_.", common - 1);
        const bool hasPrefix = cut != std::string::npos && cut > 0;
        if (hasPrefix && jointNames.insert(last.substr(0, cut)).second)
            planned.name = last.substr(0, cut);
        std::string names;
        for (const int index : chain)
            names += (names.empty() ? "" : ", ") + joint(index).name;
        note("joint " + inQuotes(planned.name) + ": made of " + names
             + (hasPrefix && planned.name == last ? ", and named after the last because their common name is taken."
                                                  : "."));
        return hasPrefix ? cut + 1 : 0;
    }

    const UrdfModel& model;
    UrdfPlan plan;
    int base = -1;                                    // the link that becomes the root segment
    std::unordered_set<int> aroundBase;               // massless links that were between the root and it
    std::vector<Kind> kinds;                          // by link, as all vectors here unless they say otherwise
    std::vector<int> segmentOf, siteOf;               // -1: it is none
    std::vector<int> hosts;                           // segment
    std::vector<Placement> inHost;                    // identity for segments
    std::vector<Point> moments;                       // by segment, g·cm
    std::vector<int> merged;                          // by segment: links with mass in it
    std::unordered_map<std::string, int> siteNames;   // "index of segment.name"
    std::unordered_set<std::string> jointNames;
};

// Sites of each segment: proximal first, then in the order of the joints that make them.
void listSites(UrdfPlan& plan)
{
    for (std::size_t i = 0; i < plan.sites.size(); ++i)
        plan.segments[at(plan.sites[i].segment)].sites.push_back(static_cast<int>(i));
    const auto order = [&plan](int a, int b) {
        const PlannedSite& first = plan.sites[at(a)];
        const PlannedSite& second = plan.sites[at(b)];
        const bool firstIsProximal = first.source == kProximal, secondIsProximal = second.source == kProximal;
        return firstIsProximal != secondIsProximal ? firstIsProximal : first.maker < second.maker;
    };
    for (PlannedSegment& segment : plan.segments)
        std::stable_sort(segment.sites.begin(), segment.sites.end(), order);
}

void checkUnique(std::unordered_map<std::string, std::string>& seen, const std::string& name, const char* kind,
                 const std::string& renamedBy, const std::string& file)
{
    const auto [other, isNew] = seen.emplace(name, renamedBy);
    if (isNew)
        return;
    const std::string& by = renamedBy.empty() ? other->second : renamedBy;
    throw InputError((by.empty() ? file : by) + ": two " + kind + "s are named " + inQuotes(name)
                     + (by.empty() ? ". Expected different names: rename one in the model or in its roles file."
                                   : ". Expected a name that no other " + std::string(kind) + " has."));
}

}   // namespace

std::string UrdfPlan::siteKey(int site) const
{
    const PlannedSite& s = sites[at(site)];
    return segments[at(s.segment)].name + "." + s.name;
}

UrdfPlan planFigure(const UrdfModel& model)
{
    UrdfPlan plan = Planner(model).run();
    listSites(plan);
    return plan;
}

void checkNames(const UrdfPlan& plan, const std::string& file)
{
    std::unordered_map<std::string, std::string> seen;   // and what renamed it
    for (const PlannedSegment& segment : plan.segments)
        checkUnique(seen, segment.name, "segment", segment.renamedBy, file);
    seen.clear();
    for (const PlannedJoint& joint : plan.joints)
        checkUnique(seen, joint.name, "joint", joint.renamedBy, file);
    seen.clear();
    for (std::size_t i = 0; i < plan.sites.size(); ++i)
        checkUnique(seen, plan.siteKey(static_cast<int>(i)), "site", plan.sites[i].renamedBy, file);
}
