// KnownNamesTest: a catalogue with rows of which only the file's name matters.
#pragma once

#include "discovery/known_names.h"

#include "catalogue/quoting.h"
#include "support/catalogue_fixture.h"

namespace discovery {

class KnownNamesTest : public test_support::CatalogueFixture {
protected:
    void AddRow(const QString& path) {
        Execute(QStringLiteral("Insert into Tables (FileName) Values ('%1')")
                    .arg(catalogue::QuoteSql(path)));
    }
    static bool Contains(KnownNames& names, const QString& path) {
        const auto known = names.Contains(path);
        EXPECT_TRUE(known.ok()) << known.status().message();
        return known.value_or(false);
    }
    static QString Number(int i) { return QStringLiteral("/tables/Table %1.vpt").arg(i); }
};

}  // namespace discovery
