// ProgramStyle: how all windows of the program look, on every desktop alike: the icons are its own
// (svg_icon.h), and the texts of the desktop's colours can be read (program_palette.h).
#pragma once

#include <QtWidgets/QProxyStyle>

namespace widgets {

class ProgramStyle : public QProxyStyle {
    Q_OBJECT

public:
    ProgramStyle();

    // Pixels; all margins and spacings of layouts are multiples of it.
    static constexpr int kGrid = 3;

    int pixelMetric(PixelMetric metric, const QStyleOption* option,
                    const QWidget* widget) const override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returned) const override;
    QIcon standardIcon(StandardPixmap which, const QStyleOption* option,
                       const QWidget* widget) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    using QProxyStyle::polish;
    void polish(QPalette& palette) override;
    void polish(QWidget* widget) override;

    // Dark windows, also where the desktop's colours are light. For the style of the application:
    // all windows follow at once.
    void SetDark(bool is_dark);

private:
    bool is_dark_ = false;
};

}  // namespace widgets
