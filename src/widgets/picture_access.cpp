#include "widgets/picture_access.h"

#include <QtGui/QAccessible>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QAccessibleWidget>
#include <QtWidgets/QApplication>

namespace widgets {
namespace {

constexpr char kIsPicture[] = "isPicture";

class PictureAccess final : public QAccessibleWidget {
public:
    explicit PictureAccess(QWidget* picture) : QAccessibleWidget(picture, QAccessible::Graphic) {}

    QStringList actionNames() const override {
        QStringList names = QAccessibleWidget::actionNames();
        if (CanBePressed()) names.prepend(pressAction());
        return names;
    }
    void doAction(const QString& name) override {
        if (name != pressAction()) return QAccessibleWidget::doAction(name);
        if (!CanBePressed()) return;
        for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent key(type, Qt::Key_Return, Qt::NoModifier);
            QApplication::sendEvent(widget(), &key);
        }
    }

private:
    bool CanBePressed() const {
        return widget()->isEnabled() && widget()->focusPolicy() != Qt::NoFocus;
    }
};

QAccessibleInterface* AccessOf(const QString&, QObject* object) {
    if (object == nullptr || !object->isWidgetType() || !object->property(kIsPicture).toBool())
        return nullptr;
    return new PictureAccess(static_cast<QWidget*>(object));
}

}  // namespace

void DescribeAsPicture(QWidget& widget, const QString& name) {
    QAccessible::installFactory(AccessOf);  // which knows it when it comes again
    widget.setProperty(kIsPicture, true);
    widget.setAccessibleName(name);
}

}  // namespace widgets
