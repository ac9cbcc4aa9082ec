// The text fields of a table's record as the details show them.
#pragma once

namespace catalogue {

// Indexes of the control array txtDet.
enum DetailField : int {
    kId = 0,
    kYear,
    kDisplayName,
    kFileName,
    kAuthor,
    kVersion,
    kCompany,
    kImageFile,
    kFlyerFile,
    kNotes,
    kRulesFile,
    kFileDate,
    kRulesText,
    kDetailFieldCount
};

}  // namespace catalogue
