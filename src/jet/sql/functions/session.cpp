#include "jet/sql/functions/session.h"

#include "jet/values/conversions.h"
#include "jet/values/system_clock.h"

namespace jet::sql {

int Session::current_year() const {
    const auto civil = CivilFromDays(now);
    return civil ? civil->year : CurrentYear();
}

}  // namespace jet::sql
