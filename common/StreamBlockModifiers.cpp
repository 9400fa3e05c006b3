#include "common/StreamBlockModifiers.h"

#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <utility>

#include "common/ModifierFactory.h"
#include "interfaces/generator_3_bll_records.h"

namespace vrm {
namespace common {

namespace {

std::string LinkText(unsigned int parent, unsigned int child, const char* what) {
    std::ostringstream text;
    text << "Modifier link from modIndex " << parent << " to modIndex " << child << " " << what;
    return text.str();
}

}  // namespace

StreamBlockModifiers::StreamBlockModifiers(const Generator_3_bll::streamBlock_s& block) {
    m_owned.reserve(block.rangeModifiers.size() + block.tableModifiers.size());
    for (const auto& record : block.rangeModifiers)
        m_owned.push_back(ModifierFactory::CreateModifier(record));
    for (const auto& record : block.tableModifiers)
        m_owned.push_back(ModifierFactory::CreateModifier(record));

    // Ascending modIndex, ties in record order; the indexes are kept beside the modifiers so
    // that look-ups search a plain array.
    std::vector<std::pair<unsigned int, std::size_t>> order;
    order.reserve(m_owned.size());
    for (std::size_t i = 0; i < m_owned.size(); ++i) order.emplace_back(m_owned[i]->GetModIndex(), i);
    std::sort(order.begin(), order.end());
    m_byIndex.reserve(order.size());
    m_indexes.reserve(order.size());
    for (const auto& entry : order) {
        m_indexes.push_back(entry.first);
        m_byIndex.push_back(m_owned[entry.second].get());
    }
    for (std::size_t i = 1; i < m_byIndex.size(); ++i) {
        const unsigned int index = m_indexes[i];
        if (index == m_indexes[i - 1] && (i < 2 || m_indexes[i - 2] != index)) {
            m_linkProblems.push_back("Modifier modIndex " + std::to_string(index) +
                                     " is used by more than one modifier.");
        }
    }

    for (std::size_t i = 0; i < m_owned.size(); ++i) m_owned[i]->m_setPosition = i;

    Link(block);

    bool allStream = true;
    for (const auto& owned : m_owned) allStream = allStream && owned->IsStreamModifier();
    ModifierFactory::CreateRootModifier(allStream, m_root);
    m_root->m_setPosition = m_owned.size();
    for (Modifier* modifier : m_byIndex) {
        if (modifier->HasParent()) continue;
        if (!m_root->LinkChildWithoutUpdate(*modifier)) {
            m_linkProblems.push_back("Modifier " + modifier->GetOffsetReference() + " (modIndex " +
                                     std::to_string(modifier->GetModIndex()) +
                                     ") cannot be hung under the root: stream and non-stream modifiers are "
                                     "mixed at the top.");
        }
    }
    RecomputeRepeatCounts();
}

StreamBlockModifiers::~StreamBlockModifiers() {
    // Every link is between modifiers of this set, so they are dropped without the updates
    // that unlinking one modifier at a time would run.
    if (m_root) m_root->UnlinkWithoutUpdate();
    for (const auto& owned : m_owned) owned->UnlinkWithoutUpdate();
}

// The repeat counts of every modifier, each computed once from its children's counts,
// children first (a parent waits for all its children). Modifiers that a cycle made by other
// means keeps from this order are updated the ordinary way.
void StreamBlockModifiers::RecomputeRepeatCounts() {
    // Positions 0 .. n-1 are the owned modifiers, n the root.
    const std::size_t n = m_owned.size();
    std::vector<std::size_t> waiting(n + 1);  // children not yet recomputed
    std::vector<std::size_t> ready;
    for (std::size_t i = 0; i <= n; ++i) {
        const Modifier* m = i == n ? m_root.get() : m_owned[i].get();
        waiting[i] = m->m_children.size();
        if (waiting[i] == 0) ready.push_back(i);
    }
    std::size_t done = 0;
    while (!ready.empty()) {
        Modifier* m = ready.back() == n ? m_root.get() : m_owned[ready.back()].get();
        ready.pop_back();
        m->RefreshChildStutterCount();
        ++done;
        for (const Modifier* parent : m->m_parents) {
            const std::size_t p = PositionOf(parent);
            if (p <= n && --waiting[p] == 0) ready.push_back(p);
        }
    }
    if (done != n + 1) {
        for (std::size_t i = 0; i <= n; ++i) {
            if (waiting[i] != 0) (i == n ? m_root.get() : m_owned[i].get())->ChildUpdate();
        }
    }
}

std::size_t StreamBlockModifiers::PositionOf(const Modifier* m) const { return m->m_setPosition; }

void StreamBlockModifiers::Link(const Generator_3_bll::streamBlock_s& block) {
    // Each requested link in record order: a problem found without the graph, or a candidate.
    struct Request {
        unsigned int parentIndex;
        unsigned int childIndex;
        std::size_t parent;  // positions; meaningful when problem is null
        std::size_t child;
        const char* problem;
        bool unknownParent;
    };
    std::vector<Request> requests;
    std::vector<std::pair<std::size_t, std::size_t>> candidates;  // parent, child positions
    for (const auto& link : block.modLinks) {
        Modifier* parent = Find(link.modIndex);
        if (parent == nullptr) {
            requests.push_back({link.modIndex, 0, 0, 0, nullptr, true});
            continue;
        }
        const std::size_t p = PositionOf(parent);
        for (const unsigned int childIndex : link.childModIndex) {
            Modifier* child = Find(childIndex);
            Request r{link.modIndex, childIndex, p, 0, nullptr, false};
            if (child == nullptr) {
                r.problem = "refers to an unknown modIndex.";
            } else if (child == parent) {
                r.problem = "links a modifier to itself.";
            } else {
                r.child = PositionOf(child);
                candidates.emplace_back(p, r.child);
            }
            requests.push_back(r);
        }
    }

    // A link can close a cycle only inside a strongly connected part of all candidate links;
    // when there is none, no reachability walk is needed at all.
    const std::vector<std::size_t> component = Components(m_owned.size(), std::move(candidates));
    std::vector<std::size_t> componentSize(m_owned.size(), 0);
    for (const std::size_t c : component) ++componentSize[c];

    // A pair requested again is "listed twice" when its first request made the link (a
    // refused first request is refused again for the same reason).
    std::vector<std::pair<std::uint64_t, std::size_t>> pairs;
    for (std::size_t i = 0; i < requests.size(); ++i) {
        if (!requests[i].unknownParent && requests[i].problem == nullptr) {
            pairs.emplace_back((std::uint64_t{requests[i].parent} << 32) | requests[i].child, i);
        }
    }
    std::sort(pairs.begin(), pairs.end());
    std::vector<std::size_t> firstRequest(requests.size(), requests.size());
    for (std::size_t i = 1; i < pairs.size(); ++i) {
        if (pairs[i].first == pairs[i - 1].first) {
            firstRequest[pairs[i].second] =
                firstRequest[pairs[i - 1].second] == requests.size() ? pairs[i - 1].second : firstRequest[pairs[i - 1].second];
        }
    }
    std::vector<bool> made(requests.size(), false);
    std::vector<std::size_t> stamp(m_owned.size(), 0);
    std::size_t walk = 0;
    for (std::size_t i = 0; i < requests.size(); ++i) {
        const Request& r = requests[i];
        if (r.unknownParent) {
            m_linkProblems.push_back("Modifier link from modIndex " + std::to_string(r.parentIndex) +
                                     " refers to an unknown modIndex.");
            continue;
        }
        const char* problem = r.problem;
        if (problem == nullptr) {
            if (component[r.parent] == component[r.child] && componentSize[component[r.parent]] > 1 &&
                Reaches(r.child, r.parent, component, stamp, ++walk)) {
                problem = "would make a cycle.";
            } else if (firstRequest[i] != requests.size() && made[firstRequest[i]]) {
                problem = "is listed twice.";
            } else if (!m_owned[r.parent]->LinkChildWithoutUpdate(*m_owned[r.child])) {
                problem = "joins stream and non-stream modifiers.";
            } else {
                made[i] = true;
            }
        }
        if (problem != nullptr) m_linkProblems.push_back(LinkText(r.parentIndex, r.childIndex, problem));
    }
}

// Strongly connected components of the candidate links (iterative Tarjan), one id per
// position.
std::vector<std::size_t> StreamBlockModifiers::Components(std::size_t n,
                                                          std::vector<std::pair<std::size_t, std::size_t>> links) {
    std::sort(links.begin(), links.end());
    std::vector<std::size_t> first(n + 1, 0);  // links of node i: links[first[i] .. first[i + 1])
    for (const auto& link : links) ++first[link.first + 1];
    for (std::size_t i = 0; i < n; ++i) first[i + 1] += first[i];
    const std::size_t none = n;
    std::vector<std::size_t> index(n, none), low(n, 0), component(n, none);
    std::vector<bool> onStack(n, false);
    std::vector<std::size_t> stack;
    std::vector<std::pair<std::size_t, std::size_t>> frames;  // node, next edge
    std::size_t counter = 0;
    std::size_t components = 0;
    for (std::size_t start = 0; start < n; ++start) {
        if (index[start] != none) continue;
        frames.push_back({start, 0});
        index[start] = low[start] = counter++;
        stack.push_back(start);
        onStack[start] = true;
        while (!frames.empty()) {
            auto& [node, next] = frames.back();
            if (first[node] + next < first[node + 1]) {
                const std::size_t to = links[first[node] + next++].second;
                if (index[to] == none) {
                    index[to] = low[to] = counter++;
                    stack.push_back(to);
                    onStack[to] = true;
                    frames.push_back({to, 0});
                } else if (onStack[to]) {
                    low[node] = std::min(low[node], index[to]);
                }
                continue;
            }
            const std::size_t done = node;
            frames.pop_back();
            if (!frames.empty()) low[frames.back().first] = std::min(low[frames.back().first], low[done]);
            if (low[done] == index[done]) {
                std::size_t member;
                do {
                    member = stack.back();
                    stack.pop_back();
                    onStack[member] = false;
                    component[member] = components;
                } while (member != done);
                ++components;
            }
        }
    }
    return component;
}

// True when `to` is `from` or lies below it along the links made so far; the walk stays in
// `from`'s component, the only place a path back can run.
bool StreamBlockModifiers::Reaches(std::size_t from, std::size_t to, const std::vector<std::size_t>& component,
                                   std::vector<std::size_t>& stamp, std::size_t walk) const {
    std::vector<std::size_t> pending{from};
    stamp[from] = walk;
    while (!pending.empty()) {
        const std::size_t current = pending.back();
        pending.pop_back();
        if (current == to) return true;
        for (const Modifier* link : m_owned[current]->m_children) {
            const std::size_t child = PositionOf(link);
            if (stamp[child] == walk || component[child] != component[from]) continue;
            stamp[child] = walk;
            pending.push_back(child);
        }
    }
    return false;
}

bool StreamBlockModifiers::Validate(std::ostringstream* errors) {
    bool valid = m_linkProblems.empty();
    if (errors != nullptr) {
        for (const std::string& line : m_linkProblems) *errors << line << '\n';
    }
    for (Modifier* modifier : m_byIndex) {
        if (!modifier->Update(errors)) valid = false;
    }
    // Validation may have changed recycle counts: recompute the repeat counts up the chains.
    RecomputeRepeatCounts();
    return valid;
}

Modifier& StreamBlockModifiers::At(std::size_t position) const {
    if (position >= m_byIndex.size()) {
        throw std::out_of_range("StreamBlockModifiers::At : position " + std::to_string(position) +
                                " is beyond the " + std::to_string(m_byIndex.size()) + " modifiers\n");
    }
    return *m_byIndex[position];
}

Modifier* StreamBlockModifiers::Find(unsigned int modIndex) const {
    const auto it = std::lower_bound(m_indexes.begin(), m_indexes.end(), modIndex);
    if (it == m_indexes.end() || *it != modIndex) return nullptr;
    return m_byIndex[static_cast<std::size_t>(it - m_indexes.begin())];
}

void StreamBlockModifiers::SetFieldParams(unsigned int modIndex, unsigned int absoluteBitOffset,
                                          unsigned int bitLength) {
    Modifier* modifier = Find(modIndex);
    if (modifier == nullptr) {
        throw std::invalid_argument("StreamBlockModifiers::SetFieldParams : no modifier with modIndex " +
                                    std::to_string(modIndex) + "\n");
    }
    modifier->SetFieldParams(absoluteBitOffset, bitLength);
}

void StreamBlockModifiers::SetFieldParamsFromFrameStart(unsigned int frameLengthInBytes) {
    if (frameLengthInBytes > 0xFFFFFFFFu / 8) {
        throw std::invalid_argument("StreamBlockModifiers::SetFieldParamsFromFrameStart : frame length " +
                                    std::to_string(frameLengthInBytes) + " bytes is too large\n");
    }
    for (Modifier* modifier : m_byIndex) modifier->SetFieldParams(0, frameLengthInBytes * 8);
}

void StreamBlockModifiers::Reset() {
    for (Modifier* modifier : m_byIndex) modifier->Reset();
}

void StreamBlockModifiers::Next() {
    for (Modifier* modifier : m_byIndex) modifier->Next();
}

void StreamBlockModifiers::ModifyBytes(std::vector<unsigned char>& frame, bool xorMode) {
    for (Modifier* modifier : m_byIndex) modifier->ModifyBytes(frame, xorMode);
}

void StreamBlockModifiers::ModifyBytesAtIndex(std::vector<unsigned char>& frame, unsigned int index) {
    for (Modifier* modifier : m_byIndex) modifier->ModifyBytesAtIndex(frame, index);
}

FramePlan StreamBlockModifiers::MakeFramePlan(const std::vector<unsigned char>& frameTemplate) const {
    return FramePlan(*this, frameTemplate);
}

void StreamBlockModifiers::ToRpc(Generator_3_bll::streamBlock_s& block) const {
    block.rangeModifiers.clear();
    block.tableModifiers.clear();
    for (const auto& owned : m_owned) owned->ToRpc(block);
}

}  // namespace common
}  // namespace vrm
