// X11Connection: lists and closes windows of other programs through the X server. Without a server,
// or after the connection is lost, lists are empty and requests do nothing.
// Threads: a connection belongs to one thread.
#pragma once

#include <QtCore/QString>

#include <xcb/xcb.h>

#include <memory>
#include <span>
#include <string>
#include <vector>

namespace platform {

struct X11Window {
    xcb_window_t id = XCB_WINDOW_NONE;
    QString instance;  // first and second text of WM_CLASS
    QString window_class;
    QString title;
};

class X11Connection {
public:
    // Connects to the display in $DISPLAY.
    X11Connection();

    // All top-level windows, iconified ones included, in two round trips to the server (four
    // without a window manager).
    std::vector<X11Window> TopLevelWindows();
    // Asks the window manager (_NET_CLOSE_WINDOW) or, if it does not support that, the window
    // itself (WM_DELETE_WINDOW) to close the window.
    void RequestClose(xcb_window_t window);

private:
    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };

    bool is_alive() const;
    xcb_atom_t Atom(std::string_view name);
    std::vector<std::uint32_t> Numbers(xcb_window_t window, xcb_atom_t property, xcb_atom_t type);
    std::vector<xcb_window_t> Candidates();
    std::vector<xcb_window_t> Children(std::span<const xcb_window_t> parents);
    void SendMessage(xcb_window_t destination, std::uint32_t event_mask, xcb_window_t window,
                     xcb_atom_t type, std::uint32_t first, std::uint32_t second);

    std::unique_ptr<xcb_connection_t, Disconnect> connection_;
    xcb_window_t root_ = XCB_WINDOW_NONE;
    xcb_atom_t net_client_list_ = XCB_ATOM_NONE;
    xcb_atom_t net_wm_name_ = XCB_ATOM_NONE;
    xcb_atom_t net_supported_ = XCB_ATOM_NONE;
    xcb_atom_t net_close_window_ = XCB_ATOM_NONE;
    xcb_atom_t wm_protocols_ = XCB_ATOM_NONE;
    xcb_atom_t wm_delete_window_ = XCB_ATOM_NONE;
};

}  // namespace platform
