#pragma once

#include "core/Json.h"

#include <QByteArray>
#include <QString>

#include <boost/describe.hpp>
#include <boost/json/value.hpp>

#include <optional>
#include <string_view>

namespace lmp {

/// The id of a JSON-RPC request as its sender wrote it: a number or a string, and 0 is as good as any. A value.
struct JsonRpcId {
    boost::json::value value = {};
    bool operator==(const JsonRpcId &) const = default;

    /// The id as JSON text, by which it is told from every other one.
    QString text() const { return QString::fromUtf8(Json::encode(value)); }
    /// The id as one of ours, which are whole numbers; none when it cannot be.
    std::optional<qint64> number() const;
};

template <>
struct JsonCodec<JsonRpcId> {
    static bool read(const boost::json::value &from, JsonRpcId &to) {
        to.value = boost::json::value(from, boost::json::storage_ptr());
        return !from.is_null();
    }
    template <class Writer>
    static void write(const JsonRpcId &id, Writer &writer) {
        writer.write(id.value);
    }
};

/// What one line of JSON-RPC is, before anybody knows its method. It points into the parsed line and lives no longer.
struct JsonRpcEnvelope {
    enum class Kind { Request, Notification, Response };

    Kind kind = Kind::Notification;
    std::string_view method = {};
    const boost::json::value *id = nullptr;     ///< of a request and a response
    const boost::json::value *params = nullptr; ///< null when there are none
    const boost::json::value *result = nullptr; ///< of a response that is no error
    const boost::json::value *error = nullptr;  ///< of a response that is one

    /// @return none for JSON that is no message
    static std::optional<JsonRpcEnvelope> of(const boost::json::value &message);
    /// What went wrong, of a response that is an error; empty when it does not say.
    QString errorMessage() const;
};

/// Lines of JSON-RPC as we write them, without the line feed. Free of state; any thread.
///
/// @throws JsonEncodingError for parameters that JSON cannot hold
namespace json_rpc {

struct Error {
    qint64 code = 0;
    QString message = {};
};
BOOST_DESCRIBE_STRUCT(Error, (), (code, message))

template <class Params>
struct Request {
    QString jsonrpc = QStringLiteral("2.0");
    qint64 id = 0;
    QString method = {};
    Params params = {};
    BOOST_DESCRIBE_CLASS(Request, (), (jsonrpc, id, method, params), (), ())
};

template <class Params>
struct Notification {
    QString method = {};
    Params params = {};
    BOOST_DESCRIBE_CLASS(Notification, (), (method, params), (), ())
};

template <class Result>
struct Answer {
    JsonRpcId id = {};
    Result result = {};
    BOOST_DESCRIBE_CLASS(Answer, (), (id, result), (), ())
};

struct Refusal {
    JsonRpcId id = {};
    Error error = {};
};
BOOST_DESCRIBE_STRUCT(Refusal, (), (id, error))

/// The parameters of a method that takes none: an empty object, since some servers insist on one.
struct Nothing {};
BOOST_DESCRIBE_STRUCT(Nothing, (), ())

template <class Params>
QByteArray request(qint64 id, const QString &method, const Params &params) {
    return Json::encode(Request<Params>{.id = id, .method = method, .params = params});
}

template <class Params>
QByteArray notification(const QString &method, const Params &params) {
    return Json::encode(Notification<Params>{.method = method, .params = params});
}

template <class Result>
QByteArray answer(const JsonRpcId &id, const Result &result) {
    return Json::encode(Answer<Result>{.id = id, .result = result});
}

inline QByteArray refusal(const JsonRpcId &id, Error error) {
    return Json::encode(Refusal{.id = id, .error = std::move(error)});
}

/// The code of a method that is not known.
inline constexpr qint64 methodNotFound = -32601;

} // namespace json_rpc

} // namespace lmp
