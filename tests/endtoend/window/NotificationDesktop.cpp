#include "endtoend/window/NotificationDesktop.h"

#include "soundserver/Waiting.h"

namespace quorbel {

namespace {

constexpr const char *notifications = "org.freedesktop.Notifications";
constexpr const char *notificationsPath = "/org/freedesktop/Notifications";

constexpr const char *methods = R"(<node><interface name="org.freedesktop.Notifications">
<method name="Notify">
<arg type="s" direction="in"/><arg type="u" direction="in"/><arg type="s" direction="in"/>
<arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="as" direction="in"/>
<arg type="a{sv}" direction="in"/><arg type="i" direction="in"/><arg type="u" direction="out"/>
</method>
<method name="CloseNotification"><arg type="u" direction="in"/></method>
</interface></node>)";

} // namespace

NotificationDesktop::NotificationDesktop(const std::string &busAddress)
    : bus_(g_dbus_connection_new_for_address_sync(
          busAddress.c_str(),
          static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                            G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
          nullptr, nullptr, nullptr)),
      description_(g_dbus_node_info_new_for_xml(methods, nullptr)) {
    static constexpr GDBusInterfaceVTable table{answer, nullptr, nullptr, {}};
    GVariant *owner = nullptr;
    if (bus_ != nullptr &&
        g_dbus_connection_register_object(bus_, notificationsPath, description_->interfaces[0],
                                          &table, this, nullptr, nullptr) != 0)
        owner = g_dbus_connection_call_sync(bus_, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                            "org.freedesktop.DBus", "RequestName",
                                            g_variant_new("(su)", notifications, 0U), nullptr,
                                            G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
    if (owner == nullptr)
        throw soundserver::ServerError("no notifications on " + busAddress);
    g_variant_unref(owner);
}

NotificationDesktop::~NotificationDesktop() {
    g_dbus_connection_close_sync(bus_, nullptr, nullptr);
    g_object_unref(bus_);
    g_dbus_node_info_unref(description_);
}

NotificationDesktop::Notification NotificationDesktop::shown() const {
    while (g_main_context_iteration(nullptr, FALSE) != FALSE) {
    }
    return shown_;
}

void NotificationDesktop::press(const std::string &action) {
    g_dbus_connection_emit_signal(bus_, nullptr, notificationsPath, notifications, "ActionInvoked",
                                  g_variant_new("(us)", shown().id, action.c_str()), nullptr);
}

void NotificationDesktop::answer(GDBusConnection *, const char *, const char *, const char *,
                                 const char *method, GVariant *arguments,
                                 GDBusMethodInvocation *call, void *self) {
    auto &desktop = *static_cast<NotificationDesktop *>(self);
    if (method == std::string("Notify")) {
        const char *summary = nullptr;
        GVariantIter *actions = nullptr;
        g_variant_get(arguments, "(&su&s&s&sasa{sv}i)", nullptr, nullptr, nullptr, &summary,
                      nullptr, &actions, nullptr, nullptr);
        desktop.shown_ = {.id = ++desktop.count_, .summary = summary, .actions = {}};
        for (const char *text = nullptr; g_variant_iter_next(actions, "&s", &text) != FALSE;)
            desktop.shown_.actions.emplace_back(text);
        g_variant_iter_free(actions);
        g_dbus_method_invocation_return_value(call, g_variant_new("(u)", desktop.shown_.id));
    } else {
        desktop.shown_ = {};
        g_dbus_method_invocation_return_value(call, nullptr);
    }
}

} // namespace quorbel
