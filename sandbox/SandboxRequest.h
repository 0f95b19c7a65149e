// One HTTP request as the routes see it. A plain value on the request's thread.
#pragma once
#include "FaultRule.h"
#include "FormText.h"
#include "JsonFields.h"
#include <optional>
#include <string>

namespace lmp::sandbox {

struct SandboxRequest {
    std::string method;
    std::string path; ///< decoded, without the query
    FormFields query;
    std::string body;
    std::string token;              ///< from X-Access-Token or the bearer header; empty without either
    std::optional<FaultRule> fault; ///< what goes wrong with this very request

    boost::json::object json() const { return parseJsonObject(body); }
    FormFields form() const { return parseFields(body, true); }
    std::string param(const std::string &name) const {
        const auto found = query.find(name);
        return found == query.end() ? std::string() : found->second;
    }
};

} // namespace lmp::sandbox
