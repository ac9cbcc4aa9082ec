// The errors of the engine: JET_ERROR(name, number, code, text) for each, sorted by number. Numbers
// and texts are those that the vendor documents for Jet 4, the texts in the form that ADO shows.
// '|' marks where a name goes. No include guard: the file that includes it defines JET_ERROR first.
JET_ERROR(kOverflow, 6, kConstraint, "Overflow")
JET_ERROR(kDivisionByZero, 11, kConstraint, "Division by zero")
JET_ERROR(kInvalidArgument, 3001, kInvalidArgument, "Invalid argument.")
JET_ERROR(kTableExists, 3010, kAlreadyExists, "Table '|' already exists.")
JET_ERROR(kNoSuchObject, 3011, kNotFound,
          "The Microsoft Jet database engine could not find the object '|'. Make sure the object "
          "exists and that you spell its name and the path name correctly.")
JET_ERROR(kObjectExists, 3012, kAlreadyExists, "Object '|' already exists.")
JET_ERROR(kNoSuchFieldInRule, 3018, kNotFound, "Could not find field '|'.")
JET_ERROR(kNoCurrentRecord, 3021, kNotFound,
          "Either BOF or EOF is True, or the current record has been deleted. Requested operation "
          "requires a current record.")
JET_ERROR(kDuplicateKey, 3022, kConstraint,
          "The changes you requested to the table were not successful because they would create "
          "duplicate values in the index, primary key, or relationship. Change the data in the "
          "field or fields that contain duplicate data, remove the index, or redefine the index to "
          "permit duplicate entries and try again.")
JET_ERROR(kNoSuchFile, 3024, kNotFound, "Could not find file '|'.")
JET_ERROR(kNotEnoughSpace, 3026, kNoSpace, "Not enough space on disk.")
JET_ERROR(kReadOnly, 3027, kPermissionDenied, "Cannot update. Database or object is read-only.")
JET_ERROR(kNotAValidPassword, 3031, kPermissionDenied,
          "Not a valid password. The database '|' is protected by a database password.")
JET_ERROR(kDiskError, 3043, kIoError, "Disk or network error.")
JET_ERROR(kNotAValidPath, 3044, kNotFound,
          "'|' is not a valid path. Make sure that the path name is spelled correctly and that you "
          "are connected to the server on which the file resides.")
JET_ERROR(kFileInUse, 3045, kBusy, "Could not use '|'; file already in use.")
JET_ERROR(kRecordTooLarge, 3047, kConstraint, "Record is too large.")
JET_ERROR(kDamaged, 3049, kCorruption, "The database file is damaged: |.")
JET_ERROR(kCannotOpenFile, 3051, kPermissionDenied,
          "The Microsoft Jet database engine cannot open the file '|'. It is already opened "
          "exclusively by another user, or you need permission to view its data.")
JET_ERROR(kNullInIndex, 3058, kConstraint, "Index or primary key cannot contain a Null value.")
JET_ERROR(kParameterMissing, 3061, kInvalidArgument,
          "No value given for one or more required parameters.")
JET_ERROR(kDuplicateDestination, 3063, kInvalidArgument, "Duplicate output destination '|'.")
JET_ERROR(kNoTableInQuery, 3067, kInvalidArgument,
          "Query input must contain at least one table or query.")
JET_ERROR(kExpressionTooComplex, 3071, kInvalidArgument,
          "This expression is typed incorrectly, or it is too complex to be evaluated.")
JET_ERROR(kNotUpdatable, 3073, kPermissionDenied, "Operation must use an updatable query.")
JET_ERROR(kInQueryExpression, 3075, kInvalidArgument, "| in query expression '|'.")
JET_ERROR(kNoSuchTable, 3078, kNotFound,
          "The Microsoft Jet database engine cannot find the input table or query '|'. Make sure "
          "it exists and that its name is spelled correctly.")
JET_ERROR(kAmbiguousField, 3079, kInvalidArgument,
          "The specified field '|' could refer to more than one table listed in the FROM clause of "
          "your SQL statement.")
JET_ERROR(kNoSuchFunction, 3085, kInvalidArgument, "Undefined function '|' in expression.")
JET_ERROR(kOrderConflictsWithDistinct, 3093, kInvalidArgument,
          "ORDER BY clause (|) conflicts with DISTINCT.")
JET_ERROR(kAggregateInExpression, 3095, kInvalidArgument,
          "Cannot have aggregate function in expression (|).")
JET_ERROR(kAggregateInWhere, 3096, kInvalidArgument,
          "Cannot have aggregate function in WHERE clause (|).")
JET_ERROR(kNotPartOfAggregate, 3122, kInvalidArgument,
          "You tried to execute a query that does not include the specified expression '|' as part "
          "of an aggregate function.")
JET_ERROR(kNotAValidName, 3125, kInvalidArgument,
          "'|' is not a valid name. Make sure that it does not include invalid characters or "
          "punctuation and that it is not too long.")
JET_ERROR(kUnknownFieldInInsert, 3127, kInvalidArgument,
          "The INSERT INTO statement contains the following unknown field name: '|'. Make sure you "
          "have typed the name correctly, and try the operation again.")
JET_ERROR(kNoTargetOfDelete, 3128, kInvalidArgument,
          "Specify the table containing the records you want to delete.")
JET_ERROR(kNotAStatement, 3129, kInvalidArgument,
          "Invalid SQL statement; expected 'DELETE', 'INSERT', 'PROCEDURE', 'SELECT', or 'UPDATE'.")
JET_ERROR(kSyntaxInFrom, 3131, kInvalidArgument, "Syntax error in FROM clause.")
JET_ERROR(kSyntaxInInsert, 3134, kInvalidArgument, "Syntax error in INSERT INTO statement.")
JET_ERROR(kSyntaxInOrderBy, 3138, kInvalidArgument, "Syntax error in ORDER BY clause.")
JET_ERROR(kSyntaxInSelect, 3141, kInvalidArgument,
          "The SELECT statement includes a reserved word or an argument name that is misspelled or "
          "missing, or the punctuation is incorrect.")
JET_ERROR(kTextAfterStatement, 3142, kInvalidArgument,
          "Characters found after end of SQL statement.")
JET_ERROR(kSyntaxInUpdate, 3144, kInvalidArgument, "Syntax error in UPDATE statement.")
JET_ERROR(kSyntaxInWhere, 3145, kInvalidArgument, "Syntax error in WHERE clause.")
JET_ERROR(kSyntaxInGroupBy, 3146, kInvalidArgument, "Syntax error in GROUP BY clause.")
JET_ERROR(kFieldTooSmall, 3163, kConstraint,
          "The field is too small to accept the amount of data you attempted to add. Try inserting "
          "or pasting less data.")
JET_ERROR(kFieldNotUpdatable, 3164, kConstraint, "Field cannot be updated.")
JET_ERROR(kRecordDeleted, 3167, kNotFound, "Record is deleted.")
JET_ERROR(kTooManyFields, 3190, kInvalidArgument, "Too many fields defined.")
JET_ERROR(kNoOutputTable, 3192, kNotFound, "Could not find output table '|'.")
JET_ERROR(kChangedMeanwhile, 3197, kBusy,
          "The Microsoft Jet database engine stopped the process because you and another user are "
          "attempting to change the same data at the same time.")
JET_ERROR(kHasRelatedRecords, 3200, kConstraint,
          "The record cannot be deleted or changed because table '|' includes related records.")
JET_ERROR(kNeedsRelatedRecord, 3201, kConstraint,
          "You cannot add or change a record because a related record is required in table '|'.")
JET_ERROR(kDatabaseExists, 3204, kAlreadyExists, "Database already exists.")
JET_ERROR(kNotAllowedHere, 3219, kUnsupported, "Operation is not allowed in this context.")
JET_ERROR(kInvalidFieldType, 3259, kInvalidArgument, "Invalid field data type.")
JET_ERROR(kNoFieldDefined, 3264, kInvalidArgument,
          "No field defined--cannot append TableDef or Index.")
JET_ERROR(kNoSuchItem, 3265, kNotFound,
          "Item cannot be found in the collection corresponding to the requested name or ordinal.")
JET_ERROR(kFieldInUse, 3280, kInvalidArgument,
          "Cannot delete a field that is part of an index or is needed by the system.")
JET_ERROR(kUsedInRelation, 3281, kConstraint,
          "Cannot delete this index or table. It is either the current index or is used in a "
          "relationship.")
JET_ERROR(kPrimaryKeyExists, 3283, kAlreadyExists, "Primary key already exists.")
JET_ERROR(kSyntaxInCreateTable, 3290, kInvalidArgument, "Syntax error in CREATE TABLE statement.")
JET_ERROR(kSyntaxInCreateIndex, 3291, kInvalidArgument, "Syntax error in CREATE INDEX statement.")
JET_ERROR(kSyntaxInFieldDefinition, 3292, kInvalidArgument, "Syntax error in field definition.")
JET_ERROR(kSyntaxInAlterTable, 3293, kInvalidArgument, "Syntax error in ALTER TABLE statement.")
JET_ERROR(kSyntaxInDrop, 3295, kInvalidArgument, "Syntax error in DROP TABLE or DROP INDEX.")
JET_ERROR(kJoinNotSupported, 3296, kInvalidArgument, "Join expression not supported.")
JET_ERROR(kSubqueryHasSeveralFields, 3306, kInvalidArgument,
          "You have written a subquery that can return more than one field without using the "
          "EXISTS reserved word in the main query's FROM clause. Revise the SELECT statement of "
          "the subquery to request only one field.")
JET_ERROR(
    kUnionOfUnequalWidths, 3307, kInvalidArgument,
    "The number of columns in the two selected tables or queries of a union query do not match.")
JET_ERROR(kValueRequired, 3314, kConstraint,
          "The field '|' cannot contain a Null value because the Required property for this field "
          "is set to True. Enter a value in this field.")
JET_ERROR(kZeroLength, 3315, kConstraint, "Field '|' cannot be a zero-length string.")
JET_ERROR(kRuleBroken, 3317, kConstraint,
          "One or more values are prohibited by the validation rule '|' set for '|'. Enter a value "
          "that the expression for this field can accept.")
JET_ERROR(kUnrecognizedFormat, 3343, kUnsupported, "Unrecognized database format '|'|.")
JET_ERROR(kValueCountDiffers, 3346, kInvalidArgument,
          "Number of query values and destination fields are not the same.")
JET_ERROR(kNumericOverflow, 3349, kConstraint, "Numeric field overflow.")
JET_ERROR(kSubqueryHasSeveralRecords, 3354, kInvalidArgument,
          "At most one record can be returned by this subquery.")
JET_ERROR(kOpenedExclusively, 3356, kBusy,
          "You attempted to open a database that is already opened exclusively by user '|' on "
          "machine '|'. Try again when the database is available.")
JET_ERROR(kQueryTooComplex, 3360, kInvalidArgument, "Query is too complex.")
JET_ERROR(kNoUniqueIndex, 3366, kInvalidArgument,
          "No unique index found for the referenced field of the primary table.")
JET_ERROR(kUnlikeFieldsInRelation, 3368, kInvalidArgument,
          "Relationship must be on the same number of fields with the same data types.")
JET_ERROR(kNoSuchIndex, 3372, kNotFound, "No such index '|' on table '|'.")
JET_ERROR(kIndexExists, 3375, kAlreadyExists, "Table '|' already has an index named '|'.")
JET_ERROR(kTableDoesNotExist, 3376, kNotFound, "Table '|' does not exist.")
JET_ERROR(kFieldExists, 3380, kAlreadyExists, "Field '|' already exists in table '|'.")
JET_ERROR(kNoSuchField, 3381, kNotFound, "There is no field named '|' in table '|'.")
JET_ERROR(kInvalidIndexField, 3409, kInvalidArgument, "Invalid field definition in index '|'.")
JET_ERROR(kConversionError, 3421, kInvalidArgument, "Data type conversion error.")
JET_ERROR(kTypeMismatch, 3464, kInvalidArgument, "Data type mismatch in criteria expression.")
JET_ERROR(kTooManyIndexes, 3626, kInvalidArgument,
          "There are too many indexes on table '|'. Delete some of the indexes on the table and "
          "try the operation again.")
JET_ERROR(kClosed, 3704, kInvalidArgument, "Operation is not allowed when the object is closed.")
JET_ERROR(kOpen, 3705, kInvalidArgument, "Operation is not allowed when the object is open.")
