#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <vector>

namespace lmp::bench {

/// What a reader of events measured, printed as "name=value" words for figures.py.
struct Report {
    long long bytes = 0;
    long long events = 0;

    void start() { m_start = std::chrono::steady_clock::now(); }

    /// @param sent the monotonic clock at the server's write, in ns
    void tookSince(long long sent) {
        const auto now = std::chrono::steady_clock::now().time_since_epoch();
        m_latencies.push_back(double(std::chrono::duration_cast<std::chrono::nanoseconds>(now).count() - sent) / 1e3);
    }

    /// @param text UTF-16 units of all deltas, to show that the readers did the same work
    void print(long long text) {
        const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - m_start;
        std::printf("ms=%.1f bytes=%lld events=%lld text=%lld peak_kb=%ld", took.count(), bytes, events, text, peak());
        if (!m_latencies.empty()) {
            std::ranges::sort(m_latencies);
            const auto at = [&](double share) {
                return m_latencies[std::min(m_latencies.size() - 1, std::size_t(double(m_latencies.size()) * share))];
            };
            const double cpu = double(std::clock()) * 1e6 / CLOCKS_PER_SEC / double(m_latencies.size());
            std::printf(" p50_us=%.0f p99_us=%.0f max_us=%.0f cpu_us=%.1f", at(0.5), at(0.99), m_latencies.back(), cpu);
        }
        std::printf("\n");
    }

    /// Most memory this program has had resident so far, in KiB; 0 where the system does not tell.
    static long peak() {
        long kib = 0;
        if (std::FILE *status = std::fopen("/proc/self/status", "r")) {
            char line[256];
            while (std::fgets(line, sizeof line, status)) {
                if (std::strncmp(line, "VmHWM:", 6) == 0)
                    kib = std::strtol(line + 6, nullptr, 10);
            }
            std::fclose(status);
        }
        return kib;
    }

private:
    std::chrono::steady_clock::time_point m_start;
    std::vector<double> m_latencies;
};

} // namespace lmp::bench
