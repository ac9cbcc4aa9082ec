#include "catalogue/start_up.h"

#include "base/marked_text.h"
#include "catalogue/data_source.h"
#include "catalogue/date_texts.h"
#include "catalogue/process_values.h"
#include "catalogue/program_files.h"
#include "catalogue/program_settings.h"
#include "catalogue/quoting.h"
#include "jet/connection.h"
#include "jet/errors.h"
#include "jet/tables/automatic_change.h"
#include "jet/tables/database.h"
#include "platform/application_folder.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "platform/settings_store.h"

namespace catalogue {
namespace {

// Windows 0x00BBGGRR: yellow, red, green; the first entry is never shown.
constexpr StatusColourTable kStatusColours = {0, 65535, 255, 65280};

// The columns that catalogues of the first versions do not have. Every start tries to add them all;
// where a column exists already its statement fails, so no version number is needed.
constexpr std::u16string_view kAddColumns[] = {
    u"Alter Table TABLES ADD RulesFile varchar(255) NULL",
    u"Alter Table TABLES ADD FileDate DATE NULL",
    u"Alter Table TABLES ADD RulesText memo NULL",
    u"Alter Table TABLES ADD TimesPlayed INT DEFAULT 0 NULL",
    u"Alter Table TABLES ADD LastPlayed DATE NULL",
    u"Alter Table TABLES ADD DateAdded DATE NULL",
    u"Alter Table TABLES ADD CRC VarChar(50) NULL ",
};

void FillProcessValues(ProcessValues& values) {
    values.StatusColours = kStatusColours;
}

bool IsExpected(const base::Status& done) {
    return done.ok() || jet::Is(done, jet::ErrorNumber::kFieldExists);
}

base::Status AddMissingColumns(jet::Connection& connection) {
    base::Status first;
    for (const std::u16string_view statement : kAddColumns) {
        const base::Status added = connection.Execute(statement).status();
        if (first.ok() && !IsExpected(added)) first = added;
    }
    return first;
}

base::Status StampUndatedRows(jet::Connection& connection, const QString& today) {
    const jet::NamedChange named(connection, MARKED_TEXT("HistoryTexts", "Date New Tables"),
                                 jet::kAutomaticChange);
    const QString statement = QStringLiteral("Update tables set DateAdded = '") + QuoteSql(today) +
                              QStringLiteral("' Where (isNull(DateAdded) or DateAdded = '')");
    return connection.Execute(statement.toStdU16String()).status();
}

}  // namespace

void PrepareValues(Catalogue& catalogue) {
    FillProcessValues(*catalogue.values);
    catalogue.values->VisualPinballExe = ReadSetting(*catalogue.settings, kExecutableKey);
    const auto pairs = ReadPathPairs(*catalogue.settings);
    if (pairs.ok()) catalogue.values->paths.Use(PathMap(*pairs));
    catalogue.values->PathMapFailure = pairs.status();
}

base::Status OpenCatalogue(Catalogue& catalogue) {
    return catalogue.CatalogueConnection->Open(
        u"Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" +
        DataSourceValue(CataloguePath(catalogue).toStdU16String()));
}

base::Status UpgradeCatalogue(Catalogue& catalogue) {
    const QString today = StoredDate(catalogue.clock->Now());
    const base::Status added = AddMissingColumns(*catalogue.CatalogueConnection);
    const base::Status stamped = StampUndatedRows(*catalogue.CatalogueConnection, today);
    const jet::Database* const database = catalogue.CatalogueConnection->database();
    if (database != nullptr && database->read_only()) return {};  // known, and shown elsewhere
    return added.ok() ? stamped : added;
}

QString CataloguePath(const Catalogue& catalogue) {
    return platform::ExistingName(
        platform::FileIn(catalogue.values->ApplicationFolder, kCatalogueFile.toString()));
}

base::Status Main(Catalogue& catalogue) {
    PrepareValues(catalogue);
    RETURN_IF_ERROR(OpenCatalogue(catalogue));
    catalogue.values->UpgradeFailure = UpgradeCatalogue(catalogue);
    return {};
}

}  // namespace catalogue
