#include "core/Json.h"

namespace lmp {

boost::json::value Json::parse(QByteArrayView text, boost::system::error_code &error, boost::json::storage_ptr memory) {
    boost::json::parse_options options;
    options.max_depth = maxDepth;
    return boost::json::parse({text.data(), std::size_t(text.size())}, error, std::move(memory), options);
}

} // namespace lmp
