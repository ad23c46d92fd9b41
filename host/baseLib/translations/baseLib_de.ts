<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>CBalloonPopup</name>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
</context>
<context>
    <name>CSignInService</name>
    <message>
        <source>The e-mail address or password is not correct.</source>
        <translation>Die E-Mail-Adresse oder das Passwort ist nicht korrekt.</translation>
    </message>
    <message>
        <source>An account cannot be created with this e-mail address and password.</source>
        <translation>Mit dieser E-Mail-Adresse und diesem Passwort kann kein Konto angelegt werden.</translation>
    </message>
</context>
<context>
    <name>SignInControl</name>
    <message>
        <source>name@example.com</source>
        <translation>name@beispiel.de</translation>
    </message>
    <message>
        <source>Password</source>
        <translation>Passwort</translation>
    </message>
    <message>
        <source>Choose a password</source>
        <translation>Passwort wählen</translation>
    </message>
    <message>
        <source>First name</source>
        <translation>Vorname</translation>
    </message>
    <message>
        <source>Last name</source>
        <translation>Nachname</translation>
    </message>
    <message>
        <source>Sign in to contact support</source>
        <translation>Melden Sie sich an, um den Support zu kontaktieren</translation>
    </message>
    <message>
        <source>Use the e-mail address and password of your account. Support answers you there, too.</source>
        <translation>Verwenden Sie die E-Mail-Adresse und das Passwort Ihres Kontos. Der Support antwortet Ihnen auch dort.</translation>
    </message>
    <message>
        <source>E-mail:</source>
        <translation>E-Mail:</translation>
    </message>
    <message>
        <source>Password:</source>
        <translation>Passwort:</translation>
    </message>
    <message>
        <source>Create an account</source>
        <translation>Konto anlegen</translation>
    </message>
    <message>
        <source>Tell us who you are; you will be signed in right away.</source>
        <translation>Sagen Sie uns, wer Sie sind; Sie werden sofort angemeldet.</translation>
    </message>
    <message>
        <source>First name:</source>
        <translation>Vorname:</translation>
    </message>
    <message>
        <source>Last name:</source>
        <translation>Nachname:</translation>
    </message>
    <message>
        <source>I already have an account</source>
        <translation>Ich habe schon ein Konto</translation>
    </message>
    <message>
        <source>Create account</source>
        <translation>Konto anlegen</translation>
    </message>
    <message>
        <source>Sign in</source>
        <translation>Anmelden</translation>
    </message>
    <message>
        <source>Please enter your name, an e-mail address and a password.</source>
        <translation>Bitte geben Sie Ihren Namen, eine E-Mail-Adresse und ein Passwort ein.</translation>
    </message>
    <message>
        <source>Please enter your e-mail address and password.</source>
        <translation>Bitte geben Sie Ihre E-Mail-Adresse und Ihr Passwort ein.</translation>
    </message>
    <message>
        <source>Signing in failed. Please try again.</source>
        <translation>Die Anmeldung ist fehlgeschlagen. Bitte versuchen Sie es erneut.</translation>
    </message>
</context>
</TS>
