#include "jet/storage_errors.h"

#include "base/unicode.h"

namespace jet::errors {
namespace {

using base::Status;
using base::StatusCode;

std::string Quoted(std::u16string_view name) {
    return "'" + base::ToUtf8(name) + "'";
}

}  // namespace

Status NotADatabase(std::string_view path) {
    return {StatusCode::kUnsupported, "Unrecognized database format '" + std::string(path) + "'.",
            3343};
}

Status UnsupportedDatabase(std::string_view path, std::string_view what) {
    return {StatusCode::kUnsupported,
            "Unrecognized database format '" + std::string(path) + "': " + std::string(what) + ".",
            3343};
}

Status NotAValidPassword(std::string_view path) {
    return {StatusCode::kPermissionDenied,
            "Not a valid password. The database '" + std::string(path) +
                "' is protected by a database password.",
            3031};
}

Status Damaged(std::string_view what) {
    return {StatusCode::kCorruption, "The database file is damaged: " + std::string(what) + ".",
            3049};
}

Status DamagedPage(PageNumber page, std::string_view what) {
    return Damaged("page " + std::to_string(page) + ": " + std::string(what));
}

Status ReadOnly() {
    return {StatusCode::kPermissionDenied, "Cannot update. Database or object is read-only.", 3027};
}

Status ReadOnlyBecause(std::string_view why) {
    return {StatusCode::kPermissionDenied,
            "Cannot update. Database or object is read-only. (" + std::string(why) + ")", 3027};
}

Status NoSuchTable(std::u16string_view table) {
    return {StatusCode::kNotFound,
            "The Microsoft Jet database engine cannot find the input table or query " +
                Quoted(table) + ". Make sure it exists and that its name is spelled correctly.",
            3078};
}

Status TableExists(std::u16string_view table) {
    return {StatusCode::kAlreadyExists, "Table " + Quoted(table) + " already exists.", 3010};
}

Status NoSuchField(std::u16string_view column, std::u16string_view table) {
    return {StatusCode::kNotFound,
            "There is no field named " + Quoted(column) + " in table " + Quoted(table) + ".", 3381};
}

Status FieldExists(std::u16string_view column, std::u16string_view table) {
    return {StatusCode::kAlreadyExists,
            "Field " + Quoted(column) + " already exists in table " + Quoted(table) + ".", 3380};
}

Status NoSuchIndex(std::u16string_view index, std::u16string_view table) {
    return {StatusCode::kNotFound,
            "No such index " + Quoted(index) + " on table " + Quoted(table) + ".", 3372};
}

Status IndexExists(std::u16string_view index, std::u16string_view table) {
    return {StatusCode::kAlreadyExists,
            "Table " + Quoted(table) + " already has an index named " + Quoted(index) + ".", 3375};
}

Status PrimaryKeyExists() {
    return {StatusCode::kAlreadyExists, "Primary key already exists.", 3283};
}

Status TooManyFields() {
    return {StatusCode::kInvalidArgument, "Too many fields defined.", 3190};
}

Status TooManyIndexes(std::u16string_view table) {
    return {StatusCode::kInvalidArgument,
            "There are too many indexes on table " + Quoted(table) +
                ". Delete some of the indexes on the table and try the operation again.",
            3626};
}

Status NoFieldDefined() {
    return {StatusCode::kInvalidArgument, "No field defined--cannot append TableDef or Index.",
            3264};
}

Status NotAValidName(std::u16string_view name) {
    return {StatusCode::kInvalidArgument,
            Quoted(name) + " is not a valid name. Make sure that it does not include invalid "
                           "characters or punctuation and that it is not too long.",
            3125};
}

Status InvalidIndex(std::u16string_view index) {
    return {StatusCode::kInvalidArgument,
            "Invalid field definition in index " + Quoted(index) + ".", 3291};
}

Status FieldInUse(std::u16string_view column) {
    return {StatusCode::kInvalidArgument,
            "Cannot delete a field that is part of an index or is needed by the system. (" +
                base::ToUtf8(column) + ")",
            3280};
}

Status DuplicateKey() {
    return {StatusCode::kConstraint,
            "The changes you requested to the table were not successful because they would create "
            "duplicate values in the index, primary key, or relationship. Change the data in the "
            "field or fields that contain duplicate data, remove the index, or redefine the index "
            "to permit duplicate entries and try again.",
            3022};
}

Status NullInIndex() {
    return {StatusCode::kConstraint, "Index or primary key cannot contain a Null value.", 3058};
}

Status RecordTooLarge() {
    return {StatusCode::kConstraint, "Record is too large.", 3047};
}

Status RecordDeleted() {
    return {StatusCode::kNotFound, "Record is deleted.", 3167};
}

Status FieldTooSmall() {
    return {StatusCode::kConstraint,
            "The field is too small to accept the amount of data you attempted to add. Try "
            "inserting or pasting less data.",
            3163};
}

Status Required(std::u16string_view field) {
    return {StatusCode::kConstraint,
            "The field " + Quoted(field) +
                " cannot contain a Null value because the Required property for this field is set "
                "to True. Enter a value in this field.",
            3314};
}

Status ZeroLength(std::u16string_view field) {
    return {StatusCode::kConstraint, "Field " + Quoted(field) + " cannot be a zero-length string.",
            3315};
}

Status HasRelatedRecords(std::u16string_view table) {
    return {StatusCode::kConstraint,
            "The record cannot be deleted or changed because table " + Quoted(table) +
                " includes related records.",
            3200};
}

Status NeedsRelatedRecord(std::u16string_view table) {
    return {StatusCode::kConstraint,
            "You cannot add or change a record because a related record is required in table " +
                Quoted(table) + ".",
            3201};
}

Status UsedInRelation() {
    return {StatusCode::kConstraint,
            "Cannot delete this index or table. It is either the current index or is used in a "
            "relationship.",
            3281};
}

Status ObjectExists(std::u16string_view object) {
    return {StatusCode::kAlreadyExists, "Object " + Quoted(object) + " already exists.", 3012};
}

Status NoUniqueIndex() {
    return {StatusCode::kInvalidArgument,
            "No unique index found for the referenced field of the primary table.", 3366};
}

Status UnlikeFieldsInRelation() {
    return {StatusCode::kInvalidArgument,
            "Relationship must be on the same number of fields with the same data types.", 3368};
}

Status FileTooLarge() {
    return {StatusCode::kNoSpace,
            "Not enough space on disk. (The file has reached the largest size of its format.)",
            3026};
}

}  // namespace jet::errors
