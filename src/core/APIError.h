#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace lmp {

/// A failed call to the service, in the words the person reads.
///
/// A value; made only by the functions below, so that each situation has one sentence.
struct APIError {
    int status = -1;                  ///< HTTP status; -1 when there is none
    QString reason;                   ///< the sentence shown, see PlainLabel; `body` has the whole
    std::optional<QString> code;      ///< the service's machine code
    std::optional<qint64> pipNeeded;  ///< Pip that the operation needed
    std::optional<qint64> pipBalance; ///< Pip that the account holds
    std::optional<QByteArray> body;   ///< raw body of a non-2xx answer, for richer decoders
    bool operator==(const APIError &) const = default;

    /// The two sessions word a time-out differently.
    enum class Session { Normal, Slow };
    /// Whether the currency fields of an error body are taken over; a raw download leaves them.
    enum class Currency { Keep, Drop };

    static APIError unusableURL();
    static APIError invalidResponse();
    static APIError timedOut(Session session);
    static APIError network();
    static APIError fromAnswer(int status, const QByteArray &body, Currency currency = Currency::Keep);
    /// @param description the sentence of a decoding failure
    static APIError undecodable(int status, const QString &description);

    /// Whether nothing at all is known of the request's fate: no status came back.
    bool isTransport() const { return status == -1; }
};

} // namespace lmp
