#include "browser/icon_list.h"

#include "widgets/svg_icon.h"

namespace browser {

QIcon IconList::Icon(const QString& key) {
    const auto known = icons_.constFind(key);
    if (known != icons_.cend()) return *known;
    return *icons_.insert(key, widgets::SvgIcon(key));
}

}  // namespace browser
