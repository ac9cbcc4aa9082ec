#include "jet/errors.h"

#include "base/unicode.h"

#include <algorithm>
#include <cassert>
#include <iterator>
#include <string>

namespace jet {
namespace {

using base::StatusCode;

struct ErrorText {
    std::int32_t number;
    StatusCode code;
    std::string_view text;  // '|' stands for the name of the thing
};

// Sorted by number. Numbers and texts are those that the vendor documents for Jet 4.
constexpr ErrorText kErrors[] = {
    {6, StatusCode::kConstraint, "Overflow"},
    {11, StatusCode::kConstraint, "Division by zero"},
    {3001, StatusCode::kInvalidArgument, "Invalid argument."},
    {3010, StatusCode::kAlreadyExists, "Table '|' already exists."},
    {3011, StatusCode::kNotFound,
     "The Microsoft Jet database engine could not find the object '|'. Make sure the object exists "
     "and that you spell its name and the path name correctly."},
    {3018, StatusCode::kNotFound, "Could not find field '|'."},
    {3020, StatusCode::kInvalidArgument, "Update or CancelUpdate without AddNew or Edit."},
    {3021, StatusCode::kNotFound,
     "Either BOF or EOF is True, or the current record has been deleted. Requested operation "
     "requires a current record."},
    {3022, StatusCode::kConstraint,
     "The changes you requested to the table were not successful because they would create "
     "duplicate values in the index, primary key, or relationship. Change the data in the field or "
     "fields that contain duplicate data, remove the index, or redefine the index to permit "
     "duplicate entries and try again."},
    {3024, StatusCode::kNotFound, "Could not find file '|'."},
    {3026, StatusCode::kNoSpace, "Not enough space on disk."},
    {3027, StatusCode::kPermissionDenied, "Cannot update. Database or object is read-only."},
    {3043, StatusCode::kIoError, "Disk or network error."},
    {3044, StatusCode::kNotFound,
     "'|' is not a valid path. Make sure that the path name is spelled correctly and that you are "
     "connected to the server on which the file resides."},
    {3045, StatusCode::kBusy, "Could not use '|'; file already in use."},
    {3047, StatusCode::kConstraint, "Record is too large."},
    {3058, StatusCode::kConstraint, "Index or primary key cannot contain a Null value."},
    {3061, StatusCode::kInvalidArgument, "No value given for one or more required parameters."},
    {3063, StatusCode::kInvalidArgument, "Duplicate output destination '|'."},
    {3067, StatusCode::kInvalidArgument, "Query input must contain at least one table or query."},
    {3071, StatusCode::kInvalidArgument,
     "This expression is typed incorrectly, or it is too complex to be evaluated."},
    {3073, StatusCode::kPermissionDenied, "Operation must use an updatable query."},
    {3075, StatusCode::kInvalidArgument, "Syntax error in query expression '|'."},
    {3077, StatusCode::kInvalidArgument,
     "Syntax error (missing operator) in query expression '|'."},
    {3078, StatusCode::kNotFound,
     "The Microsoft Jet database engine cannot find the input table or query '|'. Make sure it "
     "exists and that its name is spelled correctly."},
    {3079, StatusCode::kInvalidArgument,
     "The specified field '|' could refer to more than one table listed in the FROM clause of your "
     "SQL statement."},
    {3085, StatusCode::kInvalidArgument, "Undefined function '|' in expression."},
    {3093, StatusCode::kInvalidArgument, "ORDER BY clause (|) conflicts with DISTINCT."},
    {3095, StatusCode::kInvalidArgument, "Cannot have aggregate function in expression (|)."},
    {3096, StatusCode::kInvalidArgument, "Cannot have aggregate function in WHERE clause (|)."},
    {3122, StatusCode::kInvalidArgument,
     "You tried to execute a query that does not include the specified expression '|' as part of "
     "an aggregate function."},
    {3127, StatusCode::kInvalidArgument,
     "The INSERT INTO statement contains the following unknown field name: '|'. Make sure you have "
     "typed the name correctly, and try the operation again."},
    {3128, StatusCode::kInvalidArgument,
     "Specify the table containing the records you want to delete."},
    {3129, StatusCode::kInvalidArgument,
     "Invalid SQL statement; expected 'DELETE', 'INSERT', 'PROCEDURE', 'SELECT', or 'UPDATE'."},
    {3131, StatusCode::kInvalidArgument, "Syntax error in FROM clause."},
    {3134, StatusCode::kInvalidArgument, "Syntax error in INSERT INTO statement."},
    {3138, StatusCode::kInvalidArgument, "Syntax error in ORDER BY clause."},
    {3141, StatusCode::kInvalidArgument,
     "The SELECT statement includes a reserved word or an argument name that is misspelled or "
     "missing, or the punctuation is incorrect."},
    {3142, StatusCode::kInvalidArgument, "Characters found after end of SQL statement."},
    {3144, StatusCode::kInvalidArgument, "Syntax error in UPDATE statement."},
    {3145, StatusCode::kInvalidArgument, "Syntax error in WHERE clause."},
    {3146, StatusCode::kInvalidArgument, "Syntax error in GROUP BY clause."},
    {3163, StatusCode::kConstraint,
     "The field is too small to accept the amount of data you attempted to add. Try inserting or "
     "pasting less data."},
    {3164, StatusCode::kConstraint, "Field cannot be updated."},
    {3167, StatusCode::kNotFound, "Record is deleted."},
    {3190, StatusCode::kConstraint, "Too many fields defined."},
    {3192, StatusCode::kNotFound, "Could not find output table '|'."},
    {3197, StatusCode::kBusy,
     "The Microsoft Jet database engine stopped the process because you and another user are "
     "attempting to change the same data at the same time."},
    {3204, StatusCode::kAlreadyExists, "Database already exists."},
    {3219, StatusCode::kUnsupported, "Operation is not allowed in this context."},
    {3265, StatusCode::kNotFound,
     "Item cannot be found in the collection corresponding to the requested name or ordinal."},
    {3283, StatusCode::kAlreadyExists, "Primary key already exists."},
    {3284, StatusCode::kAlreadyExists, "Index already exists."},
    {3290, StatusCode::kInvalidArgument, "Syntax error in CREATE TABLE statement."},
    {3291, StatusCode::kInvalidArgument, "Syntax error in CREATE INDEX statement."},
    {3292, StatusCode::kInvalidArgument, "Syntax error in field definition."},
    {3293, StatusCode::kInvalidArgument, "Syntax error in ALTER TABLE statement."},
    {3295, StatusCode::kInvalidArgument, "Syntax error in DROP TABLE or DROP INDEX."},
    {3296, StatusCode::kInvalidArgument, "Join expression not supported."},
    {3306, StatusCode::kInvalidArgument,
     "You have written a subquery that can return more than one field without using the EXISTS "
     "reserved word in the main query's FROM clause. Revise the SELECT statement of the subquery "
     "to request only one field."},
    {3307, StatusCode::kInvalidArgument,
     "The number of columns in the two selected tables or queries of a union query do not match."},
    {3314, StatusCode::kConstraint,
     "The field '|' cannot contain a Null value because the Required property for this field is "
     "set to True. Enter a value in this field."},
    {3315, StatusCode::kConstraint, "Field '|' cannot be a zero-length string."},
    {3317, StatusCode::kConstraint,
     "One or more values are prohibited by the validation rule '|' set for '|'. Enter a value that "
     "the expression for this field can accept."},
    {3343, StatusCode::kUnsupported, "Unrecognized database format '|'."},
    {3346, StatusCode::kInvalidArgument,
     "Number of query values and destination fields are not the same."},
    {3349, StatusCode::kConstraint, "Numeric field overflow."},
    {3354, StatusCode::kInvalidArgument, "At most one record can be returned by this subquery."},
    {3360, StatusCode::kInvalidArgument, "Query is too complex."},
    {3372, StatusCode::kNotFound, "No such index '|' on table '|'."},
    {3375, StatusCode::kAlreadyExists, "Table '|' already has an index named '|'."},
    {3376, StatusCode::kNotFound, "Table '|' does not exist."},
    {3380, StatusCode::kAlreadyExists, "Field '|' already exists in table '|'."},
    {3381, StatusCode::kNotFound, "There is no field named '|' in table '|'."},
    {3421, StatusCode::kInvalidArgument, "Data type conversion error."},
    {3464, StatusCode::kInvalidArgument, "Data type mismatch in criteria expression."},
    {3704, StatusCode::kInvalidArgument, "Operation is not allowed when the object is closed."},
    {3705, StatusCode::kInvalidArgument, "Operation is not allowed when the object is open."},
};

std::string FillIn(std::string_view text, std::u16string_view name, std::u16string_view second) {
    std::string filled;
    bool first = true;
    for (const char c : text) {
        if (c != '|') {
            filled += c;
            continue;
        }
        filled += base::ToUtf8(first ? name : second);
        first = false;
    }
    return filled;
}

}  // namespace

base::Status JetError(std::int32_t number, std::u16string_view name, std::u16string_view second) {
    const auto* found = std::lower_bound(
        std::begin(kErrors), std::end(kErrors), number,
        [](const ErrorText& error, std::int32_t wanted) { return error.number < wanted; });
    assert(found != std::end(kErrors) && found->number == number);
    return {found->code, FillIn(found->text, name, second), number};
}

}  // namespace jet
