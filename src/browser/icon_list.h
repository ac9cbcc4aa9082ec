// IconList: the icons of the tree and the filter box by their keys ("mame", "favorite").
#pragma once

#include <QtCore/QHash>
#include <QtCore/QString>
#include <QtGui/QIcon>

namespace browser {

class IconList {
public:
    IconList();

    // A null icon for an unknown key. Rendered from SVG at the sizes for display scales 1 to 3.
    QIcon Icon(const QString& key);

private:
    QHash<QString, QIcon> icons_;
};

}  // namespace browser
