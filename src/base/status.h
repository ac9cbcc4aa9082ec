// Status and Result<T>: how functions report failures.
// A Status is a small code for the caller's decision, a text that names the thing that failed
// (UTF-8, a sentence a user can read), and, where an engine or a system has one, its own error
// number. Nothing here throws. Values; safe to pass between threads.
#pragma once

#include <cassert>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace base {

enum class StatusCode : std::uint8_t {
    kOk,
    kNotFound,  // a file, row, stream or object that is not there
    kAlreadyExists,
    kInvalidArgument,   // the caller's or the user's input makes no sense
    kIoError,           // the system refused to read or write
    kNoSpace,           // the disk is full
    kPermissionDenied,  // read-only file or folder
    kBusy,              // held by another process
    kCorruption,        // bytes of a file contradict its format
    kUnsupported,       // a valid file or request that this program does not handle
    kConstraint,        // duplicate key, required field, value out of range
};

class [[nodiscard]] Status {
public:
    Status() = default;  // ok
    Status(StatusCode code, std::string message, std::int32_t number = 0)
        : code_(code), message_(std::move(message)), number_(number) {
        assert(code != StatusCode::kOk);
    }
    static Status Ok() { return {}; }

    bool ok() const { return code_ == StatusCode::kOk; }
    StatusCode code() const { return code_; }
    // UTF-8; empty when ok.
    const std::string& message() const { return message_; }
    // The error number of the engine or system that failed (for the database engine its documented
    // error number, e.g. 3078); 0 when there is none.
    std::int32_t number() const { return number_; }

    // For the places where a failure is deliberately without consequence.
    void Ignore() const {}

    bool operator==(const Status&) const = default;

private:
    StatusCode code_ = StatusCode::kOk;
    std::string message_;
    std::int32_t number_ = 0;
};

// A value, or the Status that says why there is none (never an ok Status).
template <typename T>
class [[nodiscard]] Result {
public:
    Result(T value) : value_(std::move(value)) {}  // NOLINT: implicit on purpose, `return value;`
    Result(Status status) : status_(std::move(status)) { assert(!status_.ok()); }  // NOLINT

    bool ok() const { return value_.has_value(); }
    const Status& status() const { return status_; }

    // Requires: ok().
    T& value() & {
        assert(ok());
        return *value_;
    }
    const T& value() const& {
        assert(ok());
        return *value_;
    }
    T&& value() && {
        assert(ok());
        return std::move(*value_);
    }
    T& operator*() & { return value(); }
    const T& operator*() const& { return value(); }
    T&& operator*() && { return std::move(*this).value(); }
    T* operator->() { return &value(); }
    const T* operator->() const { return &value(); }

    T value_or(T fallback) const { return value_ ? *value_ : std::move(fallback); }

private:
    std::optional<T> value_;
    Status status_;
};

}  // namespace base

#define BASE_CONCAT_INNER(a, b) a##b
#define BASE_CONCAT(a, b) BASE_CONCAT_INNER(a, b)

// Returns the Status of `expr` from the function unless it is ok.
#define RETURN_IF_ERROR(expr)                                                                      \
    do {                                                                                           \
        if (::base::Status status_of_expr = (expr); !status_of_expr.ok()) return status_of_expr;   \
    } while (false)

// ASSIGN_OR_RETURN(auto page, store.Read(3)): the value, or returns the Status from its function.
#define ASSIGN_OR_RETURN(declaration, expr)                                                        \
    ASSIGN_OR_RETURN_INNER(BASE_CONCAT(result_of_line_, __LINE__), declaration, expr)
#define ASSIGN_OR_RETURN_INNER(result, declaration, expr)                                          \
    auto result = (expr);                                                                          \
    if (!result.ok()) return result.status();                                                      \
    declaration = std::move(result).value()
