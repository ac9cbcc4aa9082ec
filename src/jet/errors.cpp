#include "jet/errors.h"

#include "base/unicode.h"

#include <string>

namespace jet {
namespace {

using base::Status;
using base::StatusCode;

struct ErrorText {
    StatusCode code;
    std::string_view text;
};

ErrorText TextOf(ErrorNumber number) {
    switch (number) {
#define JET_ERROR(name, number, code, text)                                                        \
    case ErrorNumber::name:                                                                        \
        return {StatusCode::code, text};
#include "jet/error_table.h"
#undef JET_ERROR
    }
    return {StatusCode::kUnsupported, "Reserved error."};  // a number that is no enumerator
}

}  // namespace

Status JetError(ErrorNumber number) {
    return JetError(number, std::string_view());
}

Status JetError(ErrorNumber number, std::u16string_view name, std::u16string_view second) {
    return JetError(number, base::ToUtf8(name), base::ToUtf8(second));
}

Status JetError(ErrorNumber number, std::string_view name, std::string_view second) {
    const auto [code, text] = TextOf(number);
    std::string message;
    const std::string_view* next = &name;
    for (const char c : text) {
        if (c != '|') {
            message += c;
            continue;
        }
        message += *next;
        next = &second;
    }
    return {code, message, static_cast<std::int32_t>(number)};
}

Status ErrorBecause(ErrorNumber number, std::string_view reason) {
    const Status error = JetError(number);
    return {error.code(), error.message() + " (" + std::string(reason) + ")", error.number()};
}

Status Damaged(std::string_view what) {
    return JetError(ErrorNumber::kDamaged, what);
}

Status DamagedPage(PageNumber page, std::string_view what) {
    return Damaged("page " + std::to_string(page) + ": " + std::string(what));
}

Status FileIsFull() {
    return ErrorBecause(ErrorNumber::kNotEnoughSpace,
                        "The file has reached the largest size of its format.");
}

bool Is(const Status& status, ErrorNumber number) {
    return status.number() == static_cast<std::int32_t>(number);
}

}  // namespace jet
