#include "widgets/program_style.h"

#include "widgets/program_palette.h"
#include "widgets/svg_icon.h"

#include <QtGui/QPainter>
#include <QtWidgets/QApplication>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QStyleOption>
#include <QtWidgets/QWidget>

#include <algorithm>
#include <array>

namespace widgets {
namespace {

constexpr int kFrameAlpha = 150;  // of 255
constexpr qreal kFrameRounding = 2;

struct Known {
    QStyle::StandardPixmap which;
    const char* key;
};

// The icons that Qt's own windows ask for, by their keys in the program's family.
constexpr std::array kKnown = {
    Known{QStyle::SP_MessageBoxInformation, "information"},
    Known{QStyle::SP_MessageBoxWarning, "warning"},
    Known{QStyle::SP_MessageBoxCritical, "stop"},
    Known{QStyle::SP_MessageBoxQuestion, "question"},
    Known{QStyle::SP_DialogOkButton, "apply"},
    Known{QStyle::SP_DialogYesButton, "apply"},
    Known{QStyle::SP_DialogApplyButton, "apply"},
    Known{QStyle::SP_DialogSaveButton, "save"},
    Known{QStyle::SP_DialogCancelButton, "close"},
    Known{QStyle::SP_DialogNoButton, "close"},
    Known{QStyle::SP_DialogCloseButton, "close"},
    Known{QStyle::SP_LineEditClearButton, "close"},
    Known{QStyle::SP_TitleBarCloseButton, "close"},
    Known{QStyle::SP_DirIcon, "closed"},
    Known{QStyle::SP_DirClosedIcon, "closed"},
    Known{QStyle::SP_DirLinkIcon, "closed"},
    Known{QStyle::SP_DirOpenIcon, "open"},
    Known{QStyle::SP_DirLinkOpenIcon, "open"},
    Known{QStyle::SP_DialogOpenButton, "open"},
    Known{QStyle::SP_FileIcon, "file"},
    Known{QStyle::SP_FileLinkIcon, "file"},
    Known{QStyle::SP_DirHomeIcon, "home"},
    Known{QStyle::SP_ComputerIcon, "computer"},
    Known{QStyle::SP_DesktopIcon, "computer"},
    Known{QStyle::SP_DriveHDIcon, "drive"},
    Known{QStyle::SP_DriveCDIcon, "drive"},
    Known{QStyle::SP_DriveDVDIcon, "drive"},
    Known{QStyle::SP_DriveFDIcon, "drive"},
    Known{QStyle::SP_DriveNetIcon, "drive"},
    Known{QStyle::SP_TrashIcon, "trash"},
    Known{QStyle::SP_FileDialogToParent, "up"},
    Known{QStyle::SP_ArrowUp, "up"},
    Known{QStyle::SP_FileDialogBack, "back"},
    Known{QStyle::SP_ArrowBack, "back"},
    Known{QStyle::SP_ArrowLeft, "back"},
    Known{QStyle::SP_ArrowForward, "forward"},
    Known{QStyle::SP_ArrowRight, "forward"},
    Known{QStyle::SP_FileDialogNewFolder, "new_folder"},
    Known{QStyle::SP_FileDialogListView, "list_view"},
    Known{QStyle::SP_FileDialogDetailedView, "details_view"},
    Known{QStyle::SP_FileDialogContentsView, "details_view"},
    Known{QStyle::SP_FileDialogInfoView, "details_view"},
    Known{QStyle::SP_ToolBarHorizontalExtensionButton, "more"},
    Known{QStyle::SP_ToolBarVerticalExtensionButton, "more"},
};

// The buttons that stand in rows with standard ones, or in rows of such, by the object names that
// they have when they are first measured or shown: a row in which only some buttons have icons
// looks torn.
struct Button {
    const char* name;
    const char* key;
};
constexpr std::array kButtons = {
    Button{"CmdSystem", "computer"},   Button{"Command1", "close"},
    Button{"cmdAll", "back"},          Button{"cmdCancel", "close"},
    Button{"cmdCancelRules", "close"}, Button{"cmdChange", "save"},
    Button{"cmdClose", "close"},       Button{"cmdDelete", "trash"},
    Button{"cmdExit", "close"},        Button{"cmdField", "back"},
    Button{"cmdImport", "apply"},      Button{"cmdOK", "apply"},
    Button{"cmdReadRule", "open"},     Button{"cmdRestore", "back"},
    Button{"cmdSaveRules", "save"},    Button{"cmdTable", "back"},
    Button{"cmdUpdateFace", "save"},   Button{"cmdgo", "search"},
};

void GiveIcon(QPushButton& button) {
    if (!button.icon().isNull() || button.text().isEmpty()) return;
    const auto* const found = std::ranges::find_if(kButtons, [&](const Button& known) {
        return button.objectName() == QLatin1String(known.name);
    });
    if (found != kButtons.end()) button.setIcon(SvgIcon(QLatin1String(found->key)));
}

// nullptr: the family has none for it.
const char* KeyOf(QStyle::StandardPixmap which) {
    const auto* const found = std::ranges::find(kKnown, which, &Known::which);
    return found != kKnown.end() ? found->key : nullptr;
}

// What stands beside letters is as high as they are.
int LetterHeight(const QWidget* widget) {
    constexpr double kWithoutLeading = 0.9;
    const QFontMetrics letters(widget != nullptr ? widget->font() : QApplication::font());
    return static_cast<int>(letters.height() * kWithoutLeading);
}

}  // namespace

ProgramStyle::ProgramStyle() : QProxyStyle(QStringLiteral("Fusion")) {}

int ProgramStyle::pixelMetric(PixelMetric metric, const QStyleOption* option,
                              const QWidget* widget) const {
    switch (metric) {
    case PM_LayoutLeftMargin:
    case PM_LayoutTopMargin:
    case PM_LayoutRightMargin:
    case PM_LayoutBottomMargin:
        return (widget != nullptr && widget->isWindow() ? 4 : 3) * kGrid;
    case PM_LayoutHorizontalSpacing:
    case PM_LayoutVerticalSpacing:
        return 2 * kGrid;
    case PM_TabBarTabHSpace:
        return 4 * kGrid;  // so that the five tabs of the details are seen at the first size
    case PM_SmallIconSize:
    case PM_ListViewIconSize:
    case PM_ButtonIconSize:
    case PM_TabBarIconSize:
    case PM_IndicatorWidth:
    case PM_IndicatorHeight:
    case PM_ExclusiveIndicatorWidth:
    case PM_ExclusiveIndicatorHeight:
        return std::max(QProxyStyle::pixelMetric(metric, option, widget), LetterHeight(widget));
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int ProgramStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                            QStyleHintReturn* returned) const {
    if (hint == SH_DialogButtonBox_ButtonsHaveIcons) return 1;
    return QProxyStyle::styleHint(hint, option, widget, returned);
}

QIcon ProgramStyle::standardIcon(StandardPixmap which, const QStyleOption* option,
                                 const QWidget* widget) const {
    const char* const key = KeyOf(which);
    return key != nullptr ? SvgIcon(QLatin1String(key))
                          : QProxyStyle::standardIcon(which, option, widget);
}

// The frame of an empty box is hardly to be seen, above all on a dark ground: another one is drawn
// over it, for which the guidelines ask 3:1 (success criterion 1.4.11).
void ProgramStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                                 QPainter* painter, const QWidget* widget) const {
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    const bool is_round = element == PE_IndicatorRadioButton;
    if (element != PE_IndicatorCheckBox && !is_round) return;
    QColor frame = option->palette.color(QPalette::WindowText);
    frame.setAlpha(kFrameAlpha);
    const QRectF place = QRectF(option->rect).adjusted(0.5, 0.5, -0.5, -0.5);
    const qreal rounding = is_round ? place.width() / 2 : kFrameRounding;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(frame);
    painter->setBrush(Qt::NoBrush);
    painter->drawRoundedRect(place, rounding, rounding);
    painter->restore();
}

void ProgramStyle::polish(QWidget* widget) {
    QProxyStyle::polish(widget);
    if (auto* const button = qobject_cast<QPushButton*>(widget)) GiveIcon(*button);
}

void ProgramStyle::polish(QPalette& palette) {
    QProxyStyle::polish(palette);
    if (is_dark_ && !IsDark(palette)) palette = DarkPalette();
    MakeReadable(palette);
}

void ProgramStyle::SetDark(bool is_dark) {
    is_dark_ = is_dark;
    QApplication::setPalette(QPalette());  // takes the desktop's once more, and polishes them
}

}  // namespace widgets
