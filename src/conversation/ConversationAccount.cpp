#include "conversation/ConversationAccount.h"

namespace lmp {

using namespace Qt::StringLiterals;

QString ConversationAccount::key() const {
    return current().value_or(u"anonymous"_s);
}

QString ConversationAccount::owner() const {
    return key() + u'\n' + signIn();
}

std::optional<QString> ConversationAccount::current() const {
    const auto id = userId ? userId() : std::nullopt;
    return id && !id->isEmpty() ? id : std::nullopt;
}

} // namespace lmp
