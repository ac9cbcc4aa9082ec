#include "catalogue/date_texts.h"

#include "jet/values/conversions.h"
#include "platform/text_view.h"

#include <cmath>

namespace catalogue {

using platform::ToQString;
using platform::View;

double ToOleDate(const QDateTime& time) {
    const QDate date = time.date();
    const QTime clock = time.time();
    return jet::DaysFromCivil(
        {date.year(), date.month(), date.day(), clock.hour(), clock.minute(), clock.second()});
}

QString MediumDate(const QDateTime& time) {
    return ToQString(jet::FormatDate(ToOleDate(time), u"medium date"));
}

QString StoredDate(const QDateTime& time) {
    QString text = MediumDate(time);
    const auto read_back = jet::ParseDate(View(text), time.date().year());
    if (read_back && *read_back == std::floor(ToOleDate(time))) return text;
    return ToQString(jet::FormatDate(ToOleDate(time), u"dd-mmm-yyyy"));
}

QString GeneralDate(const QDateTime& time) {
    return ToQString(jet::FormatGeneralDate(ToOleDate(time)));
}

}  // namespace catalogue
