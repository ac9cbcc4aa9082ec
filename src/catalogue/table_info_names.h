// The ten standard streams of a table file's TableInfo storage, in the order in which the program
// numbers them, the same for the whole process. Any other stream there is a custom field.
#pragma once

#include <QtCore/QStringView>

#include <array>

namespace catalogue {

inline constexpr std::array<QStringView, 10> TableInfoStreamNames = {
    u"TableName",   u"AuthorName",  u"Screenshot",   u"TableBlurb",    u"TableRules",
    u"AuthorEmail", u"ReleaseDate", u"TableVersion", u"AuthorWebSite", u"TableDescription",
};

}  // namespace catalogue
