#include "screens/kit/RecordOrder.h"

#include <algorithm>
#include <cstddef>
#include <set>

namespace lmp {

namespace {

/// The values of a longest rising run of `values` (not necessarily of neighbours). These can stay where they are.
std::set<int> longestRise(const std::vector<int> &values) {
    std::vector<std::size_t> tails; // of the runs of each length, the place of the one that ends lowest
    std::vector<std::size_t> before(values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        const auto tail = std::ranges::lower_bound(tails, values[i], {}, [&](std::size_t at) { return values[at]; });
        before[i] = tail == tails.begin() ? i : *(tail - 1);
        if (tail == tails.end())
            tails.push_back(i);
        else
            *tail = i;
    }
    std::set<int> rise;
    if (tails.empty())
        return rise;
    for (std::size_t i = tails.back(); rise.insert(values[i]).second && before[i] != i;)
        i = before[i];
    return rise;
}

} // namespace

std::vector<RowMove> movesIntoOrder(std::vector<int> targets) {
    std::vector<RowMove> moves;
    if (std::ranges::is_sorted(targets))
        return moves;
    const std::set<int> settled = longestRise(targets);
    std::vector<int> sorted = targets;
    std::ranges::sort(sorted);
    for (std::size_t rank = 0; rank < sorted.size(); ++rank) {
        if (settled.contains(sorted[rank]))
            continue;
        const auto from = std::ranges::find(targets, sorted[rank]);
        // Right behind the one that comes before it in the end, which is in its place by now.
        const auto after = rank == 0 ? targets.begin() : std::ranges::find(targets, sorted[rank - 1]) + 1;
        const int start = int(from - targets.begin());
        const int end = int(after - targets.begin()) - (after > from ? 1 : 0);
        if (start == end)
            continue;
        moves.push_back({start, end});
        if (after > from)
            std::rotate(from, from + 1, after);
        else
            std::rotate(after, from, from + 1);
    }
    return moves;
}

} // namespace lmp
