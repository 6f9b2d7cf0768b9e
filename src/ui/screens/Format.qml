pragma Singleton
import QtQml

/// Numbers of the settings as their rows show them.
QtObject {
    function fixed(value, decimals) {
        // What prints as zero has no sign.
        return value.toFixed(decimals).replace(/^-(0(\.0*)?)$/, "$1");
    }
    function signedDecibels(value) {
        const text = fixed(value, 1);
        return qsTr("%1 dB").arg(text.startsWith("-") ? text : "+" + text);
    }
}
