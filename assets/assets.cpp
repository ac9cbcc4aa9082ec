#include "assets.h"

#include <QtCore/QResource>

// Outside every namespace: the macro declares a function of the global one.
static void LoadResources() {
    Q_INIT_RESOURCE(tavolo);
}

namespace assets {

void Load() {
    LoadResources();
}

}  // namespace assets
