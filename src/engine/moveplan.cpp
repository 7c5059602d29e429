#include "engine/moveplan.h"

#include <algorithm>
#include <numeric>

namespace quillfern {

namespace {

constexpr qsizetype none = -1;

/// How deep the item lies: items deeper down move first, while the folders above them still have the names
/// their paths spell.
qsizetype depthOf(const NativePath &path)
{
    const auto &native = path.native();
    return std::count(native.cbegin(), native.cend(), NativePath::string_type::value_type('/'))
#ifdef Q_OS_WIN
        + std::count(native.cbegin(), native.cend(), NativePath::string_type::value_type('\\'))
#endif
        ;
}

/// A location as its folder and its name, both viewed in place: the waits of 100,000 requests are found without
/// building a single path.
struct LocationView
{
    NativePath::view_type folder;
    NativePath::view_type name;

    friend bool operator==(const LocationView &, const LocationView &) = default;
};

size_t hashOf(const LocationView &location)
{
    return qHash(location.name, qHash(location.folder));
}

LocationView sourceOf(const MoveRequest &request)
{
    const NativePath::view_type path(request.source.native());
    const qsizetype offset = request.source.fileNameOffset();
    return {path.first(offset), path.sliced(offset)};
}

/// An open-addressing map from the requests' locations to the first request that has each, so that building it
/// allocates nothing per request.
class LocationIndex final
{
public:
    /// `locations` holds one location per request and must outlive the index.
    explicit LocationIndex(const std::vector<LocationView> &locations)
        : m_locations(locations)
    {
        std::size_t capacity = 16;
        while (capacity < 2 * locations.size())
            capacity *= 2;
        m_slots.assign(capacity, none);
    }

    /// The first request with the location, after recording `request` as having it when none had.
    qsizetype claim(const LocationView &location, qsizetype request)
    {
        const std::size_t mask = m_slots.size() - 1;
        for (std::size_t slot = hashOf(location) & mask;; slot = (slot + 1) & mask) {
            if (m_slots[slot] == none) {
                m_slots[slot] = request;
                return request;
            }
            if (m_locations[std::size_t(m_slots[slot])] == location)
                return m_slots[slot];
        }
    }

    /// The first request with the location, or none.
    [[nodiscard]] qsizetype find(const LocationView &location) const
    {
        const std::size_t mask = m_slots.size() - 1;
        for (std::size_t slot = hashOf(location) & mask; m_slots[slot] != none; slot = (slot + 1) & mask) {
            if (m_locations[std::size_t(m_slots[slot])] == location)
                return m_slots[slot];
        }
        return none;
    }

private:
    const std::vector<LocationView> &m_locations;
    std::vector<qsizetype> m_slots;
};

/// The requests each request waits for and the requests waiting for each, as flat arrays.
class WaitGraph final
{
public:
    explicit WaitGraph(const QList<MoveRequest> &requests)
        : m_waitsFor(std::size_t(requests.size()), none)
    {
        std::vector<LocationView> sources;
        std::vector<LocationView> destinations;
        sources.reserve(std::size_t(requests.size()));
        destinations.reserve(std::size_t(requests.size()));
        for (const MoveRequest &request : requests) {
            sources.push_back(sourceOf(request));
            destinations.push_back({sources.back().folder, NativePath::view_type(request.newName.native())});
        }
        LocationIndex bySource(sources);
        for (qsizetype request = 0; request < requests.size(); ++request)
            (void)bySource.claim(sources[std::size_t(request)], request);
        LocationIndex byDestination(destinations);
        for (qsizetype request = 0; request < requests.size(); ++request) {
            const LocationView &destination = destinations[std::size_t(request)];
            // A later request for a taken destination waits for the first, whose item will be there.
            if (const qsizetype first = byDestination.claim(destination, request); first != request) {
                m_waitsFor[std::size_t(request)] = first;
                continue;
            }
            const qsizetype occupant = bySource.find(destination);
            if (occupant != none && occupant != request)
                m_waitsFor[std::size_t(request)] = occupant;
        }
        indexWaiters();
    }

    [[nodiscard]] qsizetype waitsFor(qsizetype request) const { return m_waitsFor[std::size_t(request)]; }

    /// The requests waiting for `request`, in list order.
    template<typename Visit>
    void forEachWaiter(qsizetype request, Visit visit) const
    {
        for (std::size_t i = m_firstWaiter[std::size_t(request)]; i < m_firstWaiter[std::size_t(request) + 1]; ++i)
            visit(m_waiters[i]);
    }

private:
    void indexWaiters()
    {
        m_firstWaiter.assign(m_waitsFor.size() + 1, 0);
        for (const qsizetype target : m_waitsFor) {
            if (target != none)
                ++m_firstWaiter[std::size_t(target) + 1];
        }
        std::partial_sum(m_firstWaiter.cbegin(), m_firstWaiter.cend(), m_firstWaiter.begin());
        m_waiters.resize(m_firstWaiter.back());
        std::vector<std::size_t> next(m_firstWaiter.cbegin(), m_firstWaiter.cend() - 1);
        for (std::size_t request = 0; request < m_waitsFor.size(); ++request) {
            if (const qsizetype target = m_waitsFor[request]; target != none)
                m_waiters[next[std::size_t(target)]++] = qsizetype(request);
        }
    }

    std::vector<qsizetype> m_waitsFor;
    std::vector<std::size_t> m_firstWaiter;
    std::vector<qsizetype> m_waiters;
};

/// Writes the steps of a plan from a wait graph.
class PlanWriter final
{
public:
    PlanWriter(const WaitGraph &graph,
        qsizetype requestCount,
        std::vector<MovePlan::Step> &steps,
        std::vector<MovePlan::Unit> &units)
        : m_graph(graph)
        , m_isPlanned(std::size_t(requestCount), false)
        , m_walkedFrom(std::size_t(requestCount), none)
        , m_steps(steps)
        , m_units(units)
    {
    }

    [[nodiscard]] bool isPlanned(qsizetype request) const { return m_isPlanned[std::size_t(request)]; }

    /// Plans `request` and, after it, everything that waits for it, each as soon as the item it waits for has
    /// left.
    void planChain(qsizetype request)
    {
        std::vector<qsizetype> &pending = m_pending;
        pending.assign(1, request);
        while (!pending.empty()) {
            const qsizetype next = pending.back();
            pending.pop_back();
            const auto first = m_steps.size();
            m_steps.push_back({next, MovePlan::Step::Kind::Direct});
            m_units.push_back({qsizetype(first), 1});
            m_isPlanned[std::size_t(next)] = true;
            pushWaiters(next, pending);
        }
    }

    /// Plans the cycle that `request` leads into, then everything hanging off that cycle.
    void planCycleReachedFrom(qsizetype request)
    {
        const std::vector<qsizetype> cycle = cycleReachedFrom(request);
        // The first item steps aside; each other one then takes the name the one before it has left, from the
        // end of the cycle back; the first takes the last free name.
        const auto first = m_steps.size();
        m_steps.push_back({cycle.front(), MovePlan::Step::Kind::ToTemporary});
        for (auto member = cycle.crbegin(); member != cycle.crend() - 1; ++member)
            m_steps.push_back({*member, MovePlan::Step::Kind::Direct});
        m_steps.push_back({cycle.front(), MovePlan::Step::Kind::FromTemporary});
        m_units.push_back({qsizetype(first), qsizetype(m_steps.size() - first)});
        for (const qsizetype member : cycle)
            m_isPlanned[std::size_t(member)] = true;
        for (const qsizetype member : cycle) {
            m_graph.forEachWaiter(member, [&](qsizetype waiter) {
                if (!isPlanned(waiter))
                    planChain(waiter);
            });
        }
    }

private:
    void pushWaiters(qsizetype request, std::vector<qsizetype> &pending) const
    {
        // Pushed in reverse so that the first in list order is planned first and gets a shared destination.
        const auto mark = pending.size();
        m_graph.forEachWaiter(request, [&](qsizetype waiter) {
            if (!isPlanned(waiter))
                pending.push_back(waiter);
        });
        std::reverse(pending.begin() + std::ptrdiff_t(mark), pending.end());
    }

    /// The members of the cycle at the end of the wait path from `request`, each waiting for the next.
    [[nodiscard]] std::vector<qsizetype> cycleReachedFrom(qsizetype request)
    {
        // Every unplanned request waits for another unplanned one (chains from a free end were planned
        // already), so the path must come back to a request it has passed.
        qsizetype current = request;
        while (m_walkedFrom[std::size_t(current)] != request) {
            m_walkedFrom[std::size_t(current)] = request;
            current = m_graph.waitsFor(current);
        }
        std::vector<qsizetype> cycle{current};
        for (qsizetype member = m_graph.waitsFor(current); member != current; member = m_graph.waitsFor(member))
            cycle.push_back(member);
        return cycle;
    }

    const WaitGraph &m_graph;
    std::vector<bool> m_isPlanned;
    /// The requests of the chain being planned that wait for their turn.
    std::vector<qsizetype> m_pending;
    /// The request whose wait path last passed each request.
    std::vector<qsizetype> m_walkedFrom;
    std::vector<MovePlan::Step> &m_steps;
    std::vector<MovePlan::Unit> &m_units;
};

} // namespace

MovePlan MovePlan::make(const QList<MoveRequest> &requests)
{
    MovePlan plan;
    plan.m_steps.reserve(std::size_t(requests.size()));
    const WaitGraph graph(requests);
    PlanWriter writer(graph, requests.size(), plan.m_steps, plan.m_units);

    std::vector<qsizetype> depths(std::size_t(requests.size()));
    for (qsizetype request = 0; request < requests.size(); ++request)
        depths[std::size_t(request)] = depthOf(requests[request].source);
    std::vector<qsizetype> order(std::size_t(requests.size()));
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&](qsizetype left, qsizetype right) {
        return depths[std::size_t(left)] > depths[std::size_t(right)];
    });

    // One depth at a time: a request waits only for requests of its own folder, so of its own depth.
    for (auto levelBegin = order.cbegin(); levelBegin != order.cend();) {
        const qsizetype depth = depths[std::size_t(*levelBegin)];
        const auto levelEnd = std::find_if(levelBegin, order.cend(), [&](qsizetype request) {
            return depths[std::size_t(request)] != depth;
        });
        for (auto request = levelBegin; request != levelEnd; ++request) {
            if (graph.waitsFor(*request) == none)
                writer.planChain(*request);
        }
        for (auto request = levelBegin; request != levelEnd; ++request) {
            if (!writer.isPlanned(*request))
                writer.planCycleReachedFrom(*request);
        }
        levelBegin = levelEnd;
    }
    return plan;
}

} // namespace quillfern
