#pragma once

#include "platform/Keychain.h"

namespace lmp {

/// The machine's own keychain: the Secret Service (or the wallet) of a Linux session, the Keychain of macOS. Never a
/// file of ours in its place.
///
/// UI thread, one at a time. The keychain is spoken to on a thread of its own, so that one that hangs (or asks the
/// person to unlock it) holds up neither the UI nor the program's exit; its call then stays unanswered. Calls of one
/// service name are carried out in the order in which they were made.
class SystemKeychain : public Keychain {
public:
    QCoro::Task<Result<std::optional<QString>>> read(QString service, QString account) override;
    QCoro::Task<Result<void>> write(QString service, QString account, QString secret) override;
    QCoro::Task<Result<void>> remove(QString service, QString account) override;
};

} // namespace lmp
