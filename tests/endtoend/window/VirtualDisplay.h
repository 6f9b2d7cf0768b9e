#pragma once

#include "soundserver/ChildProcess.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct xcb_connection_t;

namespace quorbel {

/// An X display that nobody sees, and what a desktop around a program's window does to it: there is
/// no window manager, so the tests speak its part.
class VirtualDisplay {
  public:
    using Window = std::uint32_t;

    /// Takes any free display number. Throws `ServerError`.
    VirtualDisplay(int width, int height, const soundserver::Environment &environment);
    ~VirtualDisplay();
    VirtualDisplay(const VirtualDisplay &) = delete;
    VirtualDisplay &operator=(const VirtualDisplay &) = delete;

    /// For the variable DISPLAY.
    [[nodiscard]] const std::string &name() const { return name_; }

    /// The window of that title, shown or not. Throws `ServerError` if none comes.
    [[nodiscard]] Window window(const std::string &title) const;

    /// Whether a window of that title is shown now.
    [[nodiscard]] bool shows(const std::string &title) const;
    /// Whether it is shown and no other window lies above it.
    [[nodiscard]] bool isInFront(Window window) const;

    /// What is to be seen, four bytes for each pixel, row by row. Throws `ServerError`.
    [[nodiscard]] std::vector<std::uint8_t> picture() const;

    /// Another program's window over all of the display, until the display ends.
    void coverEverything();

    /// The user clicks on the cross of the title bar.
    void close(Window window);
    /// The user minimises it.
    void minimise(Window window);

  private:
    [[nodiscard]] std::uint32_t atom(const std::string &name) const;
    [[nodiscard]] std::string titleOf(Window window) const;
    [[nodiscard]] bool isShown(Window window) const;

    std::unique_ptr<soundserver::ChildProcess> server_;
    std::string name_;
    xcb_connection_t *connection_ = nullptr;
    Window root_ = 0;
    std::uint16_t width_;
    std::uint16_t height_;
};

} // namespace quorbel
