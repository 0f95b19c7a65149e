// Where a streamed body goes. Handed down for one call; used by the request's thread.
#pragma once
#include <functional>
#include <string_view>

namespace lmp::sandbox {

struct ByteSink {
    std::function<bool(std::string_view)> write; ///< false: the reader is gone
    std::function<bool()> writable;              ///< false: the reader has closed its side

    /// Writes `bytes` in pieces of `chunk` bytes; 0 writes them at once.
    bool writeInPieces(std::string_view bytes, std::size_t chunk) const {
        while (chunk > 0 && bytes.size() > chunk) {
            if (!write(bytes.substr(0, chunk)))
                return false;
            bytes.remove_prefix(chunk);
        }
        return write(bytes);
    }
};

} // namespace lmp::sandbox
