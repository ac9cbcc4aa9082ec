// The artwork that is compiled in (assets/*.svg), as drawings.
#pragma once

#include "widgets/drawing.h"

#include <QtCore/QString>

#include <optional>

namespace widgets {

// That of assets/`name`.svg; no value if there is none.
std::optional<Drawing> Artwork(const QString& name);

}  // namespace widgets
