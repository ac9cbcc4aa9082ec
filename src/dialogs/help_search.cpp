#include "dialogs/help_search.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtGui/QTextDocument>

#include <algorithm>
#include <optional>

namespace dialogs {
namespace {

constexpr qint64 kMaxPageBytes = 1 << 20;

std::optional<HelpSearch::Page> ReadPage(const QDir& folder, const QString& name) {
    QFile file(folder.filePath(name));
    if (!file.open(QIODevice::ReadOnly) || file.size() > kMaxPageBytes) return std::nullopt;
    QTextDocument document;
    document.setHtml(QString::fromUtf8(file.readAll()));
    const QString title = document.metaInformation(QTextDocument::DocumentTitle);
    return HelpSearch::Page{name, title.isEmpty() ? name : title, document.toPlainText()};
}

}  // namespace

HelpSearch::HelpSearch(const QString& folder) {
    const QDir pages(folder);
    for (const QString& name : pages.entryList({QStringLiteral("*.html")}, QDir::Files))
        if (auto page = ReadPage(pages, name)) pages_.push_back(std::move(*page));
    std::stable_sort(pages_.begin(), pages_.end(), [](const Page& a, const Page& b) {
        return a.title.compare(b.title, Qt::CaseInsensitive) < 0;
    });
}

std::vector<const HelpSearch::Page*> HelpSearch::Find(const QString& words) const {
    const QStringList wanted = words.simplified().split(u' ', Qt::SkipEmptyParts);
    std::vector<const Page*> found;
    if (wanted.isEmpty()) return found;
    const auto is_in = [](const QString& text) {
        return [&text](const QString& word) { return text.contains(word, Qt::CaseInsensitive); };
    };
    for (const Page& page : pages_)
        if (std::all_of(wanted.begin(), wanted.end(), [&](const QString& word) {
                return is_in(page.title)(word) || is_in(page.text)(word);
            }))
            found.push_back(&page);
    std::stable_partition(found.begin(), found.end(), [&](const Page* page) {
        return std::any_of(wanted.begin(), wanted.end(), is_in(page->title));
    });
    return found;
}

}  // namespace dialogs
