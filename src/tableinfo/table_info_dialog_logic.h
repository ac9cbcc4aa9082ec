// What the table information dialog does besides showing texts: which box shows which stream, the
// addresses it opens, and copying into the main window's details.
#pragma once

#include "catalogue/detail_field.h"

#include <QtCore/QString>

#include <array>
#include <functional>

namespace tableinfo {

// Positions in the control array txtInfo.
enum InfoBoxIndex : int {
    kNameBox = 0,
    kAuthorBox,
    kVersionBox,
    kReleaseDateBox,
    kMailBox,
    kSiteBox,
    kBlurbBox,
    kDescriptionBox,
    kRulesBox,
    kInfoBoxCount
};

// One element of the control array txtInfo.
struct InfoBox {
    const char16_t* tag;    // name of the stream that it shows
    const char16_t* label;  // caption beside it; a marked text
    bool several_lines;
};

extern const std::array<InfoBox, kInfoBoxCount> kInfoBoxes;

// The texts of the boxes, by index.
using InfoTexts = std::array<QString, kInfoBoxCount>;

// "Mailto:" + address + "?subject=" + table name, also for an address that has the prefix already.
QString MailAddress(const QString& address, const QString& table_name);

// The address as it is when it begins with "HTTP://" in any letter case, otherwise with "http://"
// in front.
QString SiteAddress(const QString& address);

// The details of the table in the main window.
class DetailTarget {
public:
    virtual ~DetailTarget() = default;
    // Counts as an edit of the user.
    virtual void SetDetailText(catalogue::DetailField field, const QString& text) = 0;
    // The two Save commands; they show their errors themselves. False: nothing was stored.
    virtual bool Save() = 0;
    virtual bool SaveRules() = 0;
};

// The text of a stream of the table file by its name; empty when there is none.
using StreamReader = std::function<QString(const QString& stream_name)>;

// "Update Tavolo Details": puts the texts that are not blank into the details and saves them, then
// the rules. False: not all of it was stored.
bool CopyIntoDetails(const InfoTexts& texts, const StreamReader& read_stream, DetailTarget& target);

}  // namespace tableinfo
