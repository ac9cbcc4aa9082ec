// ProgramStyle: how all windows of the program look, on every desktop alike.
#pragma once

#include <QtWidgets/QProxyStyle>

namespace widgets {

class ProgramStyle : public QProxyStyle {
    Q_OBJECT

public:
    ProgramStyle();

    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returned) const override;
};

}  // namespace widgets
