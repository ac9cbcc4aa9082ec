// EnglishTexts: what a window shows that no translator was asked for. For windows that are shown in
// the language of PseudoTranslator, in which no plain letter is left.
#pragma once

#include <QtCore/QStringList>
#include <QtWidgets/QWidget>

namespace test_support {

// Texts with plain letters beside those of `data`: names, values, files. Looks at captions, tool
// tips, placeholders, choices, headers, items, menu entries, and at what assistive technology is
// told; not at what is in fields that can be edited.
QStringList EnglishTexts(QWidget& window, const QStringList& data);

}  // namespace test_support
