#include "core/Json.h"

#include <boost/json/basic_parser_impl.hpp>
#include <boost/json/value_stack.hpp>

namespace lmp {

namespace {

using boost::json::string_view;
using Error = boost::system::error_code;

/// Builds the value out of the parser's reports, as boost::json::parser does it, but reads real numbers to their last
/// digit: Boost 1.81 misses the nearest one for every fifth of seventeen digits, so that records would drift each time
/// they are read and written.
struct ValueBuilder {
    static constexpr std::size_t max_object_size = boost::json::object::max_size();
    static constexpr std::size_t max_array_size = boost::json::array::max_size();
    static constexpr std::size_t max_key_size = boost::json::string::max_size();
    static constexpr std::size_t max_string_size = boost::json::string::max_size();

    boost::json::value_stack stack;

    bool on_document_begin(Error &) { return true; }
    bool on_document_end(Error &) { return true; }
    bool on_object_begin(Error &) { return true; }
    bool on_array_begin(Error &) { return true; }
    bool on_object_end(std::size_t size, Error &) { return stack.push_object(size), true; }
    bool on_array_end(std::size_t size, Error &) { return stack.push_array(size), true; }
    bool on_key_part(string_view part, std::size_t, Error &) { return stack.push_chars(part), true; }
    bool on_key(string_view rest, std::size_t, Error &) { return stack.push_key(rest), true; }
    bool on_string_part(string_view part, std::size_t, Error &) { return stack.push_chars(part), true; }
    bool on_string(string_view rest, std::size_t, Error &) { return stack.push_string(rest), true; }
    // The text is given whole, so a number has no parts.
    bool on_number_part(string_view, Error &) { return true; }
    bool on_int64(std::int64_t whole, string_view, Error &) { return stack.push_int64(whole), true; }
    bool on_uint64(std::uint64_t whole, string_view, Error &) { return stack.push_uint64(whole), true; }
    bool on_double(double nearly, string_view digits, Error &) {
        bool inRange = false;
        const double exact = QByteArrayView(digits.data(), qsizetype(digits.size())).toDouble(&inRange);
        return stack.push_double(inRange ? exact : nearly), true;
    }
    bool on_bool(bool truth, Error &) { return stack.push_bool(truth), true; }
    bool on_null(Error &) { return stack.push_null(), true; }
    bool on_comment_part(string_view, Error &) { return true; }
    bool on_comment(string_view, Error &) { return true; }
};

} // namespace

boost::json::value Json::parse(QByteArrayView text, Error &error, boost::json::storage_ptr memory) {
    boost::json::parse_options options;
    options.max_depth = maxDepth;
    boost::json::basic_parser<ValueBuilder> parser(options);
    parser.handler().stack.reset(std::move(memory));
    const auto read = parser.write_some(false, text.data(), std::size_t(text.size()), error);
    if (!error && read < std::size_t(text.size()))
        error = boost::json::error::extra_data;
    return error ? boost::json::value() : parser.handler().stack.release();
}

} // namespace lmp
