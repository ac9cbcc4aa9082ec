#include "browser/icon_list.h"

#include <QtGui/QPainter>
#include <QtGui/QPixmap>
#include <QtSvg/QSvgRenderer>

#include "assets.h"

namespace browser {
namespace {

// Pixels of an icon at the display scales 1, 1.5, 2 and 3.
constexpr int kSizes[] = {16, 24, 32, 48};

QIcon Render(const QString& file) {
    QIcon icon;
    QSvgRenderer renderer(file);
    if (!renderer.isValid()) return icon;
    for (const int size : kSizes) {
        QPixmap pixmap(size, size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        renderer.render(&painter);
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

}  // namespace

IconList::IconList() {
    assets::Load();
}

QIcon IconList::Icon(const QString& key) {
    const auto known = icons_.constFind(key);
    if (known != icons_.cend()) return *known;
    return *icons_.insert(key,
                          Render(QStringLiteral(":/tavolo/icons/") + key + QStringLiteral(".svg")));
}

}  // namespace browser
