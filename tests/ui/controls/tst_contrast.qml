pragma ComponentBehavior: Bound

import QtQuick
import Quorbel.Dotmatrix
import Quorbel.Testing

// Every text of every control has a contrast of at least 4.5:1 in every state, with and without high contrast.
ControlCase {
    id: root

    name: "contrast"

    Rectangle {
        anchors.fill: parent
        color: Theme.card
    }

    property Component outlined: DotButton { text: "Copy" }
    property Component flat: DotButton { text: "Copy"; flat: true }
    property Component primary: DotButton { text: "Copy"; primary: true }
    property Component checked: DotButton { text: "Copy"; checkable: true; checked: true }
    property Component choices: DotComboBox { width: 240; title: "Output"; model: ["One", "Two"] }
    property Component menuItem: DotMenuItem { text: "Copy" }
    property Component toggle: DotToggle { text: "Copy" }
    property Component field: DotTextField { placeholder: "Name" }
    property Component chip: DotChip { text: "10 bands" }
    property Component litChip: DotChip { text: "10 bands"; lit: true }

    function texts(item: Item): list<Item> {
        if (!item.visible)
            return [];
        const own = item instanceof Text && item.text !== "" ? [item] : [];
        return Array.from(item.children).reduce((found, child) => found.concat(texts(child)), own);
    }

    function verifyReadable(control: Item, state: string): void {
        const picture = grabImage(root);
        const found = texts(control);
        verify(found.length > 0, "no text");
        for (const text of found) {
            const beside = text.mapToItem(root, text.leftPadding - 2, text.height / 2);
            const ground = picture.pixel(beside.x, beside.y);
            const ratio = Look.contrast(text.color, ground);
            verify(ratio >= 4.5, text.text + ", " + state + ": " + text.color + " on " + ground + ", " + ratio.toFixed(2));
        }
    }

    function test_texts_can_be_read_in_every_state_data() {
        const rows = [];
        for (const highContrast of [false, true])
            for (const [name, component] of Object.entries({ outlined, flat, primary, checked, choices, menuItem, toggle, field, chip, litChip }))
                rows.push({ tag: name + (highContrast ? ", high contrast" : ""), component, highContrast });
        return rows;
    }
    function test_texts_can_be_read_in_every_state(data) {
        Look.setHighContrast(data.highContrast);
        Look.setReducedMotion(true); // no transition is under way
        const control = createTemporaryObject(data.component, root, { x: 40, y: 40 }) as Item;
        mouseMove(root, 600, 400);
        verifyReadable(control, "at rest");
        mouseMove(control, 3, 3);
        mouseMove(control, 5, 5);
        verifyReadable(control, "hovered");
        mousePress(control, 5, 5);
        verifyReadable(control, "pressed");
        mouseRelease(control, 5, 5);
        if (control instanceof DotComboBox) {
            tryVerify(() => control.popup.opened);
            verifyReadable(control, "open");
            for (const line of [0, 1])
                verifyReadable(control.popup.contentItem.itemAtIndex(line), "line " + line);
        }
        if (control instanceof DotMenuItem) {
            control.highlighted = true;
            verifyReadable(control, "highlighted");
        }
        Look.setHighContrast(false);
        Look.setReducedMotion(false);
    }
}
