// The engine's errors as Status values. The comments give the error numbers. Names are UTF-16, as
// in the file; the texts are UTF-8.
#pragma once

#include "base/status.h"
#include "jet/ids.h"

#include <string>
#include <string_view>

namespace jet::errors {

base::Status NotADatabase(std::string_view path);                                // 3343
base::Status UnsupportedDatabase(std::string_view path, std::string_view what);  // 3343
base::Status NotAValidPassword(std::string_view path);                           // 3031
// 3049; `what` says what contradicts the format.
base::Status Damaged(std::string_view what);
base::Status DamagedPage(PageNumber page, std::string_view what);
base::Status ReadOnly();                                                          // 3027
base::Status ReadOnlyBecause(std::string_view why);                               // 3027
base::Status NoSuchTable(std::u16string_view table);                              // 3078
base::Status TableExists(std::u16string_view table);                              // 3010
base::Status NoSuchField(std::u16string_view column, std::u16string_view table);  // 3381
base::Status FieldExists(std::u16string_view column, std::u16string_view table);  // 3380
base::Status NoSuchIndex(std::u16string_view index, std::u16string_view table);   // 3372
base::Status IndexExists(std::u16string_view index, std::u16string_view table);   // 3375
base::Status PrimaryKeyExists();                                                  // 3283
base::Status TooManyFields();                                                     // 3190
base::Status TooManyIndexes(std::u16string_view table);                           // 3626
base::Status NoFieldDefined();                                                    // 3264
base::Status NotAValidName(std::u16string_view name);                             // 3125
base::Status InvalidIndex(std::u16string_view index);        // 3291: its columns are wrong
base::Status FieldInUse(std::u16string_view column);         // 3280
base::Status DuplicateKey();                                 // 3022
base::Status NullInIndex();                                  // 3058
base::Status RecordTooLarge();                               // 3047
base::Status RecordDeleted();                                // 3167
base::Status FieldTooSmall();                                // 3163
base::Status Required(std::u16string_view field);            // 3314
base::Status ZeroLength(std::u16string_view field);          // 3315
base::Status HasRelatedRecords(std::u16string_view table);   // 3200
base::Status NeedsRelatedRecord(std::u16string_view table);  // 3201
base::Status UsedInRelation();                               // 3281
base::Status ObjectExists(std::u16string_view object);       // 3012
base::Status NoUniqueIndex();                                // 3366
base::Status UnlikeFieldsInRelation();                       // 3368
base::Status FileTooLarge();                                 // 3026

}  // namespace jet::errors
