#pragma once

#include <QString>

namespace lmp {

/// Why an identity provider gave no identity.
struct WebAuthFailure {
    enum class Kind {
        Cancelled, ///< by the person, here or at the provider
        TimedOut,
        NoListener, ///< this machine gave us no port to be called back on
        Provider    ///< the provider refused, could not be reached, or answered something unusable
    };
    Kind kind = Kind::Provider;
    QString reason; ///< Chinese, for the person
    bool operator==(const WebAuthFailure &) const = default;
};

} // namespace lmp
