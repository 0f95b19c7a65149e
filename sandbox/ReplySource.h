// Where the text of one reply comes from, piece by piece. Pulled by the one thread that serves the request; owned by
// it. Destroying it ends whatever is still under way.
#pragma once
#include <chrono>
#include <string>

namespace lmp::sandbox {

class ReplySource {
public:
    struct Piece {
        enum class Kind {
            text,     ///< more of the reply
            waiting,  ///< nothing yet; ask again
            finished, ///< the reply is complete
            failed,   ///< it will never be
        };
        Kind kind = Kind::waiting;
        std::string text;
    };

    ReplySource() = default;
    ReplySource(const ReplySource &) = delete;
    ReplySource &operator=(const ReplySource &) = delete;
    virtual ~ReplySource() = default;

    /// Waits at most about `patience` for the next piece.
    virtual Piece next(std::chrono::milliseconds patience) = 0;
};

} // namespace lmp::sandbox
