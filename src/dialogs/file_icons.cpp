#include "dialogs/file_icons.h"

#include "widgets/svg_icon.h"

#include <QtCore/QFileInfo>

namespace dialogs {

QIcon FileIcons::icon(IconType type) const {
    switch (type) {
    case Computer:
    case Desktop:
    case Network:
        return widgets::SvgIcon(QStringLiteral("computer"));
    case Trashcan:
        return widgets::SvgIcon(QStringLiteral("trash"));
    case Drive:
        return widgets::SvgIcon(QStringLiteral("drive"));
    case Folder:
        return widgets::SvgIcon(QStringLiteral("closed"));
    case File:
        break;
    }
    return widgets::SvgIcon(QStringLiteral("file"));
}

QIcon FileIcons::icon(const QFileInfo& info) const {
    if (info.isRoot()) return icon(Drive);
    return icon(info.isDir() ? Folder : File);
}

}  // namespace dialogs
