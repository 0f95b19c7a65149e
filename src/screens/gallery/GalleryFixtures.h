#pragma once

#include "conversation/ConversationDTO.h"
#include "conversation/ConversationSummaryDTO.h"
#include "core/UserInfo.h"
#include "screens/gallery/GalleryStage.h"

namespace lmp {

/// What the gallery's service knows: a person, their conversations, and how far each feature is.
///
/// Free of state; UI thread.
class GalleryFixtures {
public:
    static UserInfo person();
    /// So many titles, short, long and in other scripts.
    static QList<ConversationSummaryDTO> titles(int count);
    static ConvMessageDTO question(const QString &id, const QString &text,
                                   std::optional<ConversationDeliveryState> state = {});
    static ConvMessageDTO answer(const QString &id, const QString &text, const QString &to = {});
    static UsedMemory memory(const QString &content, const QString &truth);
    static ConversationDTO conversation(const QList<ConvMessageDTO> &messages);
    static ConversationDTO named(const QString &id, const QString &title, const QList<ConvMessageDTO> &messages);

    /// Answers everything that a signed-in start asks for, with `conversations` in the list.
    static void serve(GalleryService &service, int conversations = 0);
    /// The events of a reply, each delta by itself, and the closing frame.
    static QByteArrayList reply(const QStringList &deltas, bool done = true);

    /// Runs the program signed out, up to the sign-in screen.
    static void toSignIn(GalleryStage &stage);
    /// Runs it signed in, up to the shell.
    static void toShell(GalleryStage &stage);
    /// Goes past what a new person sees first, up to the shell.
    static void passBy(GalleryStage &stage);
    /// Opens `conversation` in the chat.
    static void toChat(GalleryStage &stage, const ConversationDTO &conversation);
    /// Asks in a fresh conversation; what comes of it is up to the service.
    static void ask(GalleryStage &stage, const QString &text);

    // Texts of the chat.
    static QString markdown();
    static QString code();
    static QString table();
    static QString longWord();
    static QString rightToLeft();
    static QString foreign(); ///< broken Markdown, HTML, images, links that are not the web's
};

} // namespace lmp
