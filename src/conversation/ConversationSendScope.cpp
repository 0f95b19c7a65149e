#include "conversation/ConversationSendScope.h"

#include "conversation/ConversationTexts.h"

#include <array>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

constexpr std::array<std::pair<ConversationSendScope::Value, QLatin1StringView>, 3> names{{
    {ConversationSendScope::discussion, "discussion"_L1},
    {ConversationSendScope::modify, "modify"_L1},
    {ConversationSendScope::related, "related"_L1},
}};

} // namespace

std::optional<QString> ConversationSendScope::Confirmation::staleAgainst(const Confirmation &now) const {
    return *this == now ? std::nullopt : std::optional(ConversationTexts::confirmationStale());
}

QString ConversationSendScope::text() const {
    for (const auto &[value, name] : names) {
        if (value == m_value)
            return name;
    }
    return {};
}

std::optional<ConversationSendScope> ConversationSendScope::fromText(const QString &text) {
    for (const auto &[value, name] : names) {
        if (name == text)
            return value;
    }
    return std::nullopt;
}

} // namespace lmp
