#pragma once

namespace lmp {

/// Specialise this for a type whose JSON form is not a record of its fields:
///
///     template <> struct JsonCodec<T> {
///         static bool read(const boost::json::value &from, T &to);   // false: not a T; null is offered too
///         template <class Writer> static void write(const T &value, Writer &writer);   // through writer.write(...)
///     };
///
/// Both are found by Json at compile time; types without one cost nothing.
template <class T>
struct JsonCodec;

template <class T>
concept HasJsonCodec = requires { sizeof(JsonCodec<T>); };

} // namespace lmp
