#include "platform/linux/x11_connection.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace platform {
namespace {

// How much is read of a text property, in units of four bytes.
constexpr std::uint32_t kMaxTextLength = 1024;
// How much is read of a list property, in units of four bytes.
constexpr std::uint32_t kMaxListLength = 65536;

struct Free {
    void operator()(void* reply) const { std::free(reply); }
};
template <typename Reply>
using ReplyPtr = std::unique_ptr<Reply, Free>;

ReplyPtr<xcb_get_property_reply_t> Take(xcb_connection_t* connection,
                                        xcb_get_property_cookie_t cookie) {
    xcb_generic_error_t* error = nullptr;  // set for a window that no longer exists
    ReplyPtr<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection, cookie, &error));
    std::free(error);
    return reply;
}

std::string_view Bytes(const xcb_get_property_reply_t* reply) {
    if (reply == nullptr || reply->format != 8) return {};
    return {static_cast<const char*>(xcb_get_property_value(reply)),
            static_cast<std::size_t>(xcb_get_property_value_length(reply))};
}

QString Utf8Text(std::string_view bytes) {
    return QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

// WM_NAME is Latin-1 if its type is STRING; any other type is taken as UTF-8.
QString NameText(const xcb_get_property_reply_t* reply) {
    const std::string_view bytes = Bytes(reply);
    if (reply != nullptr && reply->type == XCB_ATOM_STRING)
        return QString::fromLatin1(bytes.data(), static_cast<qsizetype>(bytes.size()));
    return Utf8Text(bytes);
}

struct WindowQuestions {
    xcb_get_property_cookie_t classes, net_name, name;
};

X11Window MakeWindow(xcb_window_t id, std::string_view classes, QString title) {
    const std::size_t end_of_instance = std::min(classes.find('\0'), classes.size());
    const std::string_view rest = classes.substr(std::min(end_of_instance + 1, classes.size()));
    return {id, Utf8Text(classes.substr(0, end_of_instance)),
            Utf8Text(rest.substr(0, rest.find('\0'))), std::move(title)};
}

}  // namespace

X11Connection::X11Connection() {
    int screen_number = 0;
    connection_.reset(xcb_connect(nullptr, &screen_number));
    if (!is_alive()) return;
    auto screen = xcb_setup_roots_iterator(xcb_get_setup(connection_.get()));
    for (; screen_number > 0 && screen.rem > 1; --screen_number)
        xcb_screen_next(&screen);
    root_ = screen.data->root;
    net_client_list_ = Atom("_NET_CLIENT_LIST");
    net_wm_name_ = Atom("_NET_WM_NAME");
    net_supported_ = Atom("_NET_SUPPORTED");
    net_close_window_ = Atom("_NET_CLOSE_WINDOW");
    wm_protocols_ = Atom("WM_PROTOCOLS");
    wm_delete_window_ = Atom("WM_DELETE_WINDOW");
}

bool X11Connection::is_alive() const {
    return xcb_connection_has_error(connection_.get()) == 0;
}

xcb_atom_t X11Connection::Atom(std::string_view name) {
    const auto cookie =
        xcb_intern_atom(connection_.get(), 0, static_cast<std::uint16_t>(name.size()), name.data());
    const ReplyPtr<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(connection_.get(), cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

std::vector<std::uint32_t> X11Connection::Numbers(xcb_window_t window, xcb_atom_t property,
                                                  xcb_atom_t type) {
    const auto reply = Take(connection_.get(), xcb_get_property(connection_.get(), 0, window,
                                                                property, type, 0, kMaxListLength));
    if (!reply || reply->format != 32) return {};
    std::vector<std::uint32_t> numbers(
        static_cast<std::size_t>(xcb_get_property_value_length(reply.get())) / 4);
    if (!numbers.empty())
        std::memcpy(numbers.data(), xcb_get_property_value(reply.get()), numbers.size() * 4);
    return numbers;
}

std::vector<xcb_window_t> X11Connection::Children(std::span<const xcb_window_t> parents) {
    std::vector<xcb_query_tree_cookie_t> cookies;
    cookies.reserve(parents.size());
    for (const xcb_window_t parent : parents)
        cookies.push_back(xcb_query_tree(connection_.get(), parent));
    std::vector<xcb_window_t> children;
    for (const auto cookie : cookies) {
        xcb_generic_error_t* error = nullptr;
        const ReplyPtr<xcb_query_tree_reply_t> reply(
            xcb_query_tree_reply(connection_.get(), cookie, &error));
        std::free(error);
        if (!reply) continue;
        const xcb_window_t* first = xcb_query_tree_children(reply.get());
        children.insert(children.end(), first, first + xcb_query_tree_children_length(reply.get()));
    }
    return children;
}

// The window manager's list. Without one: the children of the root window and, because old window
// managers put each window into a frame, their children.
std::vector<xcb_window_t> X11Connection::Candidates() {
    std::vector<xcb_window_t> windows = Numbers(root_, net_client_list_, XCB_ATOM_WINDOW);
    if (!windows.empty()) return windows;
    windows = Children(std::span(&root_, 1));
    const std::vector<xcb_window_t> framed = Children(windows);
    windows.insert(windows.end(), framed.begin(), framed.end());
    return windows;
}

std::vector<X11Window> X11Connection::TopLevelWindows() {
    if (!is_alive()) return {};
    const std::vector<xcb_window_t> candidates = Candidates();
    const auto ask = [&](xcb_window_t window, xcb_atom_t property) {
        return xcb_get_property(connection_.get(), 0, window, property, XCB_GET_PROPERTY_TYPE_ANY,
                                0, kMaxTextLength);
    };
    std::vector<WindowQuestions> questions;
    questions.reserve(candidates.size());
    for (const xcb_window_t window : candidates)
        questions.push_back({ask(window, XCB_ATOM_WM_CLASS), ask(window, net_wm_name_),
                             ask(window, XCB_ATOM_WM_NAME)});
    std::vector<X11Window> windows;
    for (std::size_t i = 0; i < candidates.size(); ++i) {
        const auto classes = Take(connection_.get(), questions[i].classes);
        const auto net_name = Take(connection_.get(), questions[i].net_name);
        const auto name = Take(connection_.get(), questions[i].name);
        const QString title =
            Bytes(net_name.get()).empty() ? NameText(name.get()) : Utf8Text(Bytes(net_name.get()));
        if (classes) windows.push_back(MakeWindow(candidates[i], Bytes(classes.get()), title));
    }
    return windows;
}

void X11Connection::SendMessage(xcb_window_t destination, std::uint32_t event_mask,
                                xcb_window_t window, xcb_atom_t type, std::uint32_t first,
                                std::uint32_t second) {
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = type;
    event.data.data32[0] = first;
    event.data.data32[1] = second;
    std::array<char, 32> bytes{};  // size of every event in the protocol
    static_assert(sizeof event <= sizeof bytes);
    std::memcpy(bytes.data(), &event, sizeof event);
    xcb_send_event(connection_.get(), 0, destination, event_mask, bytes.data());
    xcb_flush(connection_.get());
}

void X11Connection::RequestClose(xcb_window_t window) {
    if (!is_alive()) return;
    const auto has = [](const std::vector<std::uint32_t>& list, xcb_atom_t atom) {
        return std::find(list.begin(), list.end(), atom) != list.end();
    };
    constexpr std::uint32_t kSourceIsPager = 2;
    constexpr std::uint32_t kToManager =
        XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT;
    if (has(Numbers(root_, net_supported_, XCB_ATOM_ATOM), net_close_window_))
        SendMessage(root_, kToManager, window, net_close_window_, XCB_CURRENT_TIME, kSourceIsPager);
    else if (has(Numbers(window, wm_protocols_, XCB_ATOM_ATOM), wm_delete_window_))
        SendMessage(window, XCB_EVENT_MASK_NO_EVENT, window, wm_protocols_, wm_delete_window_,
                    XCB_CURRENT_TIME);
}

}  // namespace platform
