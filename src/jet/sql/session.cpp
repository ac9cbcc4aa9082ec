#include "jet/sql/session.h"

#include "jet/conversions.h"
#include "jet/system_clock.h"

namespace jet::sql {

int Session::current_year() const {
    const auto civil = CivilFromDays(now);
    return civil ? civil->year : CurrentYear();
}

}  // namespace jet::sql
