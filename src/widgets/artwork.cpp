#include "widgets/artwork.h"

#include "assets.h"

#include <QtCore/QFile>

namespace widgets {

std::optional<Drawing> Artwork(const QString& name) {
    assets::Load();
    QFile file(QStringLiteral(":/tavolo/") + name + QStringLiteral(".drawing"));
    if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
    return FromBytes(file.readAll());
}

}  // namespace widgets
