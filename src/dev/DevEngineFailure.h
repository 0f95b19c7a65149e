#pragma once

#include "dev/DevEngineError.h"

#include <optional>

namespace lmp {

/// Why an operation of an engine failed: an error of the engine, or its process could not be started.
struct DevEngineFailure {
    std::optional<DevEngineError> error = {}; ///< none when it was the process
    QString message = {};                     ///< the sentence shown, as it stands
    bool operator==(const DevEngineFailure &) const = default;

    DevEngineFailure(DevEngineError engineError)
        : error(std::move(engineError))
        , message(error->message) {}

    /// @param description the process runner's own sentence
    static DevEngineFailure process(QString description) {
        DevEngineFailure failure(DevEngineError::server(std::move(description)));
        failure.error.reset();
        return failure;
    }
};

} // namespace lmp
