// A child that writes as fast as it can: bench_line_producer LINES LENGTH [says], the line feed included, 64 KiB a
// write.
//
// LINES 0: without end. says: lines in which an agent says something.

#include <algorithm>
#include <cstdlib>
#include <string>
#include <unistd.h>

namespace {

bool writeAll(const char *bytes, size_t size) {
    while (size > 0) {
        const ssize_t written = ::write(STDOUT_FILENO, bytes, size);
        if (written <= 0)
            return false;
        bytes += written;
        size -= static_cast<size_t>(written);
    }
    return true;
}

} // namespace

int main(int argc, char **argv) {
    if (argc < 3)
        return 2;
    const long count = std::atol(argv[1]);
    const size_t length = std::strtoul(argv[2], nullptr, 10);
    const bool says = argc > 3;
    const std::string head = says ? R"({"type":"assistant","message":{"content":[{"type":"text","text":")"
                                  : R"({"type":"assistant","seq":1,"text":")";
    const std::string tail = says ? "\"}]}}\n" : "\"}\n";
    if (length < head.size() + tail.size())
        return 2;
    const std::string line = head + std::string(length - head.size() - tail.size(), 'x') + tail;
    const long perBlock = std::max(1L, static_cast<long>(65536 / length));
    std::string block;
    for (long at = 0; at < perBlock; ++at)
        block += line;
    for (long left = count; count == 0 || left > 0; left -= perBlock) {
        const long lines = count == 0 ? perBlock : std::min(left, perBlock);
        if (!writeAll(block.data(), static_cast<size_t>(lines) * length))
            return 1;
    }
    return 0;
}
