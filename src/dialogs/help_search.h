// HelpSearch: which of the help's pages hold given words.
#pragma once

#include <QtCore/QString>

#include <vector>

namespace dialogs {

class HelpSearch {
public:
    struct Page {
        QString file;  // name in the folder: "settings.html"
        QString title;
        QString text;  // as it is shown, without markup
    };

    // Reads the pages (*.html) of `folder`. Those that cannot be read, or have more than a
    // megabyte, are left out.
    explicit HelpSearch(const QString& folder);

    const std::vector<Page>& pages() const { return pages_; }
    // The pages that hold all `words`, separated by blanks, in any letter case; those with a word
    // in their title first, then by title. Borrowed. Without words: none.
    std::vector<const Page*> Find(const QString& words) const;

private:
    std::vector<Page> pages_;  // by title
};

}  // namespace dialogs
