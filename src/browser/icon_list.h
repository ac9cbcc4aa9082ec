// IconList: the small pictures of the tree and the filter combo, by key ("mame", "favorite").
#pragma once

#include <QtCore/QHash>
#include <QtCore/QString>
#include <QtGui/QIcon>

namespace browser {

class IconList {
public:
    IconList();

    // A null icon for an unknown key. Drawn from vector artwork, sharp at the usual scales.
    QIcon Icon(const QString& key);

private:
    QHash<QString, QIcon> icons_;
};

}  // namespace browser
