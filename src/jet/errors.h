// The engine's errors: each has a number, a code and a text (error_table.h).
#pragma once

#include "base/status.h"
#include "jet/ids.h"

#include <cstdint>
#include <string_view>

namespace jet {

enum class ErrorNumber : std::int32_t {
#define JET_ERROR(name, number, code, text) name = number,
#include "jet/error_table.h"
#undef JET_ERROR
};

// The Status of an error. What the caller names takes the places that the text has for it, in their
// order; UTF-16 as in the file, or UTF-8.
base::Status JetError(ErrorNumber number);
base::Status JetError(ErrorNumber number, std::u16string_view name,
                      std::u16string_view second = {});
base::Status JetError(ErrorNumber number, std::string_view name, std::string_view second = {});

// The same with a reason, a sentence or a name in UTF-8, in parentheses behind the text.
base::Status ErrorBecause(ErrorNumber number, std::string_view reason);

// kDamaged; `what` says what contradicts the format, as the end of a sentence.
base::Status Damaged(std::string_view what);
base::Status DamagedPage(PageNumber page, std::string_view what);

// kNotEnoughSpace, though the disk may have some.
base::Status FileIsFull();

// Whether `status` is this error.
bool Is(const base::Status& status, ErrorNumber number);

}  // namespace jet
