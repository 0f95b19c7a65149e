#include "conversation/TurnVerdict.h"

#include "conversation/ConversationTexts.h"

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

std::optional<TurnVerdict> refusal(const APIError &error) {
    if (error.code == u"relay_unconfigured"_s)
        return TurnVerdict{TurnVerdict::Kind::Refused, ConversationTexts::relayUnconfigured()};
    switch (error.status) {
    case 401:
    case 402:
    case 403:
    case 409:
    case 429:
        return TurnVerdict{TurnVerdict::Kind::Refused, ConversationTexts::refused()};
    default:
        return std::nullopt;
    }
}

} // namespace

TurnVerdict TurnVerdict::ofStream(const APIError &error, bool textArrived) {
    if (auto refused = refusal(error))
        return *refused;
    if (!textArrived && (error.status == 404 || error.status == 405 || error.status == 501))
        return {Kind::Unavailable, {}};
    return {Kind::Unconfirmed, ConversationTexts::interrupted()};
}

TurnVerdict TurnVerdict::ofPlain(const APIError &error) {
    return refusal(error).value_or(TurnVerdict{Kind::Unconfirmed, ConversationTexts::plainUnconfirmed()});
}

} // namespace lmp
