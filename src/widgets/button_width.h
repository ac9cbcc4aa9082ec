// The width of a button that changes its caption.
#pragma once

#include <QtCore/QStringList>

class QAbstractButton;

namespace widgets {

// Fixes the width of `button` so that each of `captions` fits, whatever font it has by then.
void ReserveWidth(QAbstractButton& button, const QStringList& captions);

}  // namespace widgets
