#pragma once

#include <boost/describe.hpp>

namespace lmp {

/// What an input is meant to bring about.
enum class ConversationIntent { talk, web, image, video };
BOOST_DESCRIBE_ENUM(ConversationIntent, talk, web, image, video)

} // namespace lmp
