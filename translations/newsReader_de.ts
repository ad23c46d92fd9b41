<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>QObject</name>
    <message>
        <source>Communications</source>
        <translation>Kommunikation</translation>
    </message>
    <message>
        <source>%1 is typing message...</source>
        <translation>%1 schreibt eine Nachricht...</translation>
    </message>
    <message>
        <source>&lt;b&gt;Someone&lt;/b&gt; is typing message...</source>
        <translation>&lt;b&gt;Jemand&lt;/b&gt; schreibt eine Nachricht...</translation>
    </message>
    <message>
        <source>and some others</source>
        <translation>und einige andere</translation>
    </message>
    <message>
        <source>&lt;b&gt;Some people&lt;/b&gt;</source>
        <translation>&lt;b&gt;Einige Personen&lt;/b&gt;</translation>
    </message>
    <message>
        <source>%s are typing messages</source>
        <translation>%1 schreiben gerade Nachrichten</translation>
    </message>
</context>
</TS>
