#pragma once

#include <gio/gio.h>
#include <string>
#include <vector>

namespace quorbel {

/// The notifications of a desktop on a session bus, for as long as this lives.
class NotificationDesktop {
  public:
    struct Notification {
        unsigned id = 0; ///< 0: none
        std::string summary;
        std::vector<std::string> actions; ///< keys and labels in turn
    };

    /// Returns when the service is there. Throws `ServerError`.
    explicit NotificationDesktop(const std::string &busAddress);
    ~NotificationDesktop();
    NotificationDesktop(const NotificationDesktop &) = delete;
    NotificationDesktop &operator=(const NotificationDesktop &) = delete;

    /// The one that is shown now. The bus is only heard in here.
    [[nodiscard]] Notification shown() const;
    /// The user presses one of its buttons.
    void press(const std::string &action);

  private:
    static void answer(GDBusConnection *bus, const char *sender, const char *path,
                       const char *interface, const char *method, GVariant *arguments,
                       GDBusMethodInvocation *call, void *self);

    Notification shown_;
    unsigned count_ = 0;
    GDBusConnection *bus_;
    GDBusNodeInfo *description_;
};

} // namespace quorbel
