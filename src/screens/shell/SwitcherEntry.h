#pragma once

#include <QString>

namespace lmp {

/// One thing that the quick switcher goes to. A value.
struct SwitcherEntry {
    enum class Kind { Conversation, Page, Command };

    Kind kind = Kind::Conversation;
    QString key = {}; ///< a conversation's id, or the name of a page or command
    QString title = {};
    QString iconName = {};
    QString shortcutText = {};
    int unread = 0;
    bool draft = false;
    bool operator==(const SwitcherEntry &) const = default;
};

} // namespace lmp
