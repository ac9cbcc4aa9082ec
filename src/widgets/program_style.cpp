#include "widgets/program_style.h"

namespace widgets {

ProgramStyle::ProgramStyle() : QProxyStyle(QStringLiteral("Fusion")) {}

int ProgramStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                            QStyleHintReturn* returned) const {
    // Only the standard buttons of a row have icons: none is better than some.
    if (hint == SH_DialogButtonBox_ButtonsHaveIcons) return 0;
    return QProxyStyle::styleHint(hint, option, widget, returned);
}

}  // namespace widgets
