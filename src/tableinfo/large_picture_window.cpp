#include "tableinfo/large_picture_window.h"

#include "tableinfo/picture_box.h"

#include <QtCore/QFileInfo>
#include <QtGui/QScreen>
#include <QtGui/QShortcut>
#include <QtWidgets/QVBoxLayout>

namespace tableinfo {
namespace {

constexpr QSize kSmallestWindow(320, 240);
// What the frame, the title bar and a margin take of the screen.
constexpr double kShareOfScreen = 0.9;

QSize WindowSize(QSize own_size, QSize screen) {
    const QSize most = screen * kShareOfScreen;
    if (own_size.isEmpty()) return most;
    QSize fitting = own_size;
    if (own_size.width() > most.width() || own_size.height() > most.height())
        fitting = own_size.scaled(most, Qt::KeepAspectRatio);
    return fitting.expandedTo(kSmallestWindow);
}

QString Title(const PictureSource& source) {
    return source.path.isEmpty() ? QStringLiteral("Picture Preview")
                                 : QFileInfo(source.path).fileName();
}

}  // namespace

void ShowPictureLarge(const PictureSource& source, QSize own_size, QWidget* parent) {
    auto* window = new QWidget(parent, Qt::Window);
    window->setObjectName(QStringLiteral("frmLargePicture"));
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->setWindowTitle(Title(source));
    // Above a modal dialog it must take the click that closes it.
    window->setWindowModality(Qt::WindowModal);

    auto* picture = new PictureBox(window, PictureBox::Click::kIsSignalled);
    picture->SetPicture(source).Ignore();
    auto* layout = new QVBoxLayout(window);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(picture);

    QObject::connect(picture, &PictureBox::Clicked, window, &QWidget::close);
    auto* escape = new QShortcut(QKeySequence(Qt::Key_Escape), window);
    QObject::connect(escape, &QShortcut::activated, window, &QWidget::close);

    const QRect screen = parent->screen()->availableGeometry();
    const QSize size = WindowSize(own_size, screen.size());
    window->resize(size);
    window->move(screen.center() - QPoint(size.width() / 2, size.height() / 2));
    window->show();
}

}  // namespace tableinfo
