#include "widgets/large_picture_window.h"

#include "widgets/texts.h"
#include "widgets/zoom_view.h"

#include <QtCore/QFileInfo>
#include <QtGui/QScreen>
#include <QtGui/QShortcut>
#include <QtWidgets/QVBoxLayout>

namespace widgets {
namespace {

// The share of the screen that the picture may take; the rest is for frame, title bar and margin.
constexpr double kMaxShareOfScreen = 0.9;
// A small picture is enlarged to this share.
constexpr double kMinShareOfScreen = 0.6;

// The picture's own size unless it is too large or too small.
QSize WindowSize(QSize own_size, QSize screen) {
    const QSize most = screen * kMaxShareOfScreen;
    const QSize least = screen * kMinShareOfScreen;
    if (own_size.isEmpty()) return most;
    if (own_size.width() > most.width() || own_size.height() > most.height())
        return own_size.scaled(most, Qt::KeepAspectRatio);
    if (own_size.width() < least.width() && own_size.height() < least.height())
        return own_size.scaled(least, Qt::KeepAspectRatio);
    return own_size;
}

QString Title(const PictureSource& source) {
    return source.path.isEmpty() ? WidgetsTexts::tr("Picture Preview")
                                 : QFileInfo(source.path).fileName();
}

// The scale in percent, unless the picture fits the window.
QString Title(const PictureSource& source, const ZoomView& picture) {
    if (picture.fits()) return Title(source);
    const double percent = picture.Scale() * picture.devicePixelRatioF() * 100;
    return Title(source) + QStringLiteral(" - ") + QString::number(qRound(percent)) +
           QStringLiteral(" %");
}

}  // namespace

void ShowPictureLarge(const PictureSource& source, QSize own_size, QWidget* parent) {
    auto* window = new QWidget(parent, Qt::Window);
    window->setObjectName(QStringLiteral("frmLargePicture"));
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->setWindowTitle(Title(source));
    // Modal, so that the window receives clicks also above a modal dialog.
    window->setWindowModality(Qt::WindowModal);

    auto* picture = new ZoomView(source, own_size, window);
    QObject::connect(picture, &ZoomView::ScaleChanged, window, [window, picture, source] {
        window->setWindowTitle(Title(source, *picture));
    });
    auto* layout = new QVBoxLayout(window);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(picture);

    QObject::connect(picture, &ZoomView::Clicked, window, &QWidget::close);
    auto* escape = new QShortcut(QKeySequence(Qt::Key_Escape), window);
    QObject::connect(escape, &QShortcut::activated, window, &QWidget::close);

    const QRect screen = parent->screen()->availableGeometry();
    const QSize size = WindowSize(own_size, screen.size());
    window->resize(size);
    window->move(screen.center() - QPoint(size.width() / 2, size.height() / 2));
    picture->setFocus();
    window->show();
}

}  // namespace widgets
