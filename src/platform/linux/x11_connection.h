// X11Connection: the questions to the X server that finding and closing windows takes. Without a
// server every answer is empty; a server that goes away later ends no program. Threads: one
// connection belongs to one thread.
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
    // Connects to the display that $DISPLAY names.
    X11Connection();

    // The top-level windows of other programs, iconified ones included. Two round trips, however
    // many there are.
    std::vector<X11Window> TopLevelWindows();
    // Through the window manager, as a pager does; without one that can, by asking the window
    // itself.
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
