#include "tableinfo/table_info_dialog_logic.h"

#include "base/marked_text.h"
#include "base/trim_spaces.h"

namespace tableinfo {
namespace {

using catalogue::DetailField;

struct Copy {
    InfoBoxIndex box;
    DetailField field;
};

constexpr Copy kCopies[] = {
    {kNameBox, catalogue::kDisplayName},
    {kAuthorBox, catalogue::kAuthor},
    {kVersionBox, catalogue::kVersion},
    {kBlurbBox, catalogue::kNotes},
};

const QString& TextOf(const InfoTexts& texts, int box) {
    return texts[static_cast<std::size_t>(box)];
}

bool IsBlank(const QString& text) {
    return base::TrimSpaces(text.toStdU16String()).empty();  // line ends and tabs are text
}

void CopyStream(const StreamReader& read_stream, const QString& stream_name, DetailField field,
                DetailTarget& target) {
    const QString text = read_stream(stream_name);
    if (!text.isEmpty()) target.SetDetailText(field, text);
}

}  // namespace

const std::array<InfoBox, kInfoBoxCount> kInfoBoxes = {{
    {u"TableName", MARKED_TEXT("TableinfoTexts", "Table Name"), false},
    {u"AuthorName", MARKED_TEXT("TableinfoTexts", "Table Author"), false},
    {u"TableVersion", MARKED_TEXT("TableinfoTexts", "Version"), false},
    {u"ReleaseDate", MARKED_TEXT("TableinfoTexts", "Release Date"), false},
    {u"AuthorEmail", MARKED_TEXT("TableinfoTexts", "E-Mail"), false},
    {u"AuthorWebSite", MARKED_TEXT("TableinfoTexts", "Web Site"), false},
    {u"TableBlurb", MARKED_TEXT("TableinfoTexts", "Short Blurb"), true},
    {u"TableDescription", MARKED_TEXT("TableinfoTexts", "Description"), true},
    {u"TableRules", MARKED_TEXT("TableinfoTexts", "Rules"), true},
}};

// The prefix is always added: an address that has one gets a second one.
QString MailAddress(const QString& address, const QString& table_name) {
    return QStringLiteral("Mailto:") + address + QStringLiteral("?subject=") + table_name;
}

QString SiteAddress(const QString& address) {
    const bool is_complete = address.left(7).toUpper() == QStringLiteral("HTTP://");
    return is_complete ? address : QStringLiteral("http://") + address;
}

bool CopyIntoDetails(const InfoTexts& texts, const StreamReader& read_stream,
                     DetailTarget& target) {
    for (const auto& [box, field] : kCopies)
        if (const QString& text = TextOf(texts, box); !IsBlank(text))
            target.SetDetailText(field, text);
    CopyStream(read_stream, QStringLiteral("CompanyName"), catalogue::kCompany, target);
    CopyStream(read_stream, QStringLiteral("CompanyYear"), catalogue::kYear, target);
    const bool is_saved = target.Save();
    const QString& rules = TextOf(texts, kRulesBox);
    if (IsBlank(rules)) return is_saved;
    target.SetDetailText(catalogue::kRulesText, rules);
    return target.SaveRules() && is_saved;
}

}  // namespace tableinfo
