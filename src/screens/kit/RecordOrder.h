#pragma once

#include <vector>

namespace lmp {

/// One row taken out at `from` and put back so that it stands at `to`.
struct RowMove {
    int from = 0;
    int to = 0;
    bool operator==(const RowMove &) const = default;
};

/// The fewest single moves, in the order to make them, that sort `targets`: where each row wants to be among the
/// others. Pure; any thread.
std::vector<RowMove> movesIntoOrder(std::vector<int> targets);

} // namespace lmp
