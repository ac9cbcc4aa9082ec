// A stand-in for the simulator: an X11 program that is started as the simulator is, `x11_simulator
// /Play -TABLE`. Its window of class "VPinball" is titled "Visual Pinball - [name*]" while the play
// lasts and "Visual Pinball - [name]" afterwards, and it ends when the window is asked to close. A
// second one for the same table finds the first one and ends at once. What happens goes to the end
// of the file $TAVOLO_SIMULATOR_LOG, one line each:
//   argv[N]=TEXT        for every argument
//   cwd=PATH            the working folder
//   shown               the window has been mapped, with the asterisk
//   already open        there is a window for this table
//   ended               the asterisk has gone
//   closed by request   the close message has come
// $TAVOLO_SIMULATOR_PLAY_MS    how long the play lasts, in milliseconds (default 500)
// $TAVOLO_SIMULATOR_END_FILE   instead: the play lasts until this file exists
// $TAVOLO_SIMULATOR_CLASS      window class (default VPinball)
// It ends by itself after $TAVOLO_SIMULATOR_LIFETIME_MS (default 60000), so that a failed test
// leaves nothing behind.
#include <xcb/xcb.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <poll.h>
#include <string>

namespace {

using Clock = std::chrono::steady_clock;

std::string Environment(const char* name, const char* fallback) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : fallback;
}

Clock::duration Milliseconds(const char* name, const char* fallback) {
    return std::chrono::milliseconds(std::atoll(Environment(name, fallback).c_str()));
}

void Log(const std::string& line) {
    std::ofstream(Environment("TAVOLO_SIMULATOR_LOG", "/dev/stderr"), std::ios::app)
        << line << std::endl;
}

// "-/tables/Foo.vpt" is about the table Foo.
std::string TableName(const std::string& argument) {
    const std::string file = argument.substr(argument.find_last_of("/\\") + 1);
    return file.size() < 4 ? file : file.substr(0, file.size() - 4);
}

class SimulatorWindow {
public:
    explicit SimulatorWindow(std::string table) : table_(std::move(table)) {
        const auto* screen = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
        xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window_, screen->root, 40, 40, 320,
                          240, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual,
                          XCB_CW_BACK_PIXEL, &screen->black_pixel);
        SetClass(Environment("TAVOLO_SIMULATOR_CLASS", "VPinball"));
        const xcb_atom_t delete_window = Atom("WM_DELETE_WINDOW");
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window_, Atom("WM_PROTOCOLS"),
                            XCB_ATOM_ATOM, 32, 1, &delete_window);
    }
    ~SimulatorWindow() { xcb_disconnect(connection_); }
    SimulatorWindow(const SimulatorWindow&) = delete;
    SimulatorWindow& operator=(const SimulatorWindow&) = delete;

    void ShowPlay() {
        SetTitle("Visual Pinball - [" + table_ + "*]");
        xcb_map_window(connection_, window_);
        xcb_flush(connection_);
    }
    void ShowEnd() {
        SetTitle("Visual Pinball - [" + table_ + "]");
        xcb_flush(connection_);
    }

    // True when no other program has this table open; from then on this one has.
    bool TakeTable() {
        const xcb_atom_t selection = Atom("_TAVOLO_SIMULATOR_" + table_);
        auto* reply = xcb_get_selection_owner_reply(
            connection_, xcb_get_selection_owner(connection_, selection), nullptr);
        const bool is_free = reply != nullptr && reply->owner == XCB_WINDOW_NONE;
        std::free(reply);
        if (is_free) xcb_set_selection_owner(connection_, window_, selection, XCB_CURRENT_TIME);
        return is_free;
    }

    bool is_connected() const { return xcb_connection_has_error(connection_) == 0; }

    // Waits a moment for the next message; true when it is the one to close.
    bool WaitForClose() {
        pollfd display{xcb_get_file_descriptor(connection_), POLLIN, 0};
        poll(&display, 1, 10);
        bool close = false;
        while (auto* event = xcb_poll_for_event(connection_)) {
            close = close || IsClose(*event);
            std::free(event);
        }
        return close;
    }

private:
    bool IsClose(const xcb_generic_event_t& event) {
        if ((event.response_type & 0x7F) != XCB_CLIENT_MESSAGE) return false;
        xcb_client_message_event_t message;
        std::memcpy(&message, &event, sizeof message);
        return message.data.data32[0] == Atom("WM_DELETE_WINDOW");
    }

    xcb_atom_t Atom(const std::string& name) {
        auto* reply = xcb_intern_atom_reply(
            connection_,
            xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data()),
            nullptr);
        const xcb_atom_t atom = reply != nullptr ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
        std::free(reply);
        return atom;
    }

    void SetText(xcb_atom_t property, xcb_atom_t type, const std::string& text) {
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window_, property, type, 8,
                            static_cast<std::uint32_t>(text.size()), text.data());
    }
    void SetTitle(const std::string& title) {
        SetText(Atom("_NET_WM_NAME"), Atom("UTF8_STRING"), title);
        SetText(XCB_ATOM_WM_NAME, XCB_ATOM_STRING, title);
    }
    void SetClass(const std::string& name) {
        SetText(XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, name + '\0' + name + '\0');
    }

    xcb_connection_t* connection_ = xcb_connect(nullptr, nullptr);
    xcb_window_t window_ = xcb_generate_id(connection_);
    std::string table_;
};

class Play {
public:
    bool has_ended() const {
        if (end_file_.empty()) return Clock::now() >= end_;
        return std::filesystem::exists(end_file_);
    }

private:
    std::string end_file_ = Environment("TAVOLO_SIMULATOR_END_FILE", "");
    Clock::time_point end_ = Clock::now() + Milliseconds("TAVOLO_SIMULATOR_PLAY_MS", "500");
};

int Run(const std::string& table) {
    SimulatorWindow window(table);
    if (!window.is_connected()) return 1;
    if (!window.TakeTable()) {
        Log("already open");
        return 0;
    }
    window.ShowPlay();
    Log("shown");
    const Play play;
    const auto end_of_life = Clock::now() + Milliseconds("TAVOLO_SIMULATOR_LIFETIME_MS", "60000");
    bool playing = true;
    while (window.is_connected() && Clock::now() < end_of_life) {
        if (playing && play.has_ended()) {
            playing = false;
            window.ShowEnd();
            Log("ended");
        }
        if (window.WaitForClose()) {
            Log("closed by request");
            return 0;
        }
    }
    return 1;
}

}  // namespace

int main(int argc, char** argv) {
    for (int i = 1; i < argc; ++i)
        Log("argv[" + std::to_string(i) + "]=" + argv[i]);
    Log("cwd=" + std::filesystem::current_path().string());
    if (argc < 3 || std::strcmp(argv[1], "/Play") != 0) return 2;
    return Run(TableName(argv[2]));
}
