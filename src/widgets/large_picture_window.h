// The window that shows a picture large: in its own size, reduced to what the screen holds, or
// enlarged when it is small; from there it can be zoomed and moved (zoom_view.h). A click into it
// or Escape closes it.
#pragma once

#include "widgets/picture_loader.h"

#include <QtCore/QSize>
#include <QtWidgets/QWidget>

namespace widgets {

// Opens the window (object name frmLargePicture), owned by `parent`; it deletes itself when it is
// closed. `own_size`: the picture's size in pixels; empty: not known.
void ShowPictureLarge(const PictureSource& source, QSize own_size, QWidget* parent);

}  // namespace widgets
