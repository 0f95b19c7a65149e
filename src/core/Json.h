#pragma once

#include "core/JsonEncodingError.h"
#include "core/JsonReader.h"
#include "core/JsonWriter.h"

#include <boost/json/monotonic_resource.hpp>
#include <boost/json/parse.hpp>

#include <expected>

namespace lmp {

/// Described records to JSON text (RFC 8259) and back; nothing else in the tree touches JSON text.
///
/// Keys are the field names; an optional that is absent or null is none, and none is left out; unknown keys are
/// ignored; whole numbers stay 64-bit. Free of state; any thread.
class Json {
public:
    /// Nesting beyond this is refused rather than recursed into.
    static constexpr std::size_t maxDepth = 256;

    template <class T>
    static std::expected<T, JsonFailure> decode(QByteArrayView text) {
        unsigned char buffer[2048];
        boost::json::monotonic_resource memory(buffer, sizeof buffer);
        boost::system::error_code error;
        const auto parsed = parse(text, error, &memory);
        if (error)
            return std::unexpected(JsonFailure{JsonFailure::Kind::Corrupted, {}, {}, detail::jsonTypeName<T>()});
        return fromValue<T>(parsed);
    }

    /// A record out of JSON that is parsed already.
    template <class T>
    static std::expected<T, JsonFailure> fromValue(const boost::json::value &value) {
        std::expected<T, JsonFailure> result;
        detail::JsonReader reader;
        if (!reader.read(value, *result, detail::JsonPlace{}))
            return std::unexpected(std::move(reader.failure));
        return result;
    }

    /// @throws JsonEncodingError for a number that is not finite
    template <class T>
    static QByteArray encode(const T &value) {
        detail::JsonWriter writer;
        writer.write(value);
        return std::move(writer.text);
    }

    /// The plain name of `T` in a decoding sentence.
    template <class T>
    static QString typeName() {
        return detail::jsonTypeName<T>();
    }

private:
    static boost::json::value parse(QByteArrayView text, boost::system::error_code &error,
                                    boost::json::storage_ptr memory);
};

} // namespace lmp
