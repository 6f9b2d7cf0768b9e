pragma ComponentBehavior: Bound

import QtQuick
import Quorbel.Dotmatrix
import Quorbel.Testing

// Painted items: their pixels, and no repainting without a change.
ControlCase {
    id: root

    name: "painting"

    // Pictures include the background, which must therefore be known.
    Rectangle {
        anchors.fill: parent
        color: Theme.card
    }

    property Component bars: DotBars {}
    property Component curve: DotCurve {
        width: 408 // a plot of 400
        height: 208
        spectrumEdges: Array.from({ length: 33 }, (_, band) => 20 * Math.pow(1000, band / 32))
    }
    property Component text: DotText { text: "-3.5" }
    property Component symbol: Symbol { name: "heart" }
    property Component ticker: Rectangle {
        property int ticks: 0

        x: 600
        width: 8
        height: 8
        color: ticks % 2 ? "black" : "white"
    }

    // Renders frames in which only another item changes.
    function passFrames(count: int) {
        const other = createTemporaryObject(ticker, root);
        for (let frame = 0; frame < count; ++frame) {
            ++other.ticks;
            waitForRendering(other);
        }
    }

    function rising(factor: real): list<real> {
        return Array.from({ length: 32 }, (_, band) => factor * band / 31);
    }

    function same(one: color, other: color): bool {
        return Qt.colorEqual(one, other);
    }

    function test_paints_on_change_only_data() {
        return [
            ["bars", bars, "levels", rising(0.5), rising(0.5)],
            ["bars, less than a dot", bars, "levels", rising(0.5), rising(0.5001)],
            ["curve", curve, "values", rising(1), rising(1)],
            ["spectrum", curve, "spectrum", rising(0.5), rising(0.5001)],
            ["text", text, "text", "+2.0", "+2.0"],
            ["symbol", symbol, "name", "trash", "trash"]
        ].map(([tag, component, property, change, repeat]) => ({ tag, component, property, change, repeat }));
    }
    function test_paints_on_change_only(data) {
        const item = createTemporaryObject(data.component, root);
        tryVerify(() => item.paintCount() === 1);
        passFrames(3);
        compare(item.paintCount(), 1);
        item[data.property] = data.change;
        tryVerify(() => item.paintCount() === 2);
        item[data.property] = data.repeat;
        passFrames(3);
        compare(item.paintCount(), 2);
    }

    function test_paints_nothing_while_hidden() {
        const item = createTemporaryObject(bars, root) as DotBars;
        tryVerify(() => item.paintCount() === 1);
        item.visible = false;
        for (let frame = 0; frame < 5; ++frame) {
            item.levels = rising(frame / 5);
            passFrames(1);
        }
        compare(item.paintCount(), 1);
        item.visible = true;
        tryVerify(() => item.paintCount() === 2);
    }

    function test_bars_light_from_below() {
        const item = createTemporaryObject(bars, root) as DotBars;
        item.levels = [1, 0.5, 0, NaN, 7, -1];
        waitForRendering(item);
        const picture = grabImage(item);
        const at = (column, row) => picture.pixel(column * 8 + 2, row * 8 + 2);
        const lit = column => {
            let count = 0;
            for (let row = 0; row < 12; ++row)
                count += same(at(column, row), Theme.ink) || same(at(column, row), Theme.signal) ? 1 : 0;
            return count;
        };
        compare([0, 1, 2, 3, 4, 5, 6].map(lit), [12, 6, 0, 0, 12, 0, 0]);
        verify(same(at(1, 6), Theme.signal));
        verify(same(at(1, 7), Theme.ink));
        verify(same(at(1, 11), Theme.ink));
        verify(same(at(1, 5), Theme.dot));
        item.active = false;
        waitForRendering(item);
        verify(same(grabImage(item).pixel(2, 90), Theme.dot));
    }

    function test_marks_and_spectrum_are_where_the_axis_says() {
        const item = createTemporaryObject(curve, root) as DotCurve;
        item.markedHeights = [0.3, 0.5, 0.7];
        item.spectrum = [0, 1, 0];
        item.spectrumEdges = [100, 400, 800, 3000];
        waitForRendering(item);
        const picture = grabImage(item);
        const marked = (x, y) => same(picture.pixel(x, y), Theme.dotMid) || same(picture.pixel(x, y), Theme.edge);
        const columnIsMarked = x => [10, 11, 12, 13, 14, 15, 16, 17, 18].some(y => marked(x, y));
        for (const hz of [31.5, 125, 1000, 16000])
            verify(columnIsMarked(Math.floor(item.xOfFrequency(hz))), hz + " Hz");
        const besideMark = Math.floor(item.xOfFrequency(1000)) + 8;
        verify([-1, 0, 1].some(dx => marked(besideMark + dx, Math.floor(item.yOfHeight(0.7)))));
        const lit = hz => {
            const x = Math.round(item.xOfFrequency(hz));
            let dots = 0;
            for (let dx = -4; dx <= 4; ++dx)
                for (let y = 120; y < 128; ++y)
                    dots += marked(x + dx, y) ? 1 : 0;
            return dots;
        };
        verify(lit(600) > 0);
        compare(lit(200), 0);
        compare(lit(1500), 0);
    }

    function test_curve_goes_through_its_values() {
        const item = createTemporaryObject(curve, root, { octaveMarks: false }) as DotCurve;
        item.values = [0.5, 0.5, NaN, 0.75, 0.75];
        waitForRendering(item);
        const picture = grabImage(item);
        const touches = (x, height) => {
            const y = item.yOfHeight(height);
            for (let dx = -3; dx <= 3; ++dx)
                for (let dy = -2; dy <= 2; ++dy)
                    if (same(picture.pixel(x + dx, y + dy), Theme.signal))
                        return true;
            return false;
        };
        verify(touches(50, 0.5));
        verify(touches(204, 0.5)); // NaN is drawn in the middle
        verify(touches(354, 0.75));
        verify(!touches(354, 0.5));
    }

    function test_every_symbol_has_ink() {
        const names = Look.symbolNames();
        compare(names.length, 33);
        const item = createTemporaryObject(symbol, root, { size: 32, color: "#ff0000" }) as Symbol;
        for (const name of names) {
            const before = item.paintCount();
            item.name = name;
            tryVerify(() => item.paintCount() > before || name === "heart");
            const picture = grabImage(item);
            let ink = 0;
            for (let x = 0; x < 32; ++x)
                for (let y = 0; y < 32; ++y)
                    ink += same(picture.pixel(x, y), "#ff0000") ? 1 : 0;
            verify(ink > 20 && ink < 32 * 32 * 0.8, name + ": " + ink);
        }
    }
}
