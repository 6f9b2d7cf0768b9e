pragma ComponentBehavior: Bound

import QtQuick
import QtTest
import Quorbel.Dotmatrix
import Quorbel.Probe

// What opens over the window, and what holds other things.
ControlCase {
    id: root

    name: "sheets"

    Component {
        id: dialogs

        DotDialog {
            title: "Save Preset"
            acceptText: "Save"
            acceptEnabled: field.text.trim() !== ""

            DotTextField {
                id: field

                objectName: "field"
                focus: true
                accessibleName: "Name"
            }
        }
    }
    SignalSpy {
        id: accepted

        signalName: "accepted"
    }
    SignalSpy {
        id: rejected

        signalName: "rejected"
    }

    function open(): DotDialog {
        const dialog = createTemporaryObject(dialogs, root) as DotDialog;
        accepted.target = dialog;
        rejected.target = dialog;
        accepted.clear();
        rejected.clear();
        dialog.open();
        tryVerify(() => dialog.opened);
        return dialog;
    }

    function test_dialog_is_accepted_by_its_button() {
        const dialog = open();
        const save = findChild(dialog.footer, "dialogAccept");
        compare(Probe.name(save), "Save");
        mouseClick(save);
        verify(dialog.opened);
        verify(findChild(dialog.contentItem, "field").activeFocus);
        keyClick("x");
        mouseClick(save);
        tryVerify(() => !dialog.visible);
        compare(accepted.count, 1);
        compare(rejected.count, 0);
    }

    function test_dialog_is_left_by_escape_and_cancel() {
        let dialog = open();
        keyClick(Qt.Key_Escape);
        tryVerify(() => !dialog.visible);
        compare(rejected.count, 1);
        dialog = open();
        mouseClick(findChild(dialog.footer, "dialogReject"));
        tryVerify(() => !dialog.visible);
        compare(rejected.count, 1);
        compare(accepted.count, 0);
    }

    Component {
        id: menus

        DotMenu {
            id: menu

            property int chosen: 0

            DotMenuItem {
                text: "Import…"
                symbol: "square.and.arrow.down"
                onTriggered: menu.chosen = 1
            }
            DotMenuItem {
                text: "Export…"
                onTriggered: menu.chosen = 2
            }
        }
    }

    function test_menu() {
        const menu = createTemporaryObject(menus, root) as DotMenu;
        menu.open();
        tryVerify(() => menu.opened);
        compare(Probe.role(menu.itemAt(0)), Accessible.MenuItem);
        compare(Probe.name(menu.itemAt(0)), "Import…");
        keyClick(Qt.Key_Down);
        keyClick(Qt.Key_Down);
        keyClick(Qt.Key_Return);
        tryVerify(() => !menu.visible);
        compare(menu.chosen, 2);

        menu.open();
        tryVerify(() => menu.opened);
        Probe.act(menu.itemAt(0), "Press");
        tryVerify(() => !menu.visible);
        compare(menu.chosen, 1);
    }

    Component {
        id: cards

        DotCard {
            title: "Response"

            Rectangle {
                implicitWidth: 100
                implicitHeight: 50
            }
        }
    }

    function test_card_keeps_room_for_its_heading() {
        const card = createTemporaryObject(cards, root) as DotCard;
        compare(Probe.role(card), Accessible.Pane);
        compare(Probe.name(card), "Response");
        compare(card.width, 100 + 4 * Theme.unit);
        const titled = card.height;
        card.title = "";
        compare(titled - card.height, 3 * Theme.unit);
        compare(card.height, 50 + 4 * Theme.unit);
    }

    Component {
        id: views

        DotScrollView {
            width: 200
            height: 100
            contentWidth: availableWidth

            Text {
                width: parent.width
                wrapMode: Text.Wrap
                text: "long ".repeat(200)
            }
        }
    }

    function test_scroll_view_scrolls() {
        const view = createTemporaryObject(views, root) as DotScrollView;
        verify(view.contentHeight > 300);
        compare(view.contentWidth, 200);
        mouseWheel(view, 100, 50, 0, -120);
        tryVerify(() => view.contentItem.contentY > 0);
    }

    function test_motion_is_reduced_on_request() {
        verify(Theme.duration > 0);
        Probe.setReducedMotion(true);
        compare(Theme.duration, 0);
        Probe.setReducedMotion(false);
        verify(Theme.duration > 0);
    }
}
