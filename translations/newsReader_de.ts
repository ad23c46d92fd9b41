<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>QObject</name>
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
    <message>
        <source>Issues</source>
        <translation>Anfragen</translation>
    </message>
    <message>
        <source>Important messages</source>
        <translation>Wichtige Nachrichten</translation>
    </message>
    <message>
        <source>Offers</source>
        <translation>Angebote</translation>
    </message>
    <message>
        <source>Offers history</source>
        <translation>Frühere Angebote</translation>
    </message>
    <message>
        <source>Click to hide this message</source>
        <translation>Klicken, um diese Nachricht auszublenden</translation>
    </message>
    <message>
        <source>Message is deleted</source>
        <translation>Nachricht wurde gelöscht</translation>
    </message>
    <message>
        <source>(edited)</source>
        <translation>(bearbeitet)</translation>
    </message>
    <message>
        <source>Normal</source>
        <translation>Normal</translation>
    </message>
    <message>
        <source>Heading 1</source>
        <translation>Überschrift 1</translation>
    </message>
    <message>
        <source>Heading 2</source>
        <translation>Überschrift 2</translation>
    </message>
    <message>
        <source>Heading 3</source>
        <translation>Überschrift 3</translation>
    </message>
    <message>
        <source>Heading 4</source>
        <translation>Überschrift 4</translation>
    </message>
    <message>
        <source>Monospaced</source>
        <translation>Festbreitenschrift</translation>
    </message>
    <message>
        <source>Screenshot %1.png</source>
        <translation>Bildschirmfoto %1.png</translation>
    </message>
    <message>
        <source>Attachment name can&apos;t contain any of the following characters: %2</source>
        <translation>Der Name des Anhangs darf keines der folgenden Zeichen enthalten: %2</translation>
    </message>
    <message>
        <source>Click to remove this attachment</source>
        <translation>Klicken, um diesen Anhang zu entfernen</translation>
    </message>
    <message>
        <source>CKOLDialog (%1): no control found: %2</source>
        <translation>CKOLDialog (%1): kein Steuerelement gefunden: %2</translation>
    </message>
    <message>
        <source>Write us a message!</source>
        <translation>Schreiben Sie uns eine Nachricht!</translation>
    </message>
    <message>
        <source>Please specify a subject of your inquiry to start chat with support.</source>
        <translation>Bitte geben Sie einen Betreff für Ihre Anfrage an, um den Chat mit dem Support zu beginnen.</translation>
    </message>
    <message>
        <source>Please specify a message to start chat with support.</source>
        <translation>Bitte geben Sie eine Nachricht ein, um den Chat mit dem Support zu beginnen.</translation>
    </message>
    <message>
        <source>The message could not be sent. Please try again later.</source>
        <translation>Die Nachricht konnte nicht gesendet werden. Bitte versuchen Sie es später erneut.</translation>
    </message>
    <message>
        <source>%1 %2</source>
        <comment>Name formatting rules, first argument for the firstName, second - for the lastName</comment>
        <translation>%1 %2</translation>
    </message>
    <message>
        <source>The following files cannot be used as attachments: %1. Attachment name can&apos;t contain any of the following characters: %2</source>
        <translation>Die folgenden Dateien können nicht als Anhänge verwendet werden: %1. Der Name eines Anhangs darf keines der folgenden Zeichen enthalten: %2</translation>
    </message>
    <message>
        <source>Cannot send the message: attached files summary size is too large.</source>
        <translation>Die Nachricht kann nicht gesendet werden: Die angehängten Dateien sind zusammen zu groß.</translation>
    </message>
    <message>
        <source>The message is too long, please make it shorter.</source>
        <translation>Die Nachricht ist zu lang, bitte kürzen Sie sie.</translation>
    </message>
    <message>
        <source>Creating new communication...</source>
        <translation>Neue Unterhaltung wird erstellt...</translation>
    </message>
    <message>
        <source>Sorry, we couldn&apos;t start chat with Support. Please try again later.</source>
        <translation>Leider konnten wir den Chat mit dem Support nicht starten. Bitte versuchen Sie es später erneut.</translation>
    </message>
    <message>
        <source>Error reason:</source>
        <translation>Fehlerursache:</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>&amp;Schließen</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>&amp;Abbrechen</translation>
    </message>
    <message>
        <source>Communications</source>
        <translation>Kommunikation</translation>
    </message>
    <message>
        <source>No communications received yet</source>
        <translation>Noch keine Mitteilungen erhalten</translation>
    </message>
    <message>
        <source>No view loaded for model %1</source>
        <translation>Keine Ansicht für das Modell %1 geladen</translation>
    </message>
    <message>
        <source>%1. No control found: %2</source>
        <translation>%1. Kein Steuerelement gefunden: %2</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Öffnen</translation>
    </message>
    <message>
        <source>Save as...</source>
        <translation>Speichern unter...</translation>
    </message>
    <message>
        <source>%1 files</source>
        <translation>%1-Dateien</translation>
    </message>
    <message>
        <source>All files</source>
        <translation>Alle Dateien</translation>
    </message>
    <message>
        <source>The file could not be opened: %1</source>
        <translation>Die Datei konnte nicht geöffnet werden: %1</translation>
    </message>
    <message>
        <source>The file could not be saved as &quot;%1&quot;.</source>
        <translation>Die Datei konnte nicht als „%1“ gespeichert werden.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; cannot be stored on this computer under a safe name.</source>
        <translation>„%1“ kann auf diesem Computer nicht unter einem sicheren Namen gespeichert werden.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; could not be downloaded. Please try again later.</source>
        <translation>„%1“ konnte nicht heruntergeladen werden. Bitte versuchen Sie es später erneut.</translation>
    </message>
    <message>
        <source>This message is long: only its beginning is shown.</source>
        <translation>Diese Nachricht ist lang: Nur ihr Anfang wird angezeigt.</translation>
    </message>
    <message>
        <source>Show the whole message</source>
        <translation>Ganze Nachricht anzeigen</translation>
    </message>
    <message>
        <source>Whole message</source>
        <translation>Ganze Nachricht</translation>
    </message>
    <message>
        <source>Whole message from %1</source>
        <translation>Ganze Nachricht von %1</translation>
    </message>
    <message>
        <source>Message</source>
        <translation>Nachricht</translation>
    </message>
    <message>
        <source>Bold</source>
        <translation>Fett</translation>
    </message>
    <message>
        <source>Italic</source>
        <translation>Kursiv</translation>
    </message>
    <message>
        <source>Strike out</source>
        <translation>Durchgestrichen</translation>
    </message>
    <message>
        <source>Paragraph style</source>
        <translation>Absatzformat</translation>
    </message>
    <message>
        <source>Send</source>
        <translation>Senden</translation>
    </message>
    <message>
        <source>Send (Ctrl+Return)</source>
        <translation>Senden (Strg+Eingabe)</translation>
    </message>
    <message>
        <source>Attach files</source>
        <translation>Dateien anhängen</translation>
    </message>
    <message>
        <source>Attachments</source>
        <translation>Anhänge</translation>
    </message>
    <message>
        <source>Conversation</source>
        <translation>Unterhaltung</translation>
    </message>
    <message>
        <source>Remove %1</source>
        <translation>%1 entfernen</translation>
    </message>
    <message>
        <source>Hide %1</source>
        <translation>%1 ausblenden</translation>
    </message>
    <message>
        <source>No communications yet</source>
        <translation>Noch keine Mitteilungen</translation>
    </message>
    <message>
        <source>News from us and your conversations with support will appear here.</source>
        <translation>Neuigkeiten von uns und Ihre Unterhaltungen mit dem Support erscheinen hier.</translation>
    </message>
    <message>
        <source>&lt;a href=&quot;#write&quot;&gt;Write us a message&lt;/a&gt;</source>
        <translation>&lt;a href=&quot;#write&quot;&gt;Schreiben Sie uns eine Nachricht&lt;/a&gt;</translation>
    </message>
    <message>
        <source>Select a message on the left to read it</source>
        <translation>Wählen Sie links eine Nachricht aus, um sie zu lesen</translation>
    </message>
    <message>
        <source>Support has not answered yet. You will find the answer here.</source>
        <translation>Der Support hat noch nicht geantwortet. Sie finden die Antwort hier.</translation>
    </message>
    <message>
        <source>Your request has been received</source>
        <translation>Ihre Anfrage ist eingegangen</translation>
    </message>
    <message>
        <source>Support will answer shortly. You will find the answer here.</source>
        <translation>Der Support antwortet in Kürze. Sie finden die Antwort hier.</translation>
    </message>
    <message>
        <source>New conversation</source>
        <translation>Neue Unterhaltung</translation>
    </message>
    <message>
        <source>Write to support (Ctrl+N)</source>
        <translation>An den Support schreiben (Strg+N)</translation>
    </message>
    <message>
        <source>Bold (Ctrl+B)</source>
        <translation>Fett (Strg+B)</translation>
    </message>
    <message>
        <source>Italic (Ctrl+I)</source>
        <translation>Kursiv (Strg+I)</translation>
    </message>
    <message>
        <source>Strike out (Shift+Alt+X)</source>
        <translation>Durchgestrichen (Umschalt+Alt+X)</translation>
    </message>
    <message>
        <source>Write a message</source>
        <translation>Nachricht schreiben</translation>
    </message>
    <message>
        <source>Send (Ctrl+Enter)</source>
        <translation>Senden (Strg+Eingabe)</translation>
    </message>
    <message>
        <source>This conversation is closed</source>
        <translation>Diese Unterhaltung ist geschlossen</translation>
    </message>
    <message>
        <source>Write us a message</source>
        <translation>Schreiben Sie uns eine Nachricht</translation>
    </message>
    <message>
        <source>No account yet? &lt;a href=&quot;#create-account&quot;&gt;Create an account&lt;/a&gt;</source>
        <translation>Noch kein Konto? &lt;a href=&quot;#create-account&quot;&gt;Konto anlegen&lt;/a&gt;</translation>
    </message>
    <message>
        <source>Subject</source>
        <translation>Betreff</translation>
    </message>
    <message>
        <source>What is your question about?</source>
        <translation>Worum geht es bei Ihrer Frage?</translation>
    </message>
    <message>
        <source>Describe what happened and what you expected. The more we know, the faster we can help.</source>
        <translation>Beschreiben Sie, was passiert ist und was Sie erwartet haben. Je mehr wir wissen, desto schneller können wir helfen.</translation>
    </message>
    <message>
        <source>Loading the conversation…</source>
        <translation>Die Unterhaltung wird geladen…</translation>
    </message>
    <message>
        <source>There are no messages in this conversation yet.</source>
        <translation>In dieser Unterhaltung gibt es noch keine Nachrichten.</translation>
    </message>
    <message>
        <source>Hide</source>
        <translation>Ausblenden</translation>
    </message>
    <message>
        <source>Not sent</source>
        <translation>Nicht gesendet</translation>
    </message>
    <message>
        <source>Send again</source>
        <translation>Erneut senden</translation>
    </message>
</context>
</TS>
