#include "endtoend/window/VirtualDisplay.h"

#include "soundserver/Waiting.h"

#include <fmt/format.h>
#include <span>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <vector>
#include <xcb/xcb.h>

namespace quorbel {

using namespace soundserver;

namespace {

struct Free {
    void operator()(void *memory) const { std::free(memory); }
};
template <typename Reply> using Owned = std::unique_ptr<Reply, Free>;

/// All windows directly on the root, the lowest first.
std::vector<VirtualDisplay::Window> topLevelWindows(xcb_connection_t *connection,
                                                    VirtualDisplay::Window root) {
    const Owned<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(connection, xcb_query_tree(connection, root), nullptr));
    if (!tree)
        return {};
    const auto *windows = xcb_query_tree_children(tree.get());
    return {windows, windows + xcb_query_tree_children_length(tree.get())};
}

} // namespace

VirtualDisplay::VirtualDisplay(int width, int height, const Environment &environment)
    : width_(static_cast<std::uint16_t>(width)), height_(static_cast<std::uint16_t>(height)) {
    server_ = std::make_unique<ChildProcess>(
        std::vector<std::string>{"Xvfb", "-displayfd", "1", "-screen", "0",
                                 fmt::format("{}x{}x24", width, height), "-noreset", "-nolisten",
                                 "tcp"},
        environment);
    waitFor("the virtual display", 10.0, [&] {
        if (!server_->running())
            throw ServerError("Xvfb ended: " + server_->errors());
        return server_->output().ends_with('\n');
    });
    name_ = ":" + server_->output();
    name_.pop_back();
    connection_ = xcb_connect(name_.c_str(), nullptr);
    if (xcb_connection_has_error(connection_) != 0) {
        xcb_disconnect(connection_);
        throw ServerError("no connection to the display " + name_);
    }
    root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
}

VirtualDisplay::~VirtualDisplay() {
    xcb_disconnect(connection_);
    server_->stop();
}

std::uint32_t VirtualDisplay::atom(const std::string &name) const {
    const auto cookie =
        xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection_, cookie, nullptr));
    if (!reply)
        throw ServerError("the display does not answer");
    return reply->atom;
}

std::string VirtualDisplay::titleOf(Window window) const {
    const auto cookie = xcb_get_property(connection_, 0, window, atom("_NET_WM_NAME"),
                                         XCB_GET_PROPERTY_TYPE_ANY, 0, 256);
    const Owned<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(connection_, cookie, nullptr));
    if (!reply)
        return {};
    return {static_cast<const char *>(xcb_get_property_value(reply.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

bool VirtualDisplay::isShown(Window window) const {
    const Owned<xcb_get_window_attributes_reply_t> reply(xcb_get_window_attributes_reply(
        connection_, xcb_get_window_attributes(connection_, window), nullptr));
    return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
}

VirtualDisplay::Window VirtualDisplay::window(const std::string &title) const {
    Window found = 0;
    waitFor("a window " + title, 10.0, [&] {
        for (const Window window : topLevelWindows(connection_, root_))
            if (titleOf(window) == title)
                found = window;
        return found != 0;
    });
    return found;
}

bool VirtualDisplay::shows(const std::string &title) const {
    return std::ranges::any_of(topLevelWindows(connection_, root_), [&](Window window) {
        return isShown(window) && titleOf(window) == title;
    });
}

bool VirtualDisplay::isInFront(Window window) const {
    Window highest = 0;
    for (const Window other : topLevelWindows(connection_, root_))
        if (isShown(other))
            highest = other;
    return highest == window;
}

std::vector<std::uint8_t> VirtualDisplay::picture() const {
    const auto cookie = xcb_get_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, root_, 0, 0, width_,
                                      height_, ~std::uint32_t{0});
    const Owned<xcb_get_image_reply_t> reply(xcb_get_image_reply(connection_, cookie, nullptr));
    if (!reply)
        throw ServerError("the display shows nothing");
    const std::uint8_t *pixels = xcb_get_image_data(reply.get());
    return {pixels, pixels + xcb_get_image_data_length(reply.get())};
}

void VirtualDisplay::coverEverything() {
    const Window cover = xcb_generate_id(connection_);
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, cover, root_, 0, 0, width_, height_, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_map_window(connection_, cover);
    xcb_flush(connection_);
}

void VirtualDisplay::close(Window window) {
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = atom("WM_PROTOCOLS");
    event.data.data32[0] = atom("WM_DELETE_WINDOW");
    event.data.data32[1] = XCB_CURRENT_TIME;
    xcb_send_event(connection_, 0, window, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char *>(&event));
    xcb_flush(connection_);
}

void VirtualDisplay::minimise(Window window) {
    // What a window manager does by the ICCCM, 4.1.3.1 and 4.1.4.
    constexpr std::array<std::uint32_t, 2> iconic = {3, XCB_NONE};
    const std::uint32_t property = atom("WM_STATE");
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, property, property, 32,
                        iconic.size(), iconic.data());
    xcb_unmap_window(connection_, window);
    xcb_flush(connection_);
}

} // namespace quorbel
