// A reply that is known already, handed out in small pieces at a reading pace. Owned and used by the request's thread.
#pragma once
#include "ReplySource.h"
#include "StopSignal.h"
#include <vector>

namespace lmp::sandbox {

class OfflineReply : public ReplySource {
public:
    /// `stop` must outlive the reply; a stopped server ends the waiting.
    OfflineReply(std::string_view text, std::chrono::milliseconds pace, const StopSignal &stop);
    Piece next(std::chrono::milliseconds patience) override;

private:
    std::vector<std::string> m_pieces;
    std::size_t m_at = 0;
    std::chrono::milliseconds m_pace;
    std::chrono::steady_clock::time_point m_due = std::chrono::steady_clock::now();
    const StopSignal &m_stop;
};

} // namespace lmp::sandbox
