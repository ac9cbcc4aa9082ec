// IconList: the icons of the tree and the filter box by their keys ("mame", "favorite").
#pragma once

#include <QtCore/QHash>
#include <QtCore/QString>
#include <QtGui/QIcon>

namespace browser {

class IconList {
public:
    // A null icon for an unknown key.
    QIcon Icon(const QString& key);

private:
    QHash<QString, QIcon> icons_;
};

}  // namespace browser
