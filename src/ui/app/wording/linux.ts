<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<!-- The texts that state facts about another operating system, in words that are true on Linux. Nothing
     else belongs here. The context is always "linux": see LinuxWording.h. -->
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name>linux</name>
    <message>
        <source>Quit the app and macOS sound returns by itself.</source>
        <translation>Quit the app and your system’s sound returns by itself.</translation>
    </message>
    <message>
        <source>Click Start and approve the one-time permission</source>
        <translation>Click Start</translation>
    </message>
    <message>
        <source>Ostrafine captures system audio natively (no driver, no settings changes). The first time you click **Start**, macOS asks for **System Audio Recording** permission — approve it once.</source>
        <translation>Ostrafine captures system audio natively through PipeWire (no driver, no settings changes). Click **Start**: there is no permission to grant.</translation>
    </message>
    <message>
        <source>If you denied it by accident: System Settings → Privacy &amp; Security → Screen &amp; System Audio Recording → enable Ostrafine, then Start again.</source>
        <translation>If it does not start: see in a terminal whether the sound server runs (systemctl --user status pipewire wireplumber), then Start again.</translation>
    </message>
    <message>
        <source>Couldn&apos;t start system audio capture (OSStatus %1). If you denied the permission prompt, enable Quorbel under System Settings → Privacy &amp; Security → Screen &amp; System Audio Recording, then try again.</source>
        <translation>Couldn&apos;t start system audio capture (OSStatus %1). Check that PipeWire and WirePlumber are running, then try again.</translation>
    </message>
</context>
</TS>
