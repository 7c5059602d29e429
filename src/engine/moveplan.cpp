#include "engine/moveplan.h"


#include <algorithm>
#include <numeric>
#include <unordered_map>

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

/// The requests each request waits for and the requests waiting for each, as flat arrays.
class WaitGraph final
{
public:
    explicit WaitGraph(const QList<MoveRequest> &requests)
        : m_waitsFor(std::size_t(requests.size()), none)
    {
        std::unordered_map<NativePath, qsizetype> bySource;
        bySource.reserve(std::size_t(requests.size()));
        for (qsizetype request = 0; request < requests.size(); ++request)
            bySource.try_emplace(requests[request].source, request);
        std::unordered_map<NativePath, qsizetype> byDestination;
        byDestination.reserve(std::size_t(requests.size()));
        for (qsizetype request = 0; request < requests.size(); ++request) {
            const auto [claim, isFirst] = byDestination.try_emplace(requests[request].destination(), request);
            // A later request for a taken destination waits for the first, whose item will be there.
            if (!isFirst) {
                m_waitsFor[std::size_t(request)] = claim->second;
                continue;
            }
            const auto occupant = bySource.find(claim->first);
            if (occupant != bySource.cend() && occupant->second != request)
                m_waitsFor[std::size_t(request)] = occupant->second;
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
    PlanWriter(const WaitGraph &graph, qsizetype requestCount, std::vector<MovePlan::Step> &steps,
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
        std::vector<qsizetype> pending{request};
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
