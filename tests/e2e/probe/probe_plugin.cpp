// A Qt plugin of the tests that is loaded into the real, unchanged program
// (QT_QPA_GENERIC_PLUGINS=tavolo_probe), or linked to it, and answers, on the local socket named by
// TAVOLO_PROBE_SOCKET ("port:FILE": on a port of this machine, whose number it writes into FILE,
// for programs of another system than the test's), where its widgets are and what they show, so
// that a test can click them with a real pointer. It changes nothing in the program. One JSON
// object per line in, one per line out:
//   {"op":"widgets","name":N}           every widget named N
//   {"op":"windows"}                    visible top-level windows
//   {"op":"item","name":N,"text":T}     the item with text T of the item view (or open combo box
//   list) named N
//   {"op":"items","name":N}             texts of the rows that the item view named N shows
//   {"op":"actions","menu":M}           the actions of the menu named M
//   {"op":"menubar","name":M}           where the menu bar shows that menu's title
//   {"op":"tab","name":N,"index":I}     a tab of the tab widget named N
//   {"op":"painted","name":N}           how often widgets named N were painted since the start
//   {"op":"mark","name":N}              forgets the input so far; text cursors blink no more
//   {"op":"answer"}                     {"input","first","painted","now"}: when the first key,
//   button or wheel event since the mark was made, when the first painting since then had ended in
//   which a widget named N was painted, and when the last of all, in milliseconds of the monotonic
//   clock, which is the X server's here; -1: not yet
//   {"op":"watch"}                      from now on a timer ticks every two milliseconds
//   {"op":"stall"}                      the longest time between two ticks, and the most that the
//   thread has worked between two, in milliseconds; the timer ends
#include "window_number.h"

#include <QtCore/QAbstractNativeEventFilter>
#include <QtCore/QCoreApplication>
#include <QtCore/QHash>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QPointer>
#include <QtCore/QSaveFile>
#include <QtCore/QVariant>
#include <QtGui/QAction>
#include <QtGui/QStyleHints>
#include <QtGui/qgenericplugin.h>
#include <QtNetwork/QLocalServer>
#include <QtNetwork/QLocalSocket>
#include <QtNetwork/QTcpServer>
#include <QtNetwork/QTcpSocket>
#include <QtWidgets/QAbstractItemView>
#include <QtWidgets/QApplication>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QProgressBar>
#include <QtWidgets/QStatusBar>
#include <QtWidgets/QTabBar>
#include <QtWidgets/QTreeView>

#include <algorithm>
#include <cstring>
#include <ctime>

namespace {

QJsonObject RectOf(const QPoint& top_left, const QSize& size) {
    return {{QStringLiteral("x"), top_left.x()},
            {QStringLiteral("y"), top_left.y()},
            {QStringLiteral("w"), size.width()},
            {QStringLiteral("h"), size.height()}};
}

QString TextOf(const QWidget& widget) {
    if (const auto* box = qobject_cast<const QMessageBox*>(&widget)) return box->text();
    if (const auto* bar = qobject_cast<const QStatusBar*>(&widget)) return bar->currentMessage();
    if (const auto* combo = qobject_cast<const QComboBox*>(&widget)) return combo->currentText();
    for (const char* property : {"text", "plainText", "title", "windowTitle"}) {
        const QVariant value = widget.property(property);
        if (value.isValid() && !value.toString().isEmpty()) return value.toString();
    }
    return {};
}

QJsonObject Describe(const QWidget& widget) {
    QJsonObject object = RectOf(widget.mapToGlobal(QPoint(0, 0)), widget.size());
    object[QStringLiteral("name")] = widget.objectName();
    object[QStringLiteral("class")] = QString::fromLatin1(widget.metaObject()->className());
    object[QStringLiteral("text")] = TextOf(widget);
    object[QStringLiteral("title")] = widget.windowTitle();
    object[QStringLiteral("visible")] = widget.isVisible();
    object[QStringLiteral("enabled")] = widget.isEnabled();
    object[QStringLiteral("focus")] = widget.hasFocus();
    // Whether keys go to its window, as the program sees it.
    object[QStringLiteral("active")] = widget.isActiveWindow();
    object[QStringLiteral("checked")] = widget.property("checked").toBool();
    // Of its window, as X11 numbers it; 0 while it has none.
    object[QStringLiteral("id")] = probe::WindowNumber(widget.window()->effectiveWinId());
    object[QStringLiteral("modal")] = QApplication::activeModalWidget() == widget.window();
    return object;
}

QAbstractItemView* ViewNamed(const QString& name) {
    const auto widgets = QApplication::allWidgets();
    for (QWidget* widget : widgets) {
        if (widget->objectName() != name) continue;
        if (auto* view = qobject_cast<QAbstractItemView*>(widget)) return view;
        if (auto* combo = qobject_cast<QComboBox*>(widget)) return combo->view();
    }
    return nullptr;
}

template <typename Visit>
bool WalkItems(const QAbstractItemView& view, const QModelIndex& parent, const Visit& visit) {
    const auto* tree = qobject_cast<const QTreeView*>(&view);
    for (int row = 0; row < view.model()->rowCount(parent); ++row) {
        const QModelIndex index = view.model()->index(row, 0, parent);
        if (visit(index)) return true;
        if (tree && tree->isExpanded(index) && WalkItems(view, index, visit)) return true;
    }
    return false;
}

QJsonObject FindItem(QAbstractItemView& view, const QString& text) {
    QJsonObject found;
    WalkItems(view, view.rootIndex(), [&](const QModelIndex& index) {
        if (index.data().toString() != text) return false;
        view.scrollTo(index);
        const QRect rect = view.visualRect(index);
        found = RectOf(view.viewport()->mapToGlobal(rect.topLeft()), rect.size());
        found[QStringLiteral("text")] = text;
        found[QStringLiteral("selected")] = view.currentIndex() == index;
        return true;
    });
    return found;
}

QJsonArray ItemTexts(const QAbstractItemView& view) {
    constexpr int kMaxTexts = 2000;
    QJsonArray texts;
    WalkItems(view, view.rootIndex(), [&](const QModelIndex& index) {
        texts.append(index.data().toString());
        return texts.size() >= kMaxTexts;
    });
    return texts;
}

QJsonArray ActionsOf(const QString& menu_name) {
    QJsonArray actions;
    const auto widgets = QApplication::allWidgets();
    for (QWidget* widget : widgets) {
        auto* menu = qobject_cast<QMenu*>(widget);
        if (!menu || menu->objectName() != menu_name) continue;
        const auto members = menu->actions();
        for (QAction* action : members) {
            const QRect rect = menu->actionGeometry(action);
            QJsonObject object = RectOf(menu->mapToGlobal(rect.topLeft()), rect.size());
            object[QStringLiteral("name")] = action->objectName();
            object[QStringLiteral("text")] = action->text();
            object[QStringLiteral("enabled")] = action->isEnabled();
            object[QStringLiteral("checked")] = action->isChecked();
            object[QStringLiteral("separator")] = action->isSeparator();
            object[QStringLiteral("visible")] = menu->isVisible();
            actions.append(object);
        }
    }
    return actions;
}

// Where the menu bar shows the title of the menu `name`.
QJsonValue MenuTitle(const QString& name) {
    const auto widgets = QApplication::allWidgets();
    for (QWidget* widget : widgets) {
        auto* bar = qobject_cast<QMenuBar*>(widget);
        if (!bar) continue;
        const auto titles = bar->actions();
        for (QAction* title : titles) {
            if (!title->menu() || title->menu()->objectName() != name) continue;
            const QRect rect = bar->actionGeometry(title);
            QJsonObject object = RectOf(bar->mapToGlobal(rect.topLeft()), rect.size());
            object[QStringLiteral("enabled")] = title->isEnabled();
            return object;
        }
    }
    return QJsonValue::Null;
}

QJsonArray WidgetsNamed(const QString& name) {
    QJsonArray found;
    const auto widgets = QApplication::allWidgets();
    for (const QWidget* widget : widgets)
        if (widget->objectName() == name) found.append(Describe(*widget));
    return found;
}

QJsonArray Windows() {
    QJsonArray found;
    const auto widgets = QApplication::topLevelWidgets();
    for (const QWidget* widget : widgets)
        if (widget->isVisible()) found.append(Describe(*widget));
    return found;
}

// How often visible widgets of each name were painted.
class PaintCounter final : public QObject {
public:
    int Count(const QString& name) const { return counts_.value(name); }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Paint && !watched->objectName().isEmpty())
            ++counts_[watched->objectName()];
        return false;
    }

private:
    QHash<QString, int> counts_;
};

PaintCounter* g_painted = nullptr;  // lives as long as the application

double ClockMs(clockid_t clock) {
    timespec now{};
    clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

double MonotonicMs() {
    return ClockMs(CLOCK_MONOTONIC);
}

// When the user did something, and when the answer was on the screen.
class AnswerClock final : public QObject, public QAbstractNativeEventFilter {
public:
    void Mark(const QString& name) {
        input_ms_ = first_ms_ = painted_ms_ = -1;
        name_ = name;
        is_in_painting_ = false;
    }
    QJsonObject Answer() const {
        return {{QStringLiteral("input"), input_ms_},
                {QStringLiteral("first"), first_ms_},
                {QStringLiteral("painted"), painted_ms_},
                {QStringLiteral("now"), MonotonicMs()}};
    }

    // Keys as the X server sends them: where assistive technology is told of them, Qt holds them
    // back and hands on copies without their time. Layout: the core protocol's KeyPress, number 2,
    // has its time, in milliseconds, at byte 4.
    bool nativeEventFilter(const QByteArray& type, void* message, qintptr*) override {
        constexpr int kKeyPress = 2;
        const auto* const bytes = static_cast<const uchar*>(message);
        if (type != "xcb_generic_event_t" || input_ms_ >= 0 || (bytes[0] & 0x7F) != kKeyPress)
            return false;
        quint32 time_ms = 0;
        std::memcpy(&time_ms, bytes + 4, sizeof time_ms);
        input_ms_ = time_ms;
        return false;
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched->isWindowType() && event->spontaneous() && input_ms_ < 0) NoteInput(*event);
        if (event->type() == QEvent::Paint && HasTheName(*watched)) is_in_painting_ = true;
        if (event->type() == QEvent::Paint && watched->isWidgetType() && !is_posted_) {
            // Comes after the painting in progress, which ends with the pixels handed over.
            is_posted_ = true;
            QCoreApplication::postEvent(this, new QEvent(QEvent::User), Qt::LowEventPriority);
        }
        return false;
    }

protected:
    bool event(QEvent* event) override {
        if (event->type() != QEvent::User) return QObject::event(event);
        is_posted_ = false;
        if (input_ms_ >= 0) painted_ms_ = MonotonicMs();
        if (is_in_painting_ && first_ms_ < 0) first_ms_ = painted_ms_;
        return true;
    }

private:
    void NoteInput(const QEvent& event) {
        switch (event.type()) {
        case QEvent::MouseButtonPress:
        case QEvent::KeyPress:
        case QEvent::Wheel:
            input_ms_ = static_cast<double>(static_cast<const QInputEvent&>(event).timestamp());
            break;
        default:
            break;
        }
    }

    // The widget itself, or what it scrolls.
    bool HasTheName(const QObject& painted) const {
        if (name_.isEmpty()) return false;
        return painted.objectName() == name_ ||
               (painted.parent() != nullptr && painted.parent()->objectName() == name_);
    }

    QString name_;
    bool is_in_painting_ = false;
    double input_ms_ = -1;
    double first_ms_ = -1;
    double painted_ms_ = -1;
    bool is_posted_ = false;
};

AnswerClock* g_answer = nullptr;  // lives as long as the application

// How long the program handled no events, which is how long a frame can be late.
class Ticker final : public QObject {
public:
    void Start() {
        longest_ms_ = most_work_ms_ = 0;
        Note();
        timer_ = startTimer(kTickMs, Qt::PreciseTimer);
    }
    QJsonObject Stop() {
        killTimer(timer_);
        return {{QStringLiteral("time"), longest_ms_}, {QStringLiteral("work"), most_work_ms_}};
    }

protected:
    void timerEvent(QTimerEvent*) override {
        const double last_ms = last_ms_;
        const double worked_ms = worked_ms_;
        Note();
        longest_ms_ = std::max(longest_ms_, last_ms_ - last_ms);
        most_work_ms_ = std::max(most_work_ms_, worked_ms_ - worked_ms);
    }

private:
    static constexpr int kTickMs = 2;

    void Note() {
        last_ms_ = MonotonicMs();
        worked_ms_ = ClockMs(CLOCK_THREAD_CPUTIME_ID);
    }

    int timer_ = 0;
    double last_ms_ = 0;
    double worked_ms_ = 0;
    double longest_ms_ = 0;
    double most_work_ms_ = 0;
};

Ticker* g_ticker = nullptr;  // lives as long as the application

QJsonObject Answer(const QJsonObject& question) {
    const QString op = question[QStringLiteral("op")].toString();
    const QString name = question[QStringLiteral("name")].toString();
    const auto reply = [](const QJsonValue& value) {
        return QJsonObject{{QStringLiteral("result"), value}};
    };
    if (op == QLatin1String("widgets")) return reply(WidgetsNamed(name));
    if (op == QLatin1String("windows")) return reply(Windows());
    if (op == QLatin1String("painted")) return reply(g_painted->Count(name));
    if (op == QLatin1String("answer")) return reply(g_answer->Answer());
    if (op == QLatin1String("stall")) return reply(g_ticker->Stop());
    if (op == QLatin1String("watch")) {
        g_ticker->Start();
        return reply(QJsonValue::Null);
    }
    if (op == QLatin1String("mark")) {
        QGuiApplication::styleHints()->setCursorFlashTime(0);
        g_answer->Mark(name);
        return reply(QJsonValue::Null);
    }
    if (op == QLatin1String("actions"))
        return reply(ActionsOf(question[QStringLiteral("menu")].toString()));
    if (op == QLatin1String("menubar")) return reply(MenuTitle(name));
    if (op == QLatin1String("tab")) {
        const auto widgets = QApplication::allWidgets();
        for (QWidget* widget : widgets) {
            auto* bar = qobject_cast<QTabBar*>(widget);
            if (!bar || bar->parentWidget() == nullptr || bar->parentWidget()->objectName() != name)
                continue;
            const int tab = question[QStringLiteral("index")].toInt();
            const QRect rect = bar->tabRect(tab);
            QJsonObject object = RectOf(bar->mapToGlobal(rect.topLeft()), rect.size());
            object[QStringLiteral("enabled")] = bar->isTabEnabled(tab);
            object[QStringLiteral("current")] = bar->currentIndex() == tab;
            object[QStringLiteral("text")] = bar->tabText(tab);
            return reply(object);
        }
    }
    QAbstractItemView* view = ViewNamed(name);
    if (!view) return reply(QJsonValue::Null);
    if (op == QLatin1String("items")) return reply(ItemTexts(*view));
    if (op == QLatin1String("item")) {
        const QJsonObject item = FindItem(*view, question[QStringLiteral("text")].toString());
        return reply(item.isEmpty() ? QJsonValue(QJsonValue::Null) : QJsonValue(item));
    }
    return {{QStringLiteral("error"), QStringLiteral("unknown op")}};
}

class Probe final : public QObject {
public:
    explicit Probe(const QString& socket_name) {
        g_painted = new PaintCounter;
        g_painted->setParent(qApp);
        qApp->installEventFilter(g_painted);
        g_answer = new AnswerClock;
        g_answer->setParent(qApp);
        qApp->installEventFilter(g_answer);
        qApp->installNativeEventFilter(g_answer);
        g_ticker = new Ticker;
        g_ticker->setParent(qApp);
        const QLatin1String port("port:");
        if (socket_name.startsWith(port))
            ListenAtPort(socket_name.mid(port.size()));
        else
            ListenAtSocket(socket_name);
    }

private:
    void ListenAtSocket(const QString& name) {
        QLocalServer::removeServer(name);
        connect(&server_, &QLocalServer::newConnection, this,
                [this] { ServeNext<QLocalSocket>(server_); });
        server_.listen(name);
    }
    void ListenAtPort(const QString& file_of_number) {
        connect(&port_server_, &QTcpServer::newConnection, this,
                [this] { ServeNext<QTcpSocket>(port_server_); });
        port_server_.listen(QHostAddress::LocalHost);
        QSaveFile file(file_of_number);
        if (!file.open(QIODevice::WriteOnly)) return;
        file.write(QByteArray::number(port_server_.serverPort()));
        file.commit();
    }

    template <typename Socket>
    static void ServeNext(auto& server) {
        Socket* socket = server.nextPendingConnection();
        connect(socket, &Socket::readyRead, socket, [socket] { Serve(*socket); });
        connect(socket, &Socket::disconnected, socket, &QObject::deleteLater);
    }
    template <typename Socket>
    static void Serve(Socket& socket) {
        while (socket.canReadLine()) {
            const QJsonObject question = QJsonDocument::fromJson(socket.readLine()).object();
            socket.write(QJsonDocument(Answer(question)).toJson(QJsonDocument::Compact) + '\n');
            socket.flush();
        }
    }

    QLocalServer server_;
    QTcpServer port_server_;
};

}  // namespace

class ProbePlugin final : public QGenericPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "probe.json")

public:
    QObject* create(const QString& key, const QString&) override {
        const QString socket_name = qEnvironmentVariable("TAVOLO_PROBE_SOCKET");
        if (key != QLatin1String("tavolo_probe") || socket_name.isEmpty()) return nullptr;
        return new Probe(socket_name);
    }
};

#include "probe_plugin.moc"
