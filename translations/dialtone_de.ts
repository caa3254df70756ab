<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>AccountPlugin</name>
    <message>
        <source>*100#</source>
        <translation>*100#</translation>
    </message>
    <message>
        <source>&amp;Send</source>
        <translation>&amp;Senden</translation>
    </message>
    <message>
        <source>Service code:</source>
        <translation>Dienstcode:</translation>
    </message>
    <message>
        <source>The network&apos;s answer appears here.</source>
        <translation>Hier erscheint die Antwort des Netzes.</translation>
    </message>
    <message>
        <source>&amp;Reply</source>
        <translation>&amp;Antworten</translation>
    </message>
    <message>
        <source>&amp;End dialogue</source>
        <translation>Dialog &amp;beenden</translation>
    </message>
    <message>
        <source>Your reply:</source>
        <translation>Ihre Antwort:</translation>
    </message>
    <message>
        <source>The network does not offer this service. Check the code.</source>
        <translation>Das Netz bietet diesen Dienst nicht an. Prüfen Sie den Code.</translation>
    </message>
    <message>
        <source>The network ended the dialogue.</source>
        <translation>Das Netz hat den Dialog beendet.</translation>
    </message>
    <message>
        <source>Sending %1 failed: %2. Check the code and that the modem is registered, then try again.</source>
        <translation>%1 konnte nicht gesendet werden: %2. Prüfen Sie den Code und ob das Modem im Netz angemeldet ist, und versuchen Sie es dann erneut.</translation>
    </message>
    <message>
        <source>The account menu file for this SIM card is damaged. You can still send a service code below.</source>
        <translation>Die Kontomenü-Datei für diese SIM-Karte ist beschädigt. Unten können Sie trotzdem einen Dienstcode senden.</translation>
    </message>
    <message>
        <source>There are no account menus for this SIM card. You can still send a service code such as *100# below.</source>
        <translation>Für diese SIM-Karte gibt es keine Kontomenüs. Unten können Sie trotzdem einen Dienstcode wie *100# senden.</translation>
    </message>
    <message>
        <source>Service</source>
        <translation>Dienst</translation>
    </message>
    <message>
        <source>Choose a service on the left.</source>
        <translation>Wählen Sie links einen Dienst.</translation>
    </message>
    <message>
        <source>at least %1 characters</source>
        <translation>mindestens %1 Zeichen</translation>
    </message>
    <message>
        <source>%1 characters</source>
        <translation>%1 Zeichen</translation>
    </message>
    <message>
        <source>%1 to %2 characters</source>
        <translation>%1 bis %2 Zeichen</translation>
    </message>
    <message>
        <source>%1 needs at least %2 characters.</source>
        <translation>%1: Es sind mindestens %2 Zeichen nötig.</translation>
    </message>
    <message>
        <source>%1 needs %2 characters.</source>
        <translation>%1: Es sind %2 Zeichen nötig.</translation>
    </message>
    <message>
        <source>%1 needs %2 to %3 characters.</source>
        <translation>%1: Es sind %2 bis %3 Zeichen nötig.</translation>
    </message>
    <message>
        <source>%1 takes only the characters %2.</source>
        <translation>%1: Erlaubt sind nur die Zeichen %2.</translation>
    </message>
    <message>
        <source>the code</source>
        <translation>der Code</translation>
    </message>
    <message>
        <source>(dialogue ended)</source>
        <translation>(Dialog beendet)</translation>
    </message>
    <message>
        <source>Sending…</source>
        <translation>Wird gesendet…</translation>
    </message>
    <message>
        <source>Account</source>
        <translation>Konto</translation>
    </message>
    <message>
        <source>Account menu</source>
        <translation>Kontomenü</translation>
    </message>
    <message>
        <source>The network&apos;s answer</source>
        <translation>Antwort des Netzes</translation>
    </message>
</context>
<context>
    <name>BudgetDialog</name>
    <message>
        <source>Data budget of this SIM</source>
        <translation>Datenbudget dieser SIM</translation>
    </message>
    <message>
        <source>for example 2 GB or 500 MB</source>
        <translation>zum Beispiel 2 GB oder 500 MB</translation>
    </message>
    <message>
        <source>The day of the month the period starts on; in shorter months a later day means the month&apos;s last day</source>
        <translation>Der Tag des Monats, an dem der Zeitraum beginnt; in kürzeren Monaten steht ein späterer Tag für den letzten Tag des Monats</translation>
    </message>
    <message>
        <source>none</source>
        <translation>keins</translation>
    </message>
    <message>
        <source> h</source>
        <translation> h</translation>
    </message>
    <message>
        <source> %</source>
        <translation> %</translation>
    </message>
    <message>
        <source>Hang up at 100 % and do not dial until the next period</source>
        <translation>Bei 100 % auflegen und bis zum nächsten Zeitraum nicht wählen</translation>
    </message>
    <message>
        <source>Off</source>
        <translation>Aus</translation>
    </message>
    <message>
        <source>Warn</source>
        <translation>Warnen</translation>
    </message>
    <message>
        <source>Hang up and do not dial while roaming</source>
        <translation>Auflegen und beim Roaming nicht wählen</translation>
    </message>
    <message>
        <source>Data per period:</source>
        <translation>Daten pro Zeitraum:</translation>
    </message>
    <message>
        <source>Billing day:</source>
        <translation>Abrechnungstag:</translation>
    </message>
    <message>
        <source>Connected time per period:</source>
        <translation>Verbindungszeit pro Zeitraum:</translation>
    </message>
    <message>
        <source>Warn at:</source>
        <translation>Warnen bei:</translation>
    </message>
    <message>
        <source>When roaming starts:</source>
        <translation>Wenn Roaming beginnt:</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is not a size: write for example 2 GB or 500 MB.</source>
        <translation>„%1“ ist keine Größe: Schreiben Sie zum Beispiel 2 GB oder 500 MB.</translation>
    </message>
    <message>
        <source>Give a size, a connected time or a roaming guard.</source>
        <translation>Geben Sie eine Größe, eine Verbindungszeit oder einen Roaming-Schutz an.</translation>
    </message>
</context>
<context>
    <name>BudgetGuard</name>
    <message>
        <source>The modem is roaming and the roaming guard does not dial while roaming.</source>
        <translation>Das Modem ist im Roaming, und der Roaming-Schutz wählt beim Roaming nicht.</translation>
    </message>
    <message>
        <source>The data budget of this SIM is used up (%1) until %2.</source>
        <translation>Das Datenbudget dieser SIM ist bis %2 aufgebraucht (%1).</translation>
    </message>
    <message numerus="yes">
        <source>%1 % of the data budget of this SIM is used (%2); %n day(s) left in the period.</source>
        <translation>
            <numerusform>%1 % des Datenbudgets dieser SIM sind verbraucht (%2); noch %n Tag im Zeitraum.</numerusform>
            <numerusform>%1 % des Datenbudgets dieser SIM sind verbraucht (%2); noch %n Tage im Zeitraum.</numerusform>
        </translation>
    </message>
    <message>
        <source>The data budget of this SIM is used up (%1) until %2: the link was ended.</source>
        <translation>Das Datenbudget dieser SIM ist bis %2 aufgebraucht (%1): Die Verbindung wurde beendet.</translation>
    </message>
    <message>
        <source>The modem is roaming now: data may cost more on this network.</source>
        <translation>Das Modem ist jetzt im Roaming: Daten können in diesem Netz mehr kosten.</translation>
    </message>
    <message>
        <source>The modem is roaming: the roaming guard ended the link.</source>
        <translation>Das Modem ist im Roaming: Der Roaming-Schutz hat die Verbindung beendet.</translation>
    </message>
</context>
<context>
    <name>BudgetStatus</name>
    <message>
        <source>%1 of %2</source>
        <translation>%1 von %2</translation>
    </message>
    <message>
        <source>%1 of %2 connected</source>
        <translation>%1 von %2 verbunden</translation>
    </message>
</context>
<context>
    <name>CNSSignalBars</name>
    <message>
        <source>Signal strength</source>
        <translation>Signalstärke</translation>
    </message>
    <message>
        <source>No signal information</source>
        <translation>Keine Angaben zum Signal</translation>
    </message>
    <message>
        <source>Signal %1 of 5</source>
        <translation>Signal %1 von 5</translation>
    </message>
    <message>
        <source>Signal %1 of 5 (%2 dBm)</source>
        <translation>Signal %1 von 5 (%2 dBm)</translation>
    </message>
</context>
<context>
    <name>CNSSignalChart</name>
    <message>
        <source>Signal of the day</source>
        <translation>Signal des Tages</translation>
    </message>
    <message>
        <source>No signal recorded on this day</source>
        <translation>An diesem Tag wurde kein Signal aufgezeichnet</translation>
    </message>
    <message>
        <source>%1: the signal was between %2 and %3 dBm; the bearer changed %4 times, the cell %5 times</source>
        <translation>%1: Das Signal lag zwischen %2 und %3 dBm; die Übertragungsart wechselte %4-mal, die Zelle %5-mal</translation>
    </message>
    <message>
        <source>Signal (dBm)</source>
        <translation>Signal (dBm)</translation>
    </message>
    <message>
        <source>Bearer changed</source>
        <translation>Übertragungsart gewechselt</translation>
    </message>
    <message>
        <source>Cell changed</source>
        <translation>Zelle gewechselt</translation>
    </message>
</context>
<context>
    <name>CNSSignalGauge</name>
    <message>
        <source>Signal gauge</source>
        <translation>Signalanzeige</translation>
    </message>
    <message>
        <source>excellent</source>
        <translation>ausgezeichnet</translation>
    </message>
    <message>
        <source>good</source>
        <translation>gut</translation>
    </message>
    <message>
        <source>fair</source>
        <translation>mittel</translation>
    </message>
    <message>
        <source>poor</source>
        <translation>schwach</translation>
    </message>
    <message>
        <source>no signal</source>
        <translation>kein Signal</translation>
    </message>
    <message>
        <source>unknown</source>
        <translation>unbekannt</translation>
    </message>
    <message>
        <source>%1 dBm, %2, best of the last minute %3 dBm</source>
        <translation>%1 dBm, %2, bester Wert der letzten Minute %3 dBm</translation>
    </message>
    <message>
        <source>No signal information</source>
        <translation>Keine Angaben zum Signal</translation>
    </message>
    <message>
        <source>%1 dBm</source>
        <translation>%1 dBm</translation>
    </message>
    <message>
        <source>%1 of 5 bars, %2</source>
        <translation>%1 von 5 Balken, %2</translation>
    </message>
    <message>
        <source>Best of the last minute: %1 dBm</source>
        <translation>Bester Wert der letzten Minute: %1 dBm</translation>
    </message>
</context>
<context>
    <name>CNSSignalTone</name>
    <message>
        <source>No sound device: beeps instead of the tone.</source>
        <translation>Kein Audiogerät: Pieptöne statt des Tons.</translation>
    </message>
    <message>
        <source>The sound device could not be opened: beeps instead of the tone.</source>
        <translation>Das Audiogerät ließ sich nicht öffnen: Pieptöne statt des Tons.</translation>
    </message>
    <message>
        <source>Built without sound: beeps instead of the tone.</source>
        <translation>Ohne Audio gebaut: Pieptöne statt des Tons.</translation>
    </message>
</context>
<context>
    <name>CNSTrafficChart</name>
    <message>
        <source>Home network</source>
        <translation>Heimatnetz</translation>
    </message>
    <message>
        <source>Roaming</source>
        <translation>Roaming</translation>
    </message>
    <message>
        <source>No traffic in this period</source>
        <translation>Kein Datenverkehr in diesem Zeitraum</translation>
    </message>
    <message>
        <source>%1
Home network: %2
Roaming: %3</source>
        <translation>%1
Heimatnetz: %2
Roaming: %3</translation>
    </message>
    <message>
        <source>Traffic per day</source>
        <translation>Datenverkehr pro Tag</translation>
    </message>
    <message>
        <source>%1 to %2: %3 on the home network, %4 roaming; the busiest day was %5 with %6</source>
        <translation>%1 bis %2: %3 im Heimatnetz, %4 beim Roaming; der Tag mit dem meisten Verkehr war der %5 mit %6</translation>
    </message>
</context>
<context>
    <name>ComposeDialog</name>
    <message>
        <source>New message</source>
        <translation>Neue Nachricht</translation>
    </message>
    <message>
        <source>Numbers, separated by ;</source>
        <translation>Nummern, getrennt durch ;</translation>
    </message>
    <message>
        <source>Send</source>
        <translation>Senden</translation>
    </message>
    <message>
        <source>Save as draft</source>
        <translation>Als Entwurf speichern</translation>
    </message>
    <message>
        <source>To:</source>
        <translation>An:</translation>
    </message>
    <message>
        <source>Sending…</source>
        <translation>Wird gesendet…</translation>
    </message>
    <message>
        <source>Enter at least one recipient.</source>
        <translation>Geben Sie mindestens einen Empfänger ein.</translation>
    </message>
    <message>
        <source>The modem is not ready. Save the message as a draft and send it later.</source>
        <translation>Das Modem ist nicht bereit. Speichern Sie die Nachricht als Entwurf und senden Sie sie später.</translation>
    </message>
    <message>
        <source>The message to %1 could not be sent: %2. A copy is in the outbox; the text is still here, press Send to try again.</source>
        <translation>Die Nachricht an %1 konnte nicht gesendet werden: %2. Eine Kopie liegt im Postausgang; der Text ist noch da, klicken Sie auf „Senden“, um es erneut zu versuchen.</translation>
    </message>
    <message>
        <source>Message text</source>
        <translation>Nachrichtentext</translation>
    </message>
</context>
<context>
    <name>ConnectPlugin</name>
    <message>
        <source>Connection</source>
        <translation>Verbindung</translation>
    </message>
    <message>
        <source>Profile:</source>
        <translation>Profil:</translation>
    </message>
    <message>
        <source>State:</source>
        <translation>Zustand:</translation>
    </message>
    <message>
        <source>This connection</source>
        <translation>Diese Verbindung</translation>
    </message>
    <message>
        <source>Duration:</source>
        <translation>Dauer:</translation>
    </message>
    <message>
        <source>Sent:</source>
        <translation>Gesendet:</translation>
    </message>
    <message>
        <source>Received:</source>
        <translation>Empfangen:</translation>
    </message>
    <message>
        <source>Upload rate:</source>
        <translation>Upload-Rate:</translation>
    </message>
    <message>
        <source>Download rate:</source>
        <translation>Download-Rate:</translation>
    </message>
    <message>
        <source>Cannot dial: %1.
Fix: %2</source>
        <translation>Wählen nicht möglich: %1.
Abhilfe: %2</translation>
    </message>
    <message>
        <source>APN: %1</source>
        <translation>APN: %1</translation>
    </message>
    <message>
        <source>No profiles yet</source>
        <translation>Noch keine Profile</translation>
    </message>
    <message>
        <source>No modem</source>
        <translation>Kein Modem</translation>
    </message>
    <message>
        <source>No modem: plug it in to connect</source>
        <translation>Kein Modem: Stecken Sie es ein, um zu verbinden</translation>
    </message>
    <message>
        <source>Not connected: the first connection sets up the modem&apos;s dial-up service</source>
        <translation>Nicht verbunden: Die erste Verbindung richtet den Einwahldienst des Modems ein</translation>
    </message>
    <message>
        <source>Preparing the modem&apos;s dial-up service…</source>
        <translation>Einwahldienst des Modems wird vorbereitet…</translation>
    </message>
    <message>
        <source>Connecting…</source>
        <translation>Verbindung wird hergestellt…</translation>
    </message>
    <message>
        <source>Connected</source>
        <translation>Verbunden</translation>
    </message>
    <message>
        <source>Disconnecting…</source>
        <translation>Verbindung wird getrennt…</translation>
    </message>
    <message>
        <source>Not connected</source>
        <translation>Nicht verbunden</translation>
    </message>
    <message>
        <source>The modem&apos;s dial-up service could not be created.</source>
        <translation>Der Einwahldienst des Modems konnte nicht angelegt werden.</translation>
    </message>
    <message>
        <source>Cannot connect</source>
        <translation>Verbinden nicht möglich</translation>
    </message>
    <message>
        <source>Dialtone will close now.</source>
        <translation>Dialtone wird jetzt beendet.</translation>
    </message>
    <message>
        <source>Set up dial-up</source>
        <translation>Einwahl einrichten</translation>
    </message>
    <message>
        <source>Before its first connection, the modem needs a dial-up service: a small entry in the system&apos;s pppd configuration (/etc/ppp/peers), which only an administrator may change. The system now asks for an administrator&apos;s password once; later connections need no password.</source>
        <translation>Vor der ersten Verbindung braucht das Modem einen Einwahldienst: einen kleinen Eintrag in der pppd-Konfiguration des Systems (/etc/ppp/peers), die nur ein Administrator ändern darf. Das System fragt jetzt einmal nach dem Passwort eines Administrators; spätere Verbindungen brauchen kein Passwort.</translation>
    </message>
    <message>
        <source>Continue</source>
        <translation>Weiter</translation>
    </message>
    <message>
        <source>Waiting for the administrator&apos;s password…</source>
        <translation>Warten auf das Administratorpasswort…</translation>
    </message>
    <message>
        <source>The password dialog was closed: the dial-up service was not set up.</source>
        <translation>Der Passwortdialog wurde geschlossen: Der Einwahldienst wurde nicht eingerichtet.</translation>
    </message>
    <message>
        <source>The modem&apos;s dial-up service could not be set up.</source>
        <translation>Der Einwahldienst des Modems konnte nicht eingerichtet werden.</translation>
    </message>
    <message>
        <source>Connect</source>
        <translation>Verbinden</translation>
    </message>
    <message>
        <source>Roaming</source>
        <translation>Roaming</translation>
    </message>
    <message>
        <source>Data budget</source>
        <translation>Datenbudget</translation>
    </message>
    <message>
        <source>Data budget used up</source>
        <translation>Datenbudget aufgebraucht</translation>
    </message>
    <message>
        <source>Connect anyway for as long as the app runs?</source>
        <translation>Trotzdem verbinden, solange die Anwendung läuft?</translation>
    </message>
    <message>
        <source>Connect anyway until the budget&apos;s period ends?</source>
        <translation>Bis zum Ende des Budgetzeitraums trotzdem verbinden?</translation>
    </message>
    <message>
        <source>Connect anyway</source>
        <translation>Trotzdem verbinden</translation>
    </message>
    <message>
        <source>The choice could not be stored: check that your data folder is writable.</source>
        <translation>Die Wahl konnte nicht gespeichert werden: Prüfen Sie, ob Ihr Datenordner beschreibbar ist.</translation>
    </message>
</context>
<context>
    <name>ContactDialog</name>
    <message>
        <source>Contact in the %1 phonebook</source>
        <translation>Kontakt im Telefonbuch „%1“</translation>
    </message>
    <message>
        <source>+491701234567</source>
        <translation>+491701234567</translation>
    </message>
    <message numerus="yes">
        <source>names up to %n character(s)</source>
        <translation>
            <numerusform>Namen bis %n Zeichen</numerusform>
            <numerusform>Namen bis %n Zeichen</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>numbers up to %n character(s)</source>
        <translation>
            <numerusform>Nummern bis %n Zeichen</numerusform>
            <numerusform>Nummern bis %n Zeichen</numerusform>
        </translation>
    </message>
    <message>
        <source>This phonebook keeps %1.</source>
        <translation>Dieses Telefonbuch speichert %1.</translation>
    </message>
    <message>
        <source> and </source>
        <translation> und </translation>
    </message>
    <message>
        <source>&amp;Name:</source>
        <translation>&amp;Name:</translation>
    </message>
    <message>
        <source>N&amp;umber:</source>
        <translation>N&amp;ummer:</translation>
    </message>
    <message>
        <source>%1 has %2 characters; this phonebook keeps numbers up to %3.</source>
        <translation>%1 hat %2 Zeichen; dieses Telefonbuch speichert Nummern bis %3 Zeichen.</translation>
    </message>
    <message>
        <source>the name</source>
        <translation>der Name</translation>
    </message>
</context>
<context>
    <name>ContactsPlugin</name>
    <message>
        <source>Reading the phonebooks</source>
        <translation>Lesen der Telefonbücher</translation>
    </message>
    <message>
        <source>Reading the phonebooks&apos; use</source>
        <translation>Lesen der Belegung der Telefonbücher</translation>
    </message>
    <message>
        <source>Reading the phonebooks&apos; limits</source>
        <translation>Lesen der Grenzen der Telefonbücher</translation>
    </message>
    <message>
        <source>SIM card</source>
        <translation>SIM-Karte</translation>
    </message>
    <message>
        <source>Modem</source>
        <translation>Modem</translation>
    </message>
    <message>
        <source>Search names and numbers</source>
        <translation>Namen und Nummern durchsuchen</translation>
    </message>
    <message>
        <source>Phonebook:</source>
        <translation>Telefonbuch:</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Number</source>
        <translation>Nummer</translation>
    </message>
    <message>
        <source>&amp;Add…</source>
        <translation>&amp;Hinzufügen…</translation>
    </message>
    <message>
        <source>&amp;Edit…</source>
        <translation>&amp;Bearbeiten…</translation>
    </message>
    <message>
        <source>&amp;Delete</source>
        <translation>&amp;Löschen</translation>
    </message>
    <message>
        <source>Send &amp;message</source>
        <translation>&amp;Nachricht senden</translation>
    </message>
    <message>
        <source>&amp;Reload</source>
        <translation>Neu &amp;laden</translation>
    </message>
    <message>
        <source>Adding the contact</source>
        <translation>Hinzufügen des Kontakts</translation>
    </message>
    <message>
        <source>Check the name and number and try again; Reload shows what the phonebook holds now.</source>
        <translation>Prüfen Sie Name und Nummer und versuchen Sie es erneut; „Neu laden“ zeigt, was das Telefonbuch jetzt enthält.</translation>
    </message>
    <message>
        <source>Saving the contact</source>
        <translation>Speichern des Kontakts</translation>
    </message>
    <message>
        <source>Deleting the contact</source>
        <translation>Löschen des Kontakts</translation>
    </message>
    <message>
        <source>Press Reload to see what the phonebook holds now, then try again.</source>
        <translation>Klicken Sie auf „Neu laden“, um zu sehen, was das Telefonbuch jetzt enthält, und versuchen Sie es dann erneut.</translation>
    </message>
    <message>
        <source>%1 of %2 used</source>
        <translation>%1 von %2 belegt</translation>
    </message>
    <message>
        <source>%1 failed: %2.</source>
        <translation>%1 fehlgeschlagen: %2.</translation>
    </message>
    <message>
        <source>Plug the modem in again; the contacts are read when it is back.</source>
        <translation>Stecken Sie das Modem wieder ein; die Kontakte werden gelesen, sobald es wieder da ist.</translation>
    </message>
    <message>
        <source>Check that the SIM is in place and press Reload to try again.</source>
        <translation>Prüfen Sie, ob die SIM-Karte eingelegt ist, und klicken Sie auf „Neu laden“, um es erneut zu versuchen.</translation>
    </message>
    <message>
        <source>This phonebook is full. Delete a contact or choose the other phonebook.</source>
        <translation>Dieses Telefonbuch ist voll. Löschen Sie einen Kontakt oder wählen Sie das andere Telefonbuch.</translation>
    </message>
    <message>
        <source>No modem: the contacts are read when the modem is ready.</source>
        <translation>Kein Modem: Die Kontakte werden gelesen, sobald das Modem bereit ist.</translation>
    </message>
    <message>
        <source>No contact matches &quot;%1&quot;.</source>
        <translation>Kein Kontakt passt zu „%1“.</translation>
    </message>
    <message>
        <source>No contacts in this phonebook.</source>
        <translation>Keine Kontakte in diesem Telefonbuch.</translation>
    </message>
    <message>
        <source> (names up to %1, numbers up to %2 characters)</source>
        <translation> (Namen bis %1, Nummern bis %2 Zeichen)</translation>
    </message>
    <message>
        <source>Delete contact</source>
        <translation>Kontakt löschen</translation>
    </message>
    <message>
        <source>Delete %1 (%2) from the %3 phonebook?</source>
        <translation>%1 (%2) aus dem Telefonbuch „%3“ löschen?</translation>
    </message>
    <message>
        <source>Contacts</source>
        <translation>Kontakte</translation>
    </message>
    <message>
        <source>Search contacts</source>
        <translation>Kontakte durchsuchen</translation>
    </message>
    <message>
        <source>Computer</source>
        <translation>Computer</translation>
    </message>
    <message>
        <source>E-mail</source>
        <translation>E-Mail</translation>
    </message>
    <message>
        <source>Phonebook</source>
        <translation>Telefonbuch</translation>
    </message>
    <message>
        <source>&amp;Import…</source>
        <translation>&amp;Importieren…</translation>
    </message>
    <message>
        <source>Read a vCard file into the computer&apos;s address book</source>
        <translation>Eine vCard-Datei in das Adressbuch des Computers einlesen</translation>
    </message>
    <message>
        <source>E&amp;xport…</source>
        <translation>E&amp;xportieren…</translation>
    </message>
    <message>
        <source>Write the phonebook shown to a vCard file</source>
        <translation>Das angezeigte Telefonbuch in eine vCard-Datei schreiben</translation>
    </message>
    <message>
        <source>Copy to &amp;SIM</source>
        <translation>Auf &amp;SIM kopieren</translation>
    </message>
    <message>
        <source>Copy to &amp;computer</source>
        <translation>Auf den &amp;Computer kopieren</translation>
    </message>
    <message>
        <source>Copying to the SIM</source>
        <translation>Das Kopieren auf die SIM</translation>
    </message>
    <message>
        <source>%1 (%2)</source>
        <translation>%1 (%2)</translation>
    </message>
    <message>
        <source>No contacts on the computer: add one, or import a vCard file.</source>
        <translation>Keine Kontakte auf dem Computer: Fügen Sie einen hinzu oder importieren Sie eine vCard-Datei.</translation>
    </message>
    <message>
        <source>Contacts on this computer: %1</source>
        <translation>Kontakte auf diesem Computer: %1</translation>
    </message>
    <message>
        <source>Delete %1 from the computer&apos;s address book?</source>
        <translation>%1 aus dem Adressbuch des Computers löschen?</translation>
    </message>
    <message>
        <source>The address book could not be written to %1; it was read again as it is on disk. Check that the folder is writable and the disk not full.</source>
        <translation>Das Adressbuch konnte nicht nach %1 geschrieben werden; es wurde so neu gelesen, wie es auf der Festplatte steht. Prüfen Sie, ob der Ordner beschreibbar und die Festplatte nicht voll ist.</translation>
    </message>
    <message>
        <source>Import contacts</source>
        <translation>Kontakte importieren</translation>
    </message>
    <message>
        <source>vCard files (*.vcf *.vcard);;All files (*)</source>
        <translation>vCard-Dateien (*.vcf *.vcard);;Alle Dateien (*)</translation>
    </message>
    <message>
        <source>Nothing was imported: %1</source>
        <translation>Nichts wurde importiert: %1</translation>
    </message>
    <message>
        <source>%1: %2 added, %3 merged, %4 already there, %5 without name or number.</source>
        <translation>%1: %2 hinzugefügt, %3 zusammengeführt, %4 schon vorhanden, %5 ohne Name oder Nummer.</translation>
    </message>
    <message>
        <source>Export contacts</source>
        <translation>Kontakte exportieren</translation>
    </message>
    <message>
        <source>contacts.vcf</source>
        <translation>kontakte.vcf</translation>
    </message>
    <message>
        <source>vCard files (*.vcf *.vcard)</source>
        <translation>vCard-Dateien (*.vcf *.vcard)</translation>
    </message>
    <message>
        <source>The file was not written: %1</source>
        <translation>Die Datei wurde nicht geschrieben: %1</translation>
    </message>
    <message>
        <source>Contacts written to %1: %2.</source>
        <translation>Kontakte nach %1 geschrieben: %2.</translation>
    </message>
    <message>
        <source>%1: copied</source>
        <translation>%1: kopiert</translation>
    </message>
    <message>
        <source>%1: copied, name cut to fit the SIM</source>
        <translation>%1: kopiert, Name für die SIM gekürzt</translation>
    </message>
    <message>
        <source>%1: already on the SIM</source>
        <translation>%1: schon auf der SIM</translation>
    </message>
    <message>
        <source>%1: not copied, not a phone number</source>
        <translation>%1: nicht kopiert, keine Telefonnummer</translation>
    </message>
    <message>
        <source>%1: not copied, the number is longer than the SIM keeps</source>
        <translation>%1: nicht kopiert, die Nummer ist länger, als die SIM speichert</translation>
    </message>
    <message>
        <source>%1: not copied, the SIM is full</source>
        <translation>%1: nicht kopiert, die SIM ist voll</translation>
    </message>
    <message>
        <source>The computer&apos;s address book is full (%1 contacts).</source>
        <translation>Das Adressbuch des Computers ist voll (%1 Kontakte).</translation>
    </message>
    <message>
        <source>%1 is already in the computer&apos;s address book.</source>
        <translation>%1 ist schon im Adressbuch des Computers.</translation>
    </message>
    <message>
        <source>%1&apos;s number was added to the computer&apos;s address book.</source>
        <translation>Die Nummer von %1 wurde dem Adressbuch des Computers hinzugefügt.</translation>
    </message>
    <message>
        <source>%1 was added to the computer&apos;s address book.</source>
        <translation>%1 wurde dem Adressbuch des Computers hinzugefügt.</translation>
    </message>
</context>
<context>
    <name>ConversationView</name>
    <message>
        <source>Unread</source>
        <translation>Ungelesen</translation>
    </message>
    <message>
        <source>Read</source>
        <translation>Gelesen</translation>
    </message>
    <message>
        <source>Not sent</source>
        <translation>Nicht gesendet</translation>
    </message>
    <message>
        <source>Sent</source>
        <translation>Gesendet</translation>
    </message>
    <message>
        <source>Draft</source>
        <translation>Entwurf</translation>
    </message>
    <message>
        <source>Could not be sent</source>
        <translation>Konnte nicht gesendet werden</translation>
    </message>
    <message>
        <source>SIM card</source>
        <translation>SIM-Karte</translation>
    </message>
    <message>
        <source>Modem</source>
        <translation>Modem</translation>
    </message>
    <message>
        <source>On this computer</source>
        <translation>Auf diesem Computer</translation>
    </message>
    <message>
        <source>Outbox</source>
        <translation>Postausgang</translation>
    </message>
    <message>
        <source>Drafts</source>
        <translation>Entwürfe</translation>
    </message>
    <message>
        <source>Archive</source>
        <translation>Archiv</translation>
    </message>
    <message>
        <source>Conversations</source>
        <translation>Unterhaltungen</translation>
    </message>
    <message>
        <source>Reply</source>
        <translation>Antworten</translation>
    </message>
    <message>
        <source>Messages of the conversation</source>
        <translation>Nachrichten der Unterhaltung</translation>
    </message>
    <message>
        <source>No message holds &quot;%1&quot;</source>
        <translation>Keine Nachricht enthält „%1“</translation>
    </message>
    <message>
        <source>Choose a conversation on the left.</source>
        <translation>Wählen Sie links eine Unterhaltung.</translation>
    </message>
    <message>
        <source>(Some parts of this message have not arrived.)</source>
        <translation>(Einige Teile dieser Nachricht sind nicht angekommen.)</translation>
    </message>
    <message>
        <source>Received</source>
        <translation>Empfangen</translation>
    </message>
    <message>
        <source>Outgoing</source>
        <translation>Ausgehend</translation>
    </message>
</context>
<context>
    <name>DesktopNotifier</name>
    <message>
        <source>Read</source>
        <translation>Lesen</translation>
    </message>
    <message>
        <source>Reply</source>
        <translation>Antworten</translation>
    </message>
</context>
<context>
    <name>FailureText</name>
    <message>
        <source>there is no SIM in the modem: insert one and plug the modem in again</source>
        <translation>im Modem ist keine SIM-Karte: Legen Sie eine ein und stecken Sie das Modem wieder ein</translation>
    </message>
    <message>
        <source>the SIM is locked</source>
        <translation>die SIM-Karte ist gesperrt</translation>
    </message>
    <message>
        <source>the SIM is locked until its PUK is entered</source>
        <translation>die SIM-Karte ist gesperrt, bis ihre PUK eingegeben wird</translation>
    </message>
    <message>
        <source>enter its PIN with &quot;Unlock the SIM&quot;</source>
        <translation>Geben Sie ihre PIN mit „SIM-Karte entsperren“ ein</translation>
    </message>
    <message>
        <source>enter the PUK and a new PIN with &quot;Unlock the SIM&quot;</source>
        <translation>Geben Sie die PUK und eine neue PIN mit „SIM-Karte entsperren“ ein</translation>
    </message>
    <message>
        <source>there is no network: check the signal and try again</source>
        <translation>kein Netz: Prüfen Sie das Signal und versuchen Sie es erneut</translation>
    </message>
    <message>
        <source>the SIM is busy: try again in a moment</source>
        <translation>die SIM-Karte ist beschäftigt: Versuchen Sie es gleich noch einmal</translation>
    </message>
    <message>
        <source>the SIM failed: take it out, check its contacts and try again</source>
        <translation>die SIM-Karte hat versagt: Nehmen Sie sie heraus, prüfen Sie ihre Kontakte und versuchen Sie es erneut</translation>
    </message>
    <message>
        <source>the modem does not allow this now</source>
        <translation>das Modem lässt das jetzt nicht zu</translation>
    </message>
    <message>
        <source>the modem does not support this</source>
        <translation>das Modem unterstützt das nicht</translation>
    </message>
    <message>
        <source>the modem does not accept this SIM</source>
        <translation>das Modem nimmt diese SIM-Karte nicht an</translation>
    </message>
    <message>
        <source>the PIN or password is wrong</source>
        <translation>die PIN oder das Passwort ist falsch</translation>
    </message>
    <message>
        <source>dialtone pin status shows the attempts left</source>
        <translation>dialtone pin status zeigt die verbleibenden Versuche</translation>
    </message>
    <message>
        <source>the PIN settings show the attempts left</source>
        <translation>die PIN-Einstellungen zeigen die verbleibenden Versuche</translation>
    </message>
    <message>
        <source>this needs the SIM&apos;s PIN2</source>
        <translation>dafür ist die PIN2 der SIM-Karte nötig</translation>
    </message>
    <message>
        <source>this needs the SIM&apos;s PUK2</source>
        <translation>dafür ist die PUK2 der SIM-Karte nötig</translation>
    </message>
    <message>
        <source>the store is full: delete an entry first</source>
        <translation>der Speicher ist voll: Löschen Sie zuerst einen Eintrag</translation>
    </message>
    <message>
        <source>there is no entry at that index</source>
        <translation>an dieser Stelle gibt es keinen Eintrag</translation>
    </message>
    <message>
        <source>not found</source>
        <translation>nicht gefunden</translation>
    </message>
    <message>
        <source>the SIM&apos;s memory failed</source>
        <translation>der Speicher der SIM-Karte hat versagt</translation>
    </message>
    <message>
        <source>the name is longer than the SIM allows</source>
        <translation>der Name ist länger, als die SIM-Karte erlaubt</translation>
    </message>
    <message>
        <source>dialtone contacts info shows the limits</source>
        <translation>dialtone contacts info zeigt die Grenzen</translation>
    </message>
    <message>
        <source>the name holds characters the SIM cannot store</source>
        <translation>der Name enthält Zeichen, die die SIM-Karte nicht speichern kann</translation>
    </message>
    <message>
        <source>the number is longer than the SIM allows</source>
        <translation>die Nummer ist länger, als die SIM-Karte erlaubt</translation>
    </message>
    <message>
        <source>the number holds characters that cannot be dialled</source>
        <translation>die Nummer enthält Zeichen, die sich nicht wählen lassen</translation>
    </message>
    <message>
        <source>the network did not answer in time: try again</source>
        <translation>das Netz hat nicht rechtzeitig geantwortet: Versuchen Sie es erneut</translation>
    </message>
    <message>
        <source>the network refuses the SIM, emergency calls only</source>
        <translation>das Netz weist die SIM-Karte ab, nur Notrufe möglich</translation>
    </message>
    <message>
        <source>choose another operator (dialtone network scan) or dialtone network auto</source>
        <translation>Wählen Sie einen anderen Netzbetreiber (dialtone network scan) oder dialtone network auto</translation>
    </message>
    <message>
        <source>choose another operator, or automatic selection</source>
        <translation>Wählen Sie einen anderen Netzbetreiber oder die automatische Netzwahl</translation>
    </message>
    <message>
        <source>the SIM&apos;s subscription does not include data</source>
        <translation>der Vertrag der SIM-Karte umfasst keine Datenverbindungen</translation>
    </message>
    <message>
        <source>this operator&apos;s network does not admit the SIM</source>
        <translation>das Netz dieses Netzbetreibers lässt die SIM-Karte nicht zu</translation>
    </message>
    <message>
        <source>the network does not admit the SIM in this area</source>
        <translation>das Netz lässt die SIM-Karte in diesem Gebiet nicht zu</translation>
    </message>
    <message>
        <source>roaming is not allowed in this area</source>
        <translation>Roaming ist in diesem Gebiet nicht erlaubt</translation>
    </message>
    <message>
        <source>choose another operator (dialtone network scan)</source>
        <translation>Wählen Sie einen anderen Netzbetreiber (dialtone network scan)</translation>
    </message>
    <message>
        <source>choose another operator</source>
        <translation>Wählen Sie einen anderen Netzbetreiber</translation>
    </message>
    <message>
        <source>the number is not in use: check the number</source>
        <translation>die Nummer ist nicht vergeben: Prüfen Sie die Nummer</translation>
    </message>
    <message>
        <source>the operator barred sending this message</source>
        <translation>der Netzbetreiber hat das Senden dieser Nachricht gesperrt</translation>
    </message>
    <message>
        <source>messages to this number are barred</source>
        <translation>Nachrichten an diese Nummer sind gesperrt</translation>
    </message>
    <message>
        <source>the network refused the message</source>
        <translation>das Netz hat die Nachricht abgelehnt</translation>
    </message>
    <message>
        <source>the recipient cannot be reached now: try again later</source>
        <translation>der Empfänger ist gerade nicht erreichbar: Versuchen Sie es später erneut</translation>
    </message>
    <message>
        <source>the network is out of order: try again later</source>
        <translation>das Netz ist gestört: Versuchen Sie es später erneut</translation>
    </message>
    <message>
        <source>the network failed for a moment: try again</source>
        <translation>das Netz ist kurz ausgefallen: Versuchen Sie es erneut</translation>
    </message>
    <message>
        <source>the network is congested: try again later</source>
        <translation>das Netz ist überlastet: Versuchen Sie es später erneut</translation>
    </message>
    <message>
        <source>the SIM&apos;s subscription does not include this service</source>
        <translation>der Vertrag der SIM-Karte umfasst diesen Dienst nicht</translation>
    </message>
    <message>
        <source>there is no message at that index</source>
        <translation>an dieser Stelle gibt es keine Nachricht</translation>
    </message>
    <message>
        <source>the message store is full</source>
        <translation>der Nachrichtenspeicher ist voll</translation>
    </message>
    <message>
        <source>delete messages first (dialtone sms list, then dialtone sms delete ID)</source>
        <translation>Löschen Sie zuerst Nachrichten (dialtone sms list, dann dialtone sms delete ID)</translation>
    </message>
    <message>
        <source>delete messages first</source>
        <translation>Löschen Sie zuerst Nachrichten</translation>
    </message>
    <message>
        <source>the service centre&apos;s number is not known</source>
        <translation>die Nummer der SMS-Zentrale ist nicht bekannt</translation>
    </message>
    <message>
        <source>set it with dialtone sms sc NUMBER</source>
        <translation>Legen Sie sie mit dialtone sms sc NUMMER fest</translation>
    </message>
    <message>
        <source>set it in the message settings</source>
        <translation>Legen Sie sie in den Nachrichteneinstellungen fest</translation>
    </message>
    <message>
        <source>the SIM is blocked: its PUK attempts are used up, only the operator can replace it</source>
        <translation>die SIM-Karte ist blockiert: Ihre PUK-Versuche sind aufgebraucht, nur der Netzbetreiber kann sie ersetzen</translation>
    </message>
    <message>
        <source>the modem is locked (%1): it needs its unlock code from the seller</source>
        <translation>das Modem ist gesperrt (%1): Es braucht seinen Entsperrcode vom Verkäufer</translation>
    </message>
</context>
<context>
    <name>LocaleFormat</name>
    <message>
        <source>%1/s</source>
        <translation>%1/s</translation>
    </message>
</context>
<context>
    <name>LocalizedStrings</name>
    <message>
        <source>Available</source>
        <translation>Verfügbar</translation>
    </message>
    <message>
        <source>Current</source>
        <translation>Aktuell</translation>
    </message>
    <message>
        <source>Forbidden</source>
        <translation>Gesperrt</translation>
    </message>
    <message>
        <source>Connect</source>
        <translation>Verbinden</translation>
    </message>
    <message>
        <source>Disconnect</source>
        <translation>Trennen</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>Warnung</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>There is no connection profile to dial. Add one in Settings, Profiles.</source>
        <translation>Es gibt kein Verbindungsprofil zum Wählen. Legen Sie eines unter „Einstellungen“, „Profile“ an.</translation>
    </message>
    <message>
        <source>The network did not answer in time. Please try again later.</source>
        <translation>Das Netz hat nicht rechtzeitig geantwortet. Bitte versuchen Sie es später erneut.</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>Dialtone</source>
        <translation>Dialtone</translation>
    </message>
    <message>
        <source>Unlock the SIM…</source>
        <translation>SIM-Karte entsperren…</translation>
    </message>
    <message>
        <source>Show Dialtone</source>
        <translation>Dialtone anzeigen</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>Beenden</translation>
    </message>
    <message>
        <source>Connected</source>
        <translation>Verbunden</translation>
    </message>
    <message>
        <source>Not connected</source>
        <translation>Nicht verbunden</translation>
    </message>
    <message>
        <source>Dialtone: %1</source>
        <translation>Dialtone: %1</translation>
    </message>
    <message>
        <source>Dialtone: %1 (%2)</source>
        <translation>Dialtone: %1 (%2)</translation>
    </message>
    <message>
        <source>&lt;h2&gt;No modem&lt;/h2&gt;&lt;p&gt;Plug in your USB modem. Dialtone finds it by itself; there is no need to restart.&lt;/p&gt;</source>
        <translation>&lt;h2&gt;Kein Modem&lt;/h2&gt;&lt;p&gt;Stecken Sie Ihr USB-Modem ein. Dialtone findet es von selbst; ein Neustart ist nicht nötig.&lt;/p&gt;</translation>
    </message>
    <message>
        <source>&lt;h2&gt;Starting the modem…&lt;/h2&gt;</source>
        <translation>&lt;h2&gt;Das Modem wird gestartet…&lt;/h2&gt;</translation>
    </message>
    <message>
        <source>&lt;h2&gt;The SIM card is locked&lt;/h2&gt;&lt;p&gt;Enter its code to go on.&lt;/p&gt;</source>
        <translation>&lt;h2&gt;Die SIM-Karte ist gesperrt&lt;/h2&gt;&lt;p&gt;Geben Sie ihren Code ein, um fortzufahren.&lt;/p&gt;</translation>
    </message>
    <message>
        <source>&lt;h2&gt;No SIM card&lt;/h2&gt;&lt;p&gt;Put a SIM card into the modem and plug it in again.&lt;/p&gt;</source>
        <translation>&lt;h2&gt;Keine SIM-Karte&lt;/h2&gt;&lt;p&gt;Legen Sie eine SIM-Karte in das Modem ein und stecken Sie es wieder ein.&lt;/p&gt;</translation>
    </message>
    <message>
        <source>&lt;h2&gt;The SIM card is blocked&lt;/h2&gt;&lt;p&gt;It accepts no more codes; ask your operator for a new card.&lt;/p&gt;</source>
        <translation>&lt;h2&gt;Die SIM-Karte ist blockiert&lt;/h2&gt;&lt;p&gt;Sie nimmt keine Codes mehr an; fragen Sie Ihren Netzbetreiber nach einer neuen Karte.&lt;/p&gt;</translation>
    </message>
    <message>
        <source>Looking for the cause…</source>
        <translation>Ursache wird gesucht…</translation>
    </message>
    <message>
        <source>&lt;p&gt;&lt;b&gt;What Dialtone checked&lt;/b&gt;&lt;/p&gt;&lt;ul&gt;</source>
        <translation>&lt;p&gt;&lt;b&gt;Was Dialtone geprüft hat&lt;/b&gt;&lt;/p&gt;&lt;ul&gt;</translation>
    </message>
    <message>
        <source>Modem functions</source>
        <translation>Modemfunktionen</translation>
    </message>
    <message>
        <source>Connecting…</source>
        <translation>Verbindung wird hergestellt …</translation>
    </message>
    <message>
        <source>%1, roaming</source>
        <translation>%1, Roaming</translation>
    </message>
</context>
<context>
    <name>MessageText</name>
    <message>
        <source>Delivered</source>
        <translation>Zugestellt</translation>
    </message>
    <message>
        <source>Not yet delivered (the network keeps trying)</source>
        <translation>Noch nicht zugestellt (das Netz versucht es weiter)</translation>
    </message>
    <message>
        <source>Not delivered</source>
        <translation>Nicht zugestellt</translation>
    </message>
    <message>
        <source>1 character left</source>
        <translation>Noch 1 Zeichen</translation>
    </message>
    <message>
        <source>%1 characters left</source>
        <translation>Noch %1 Zeichen</translation>
    </message>
    <message>
        <source>1 part</source>
        <translation>1 Teil</translation>
    </message>
    <message>
        <source>%1 parts</source>
        <translation>%1 Teile</translation>
    </message>
</context>
<context>
    <name>MessagesPlugin</name>
    <message>
        <source>New</source>
        <translation>Neu</translation>
    </message>
    <message>
        <source>Reply</source>
        <translation>Antworten</translation>
    </message>
    <message>
        <source>Forward</source>
        <translation>Weiterleiten</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>Move to</source>
        <translation>Verschieben nach</translation>
    </message>
    <message>
        <source>Archive</source>
        <translation>Archiv</translation>
    </message>
    <message>
        <source>Drafts</source>
        <translation>Entwürfe</translation>
    </message>
    <message>
        <source>Outbox</source>
        <translation>Postausgang</translation>
    </message>
    <message>
        <source>Sent</source>
        <translation>Gesendet</translation>
    </message>
    <message>
        <source>Reload</source>
        <translation>Neu laden</translation>
    </message>
    <message>
        <source>Reading the messages from the modem…</source>
        <translation>Die Nachrichten werden vom Modem gelesen…</translation>
    </message>
    <message>
        <source>No messages</source>
        <translation>Keine Nachrichten</translation>
    </message>
    <message>
        <source>Select a message to read it.</source>
        <translation>Wählen Sie eine Nachricht aus, um sie zu lesen.</translation>
    </message>
    <message>
        <source>The modem&apos;s messages could not be prepared: %1. Press Reload to try again.</source>
        <translation>Die Nachrichten des Modems konnten nicht vorbereitet werden: %1. Klicken Sie auf „Neu laden“, um es erneut zu versuchen.</translation>
    </message>
    <message>
        <source>The messages could not be read from the modem: %1. Press Reload to try again.</source>
        <translation>Die Nachrichten konnten nicht vom Modem gelesen werden: %1. Klicken Sie auf „Neu laden“, um es erneut zu versuchen.</translation>
    </message>
    <message>
        <source>New message</source>
        <translation>Neue Nachricht</translation>
    </message>
    <message>
        <source>The delivery report could not be saved with the sent message.</source>
        <translation>Der Zustellbericht konnte nicht bei der gesendeten Nachricht gespeichert werden.</translation>
    </message>
    <message>
        <source>Delivery report</source>
        <translation>Zustellbericht</translation>
    </message>
    <message>
        <source>SIM card</source>
        <translation>SIM-Karte</translation>
    </message>
    <message>
        <source>Modem</source>
        <translation>Modem</translation>
    </message>
    <message>
        <source>On this computer</source>
        <translation>Auf diesem Computer</translation>
    </message>
    <message>
        <source>%1 unread</source>
        <translation>%1 ungelesen</translation>
    </message>
    <message>
        <source>From / To</source>
        <translation>Von / An</translation>
    </message>
    <message>
        <source>To</source>
        <translation>An</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>Datum</translation>
    </message>
    <message>
        <source>Message</source>
        <translation>Nachricht</translation>
    </message>
    <message>
        <source>Status</source>
        <translation>Status</translation>
    </message>
    <message>
        <source>Not sent</source>
        <translation>Nicht gesendet</translation>
    </message>
    <message>
        <source>Incomplete (parts missing)</source>
        <translation>Unvollständig (Teile fehlen)</translation>
    </message>
    <message>
        <source>The modem&apos;s messages show here once the modem is ready.</source>
        <translation>Die Nachrichten des Modems erscheinen hier, sobald das Modem bereit ist.</translation>
    </message>
    <message>
        <source>To: %1</source>
        <translation>An: %1</translation>
    </message>
    <message>
        <source>From: %1</source>
        <translation>Von: %1</translation>
    </message>
    <message>
        <source>(Some parts of this message have not arrived.)</source>
        <translation>(Einige Teile dieser Nachricht sind nicht angekommen.)</translation>
    </message>
    <message>
        <source>Delivery report: %1 (%2)</source>
        <translation>Zustellbericht: %1 (%2)</translation>
    </message>
    <message>
        <source>The unsent message could not be kept in the outbox; copy its text.</source>
        <translation>Die nicht gesendete Nachricht konnte nicht im Postausgang behalten werden; kopieren Sie ihren Text.</translation>
    </message>
    <message>
        <source>The message could not be written to the message store in your home folder. Check that the disk is not full.</source>
        <translation>Die Nachricht konnte nicht in den Nachrichtenspeicher in Ihrem Persönlichen Ordner geschrieben werden. Prüfen Sie, ob der Datenträger voll ist.</translation>
    </message>
    <message>
        <source>New message to %1</source>
        <translation>Neue Nachricht an %1</translation>
    </message>
    <message>
        <source>Delete message</source>
        <translation>Nachricht löschen</translation>
    </message>
    <message>
        <source>Delete the selected message? This cannot be undone.</source>
        <translation>Die ausgewählte Nachricht löschen? Das kann nicht rückgängig gemacht werden.</translation>
    </message>
    <message>
        <source>The message store could not be written; the message is still there.</source>
        <translation>Der Nachrichtenspeicher konnte nicht geschrieben werden; die Nachricht ist noch da.</translation>
    </message>
    <message>
        <source>The message could not be deleted: %1.</source>
        <translation>Die Nachricht konnte nicht gelöscht werden: %1.</translation>
    </message>
    <message>
        <source>The archive could not be written; the message stays on the modem.</source>
        <translation>Das Archiv konnte nicht geschrieben werden; die Nachricht bleibt auf dem Modem.</translation>
    </message>
    <message>
        <source>The message was archived but could not be removed from the modem: %1.</source>
        <translation>Die Nachricht wurde archiviert, konnte aber nicht vom Modem entfernt werden: %1.</translation>
    </message>
    <message>
        <source>The message was changed by another program meanwhile; see the list again.</source>
        <translation>Die Nachricht wurde inzwischen von einem anderen Programm geändert; sehen Sie sich die Liste noch einmal an.</translation>
    </message>
    <message>
        <source>The message store could not be written; check the disk and try again.</source>
        <translation>Der Nachrichtenspeicher konnte nicht geschrieben werden; prüfen Sie den Datenträger und versuchen Sie es erneut.</translation>
    </message>
    <message>
        <source>Messages</source>
        <translation>Nachrichten</translation>
    </message>
    <message>
        <source>Message folders</source>
        <translation>Nachrichtenordner</translation>
    </message>
    <message>
        <source>Message text</source>
        <translation>Nachrichtentext</translation>
    </message>
    <message>
        <source>Search all messages</source>
        <translation>Alle Nachrichten durchsuchen</translation>
    </message>
    <message>
        <source>Any part of a message&apos;s text, a number or a contact&apos;s name</source>
        <translation>Ein Teil des Nachrichtentexts, eine Nummer oder der Name eines Kontakts</translation>
    </message>
    <message>
        <source>Conversations</source>
        <translation>Unterhaltungen</translation>
    </message>
</context>
<context>
    <name>ModemLink</name>
    <message>
        <source>No modem</source>
        <translation>Kein Modem</translation>
    </message>
    <message>
        <source>Starting the modem…</source>
        <translation>Das Modem wird gestartet…</translation>
    </message>
    <message>
        <source>PIN required</source>
        <translation>PIN erforderlich</translation>
    </message>
    <message>
        <source>PUK required</source>
        <translation>PUK erforderlich</translation>
    </message>
    <message>
        <source>No SIM card</source>
        <translation>Keine SIM-Karte</translation>
    </message>
    <message>
        <source>SIM card blocked</source>
        <translation>SIM-Karte blockiert</translation>
    </message>
    <message>
        <source>Ready</source>
        <translation>Bereit</translation>
    </message>
</context>
<context>
    <name>NetworkPlugin</name>
    <message>
        <source>available</source>
        <translation>verfügbar</translation>
    </message>
    <message>
        <source>current</source>
        <translation>aktuell</translation>
    </message>
    <message>
        <source>forbidden</source>
        <translation>gesperrt</translation>
    </message>
    <message>
        <source>unknown</source>
        <translation>unbekannt</translation>
    </message>
    <message>
        <source>%1 failed: the modem was unplugged.</source>
        <translation>%1 fehlgeschlagen: Das Modem wurde abgezogen.</translation>
    </message>
    <message>
        <source>%1 failed: %2 (code %3).</source>
        <translation>%1 fehlgeschlagen: %2 (Code %3).</translation>
    </message>
    <message>
        <source>All bands</source>
        <translation>Alle Frequenzbänder</translation>
    </message>
    <message>
        <source>GSM 900/1800</source>
        <translation>GSM 900/1800</translation>
    </message>
    <message>
        <source>GSM 850/1900</source>
        <translation>GSM 850/1900</translation>
    </message>
    <message>
        <source>UMTS 2100</source>
        <translation>UMTS 2100</translation>
    </message>
    <message>
        <source>UMTS 850/1900</source>
        <translation>UMTS 850/1900</translation>
    </message>
    <message>
        <source>Automatic</source>
        <translation>Automatisch</translation>
    </message>
    <message>
        <source>3G preferred</source>
        <translation>3G bevorzugt</translation>
    </message>
    <message>
        <source>2G (GSM) only</source>
        <translation>Nur 2G (GSM)</translation>
    </message>
    <message>
        <source>2G preferred</source>
        <translation>2G bevorzugt</translation>
    </message>
    <message>
        <source>3G (UMTS) only</source>
        <translation>Nur 3G (UMTS)</translation>
    </message>
    <message>
        <source>Current network</source>
        <translation>Aktuelles Netz</translation>
    </message>
    <message>
        <source>Operator:</source>
        <translation>Netzbetreiber:</translation>
    </message>
    <message>
        <source>Registration:</source>
        <translation>Anmeldung:</translation>
    </message>
    <message>
        <source>Technology:</source>
        <translation>Technik:</translation>
    </message>
    <message>
        <source>Bearer:</source>
        <translation>Übertragungsart:</translation>
    </message>
    <message>
        <source>Signal:</source>
        <translation>Signal:</translation>
    </message>
    <message>
        <source>Roaming:</source>
        <translation>Roaming:</translation>
    </message>
    <message>
        <source>Selection:</source>
        <translation>Netzwahl:</translation>
    </message>
    <message>
        <source>Available networks</source>
        <translation>Verfügbare Netze</translation>
    </message>
    <message>
        <source>Search networks</source>
        <translation>Netze suchen</translation>
    </message>
    <message>
        <source>Search to see the networks in reach; this can take a minute.</source>
        <translation>Suchen Sie, um die erreichbaren Netze zu sehen; das kann eine Minute dauern.</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Short name</source>
        <translation>Kurzname</translation>
    </message>
    <message>
        <source>Code</source>
        <translation>Code</translation>
    </message>
    <message>
        <source>Technology</source>
        <translation>Technik</translation>
    </message>
    <message>
        <source>Status</source>
        <translation>Status</translation>
    </message>
    <message>
        <source>Automatic selection</source>
        <translation>Automatische Netzwahl</translation>
    </message>
    <message>
        <source>Manual: the network chosen above</source>
        <translation>Manuell: das oben gewählte Netz</translation>
    </message>
    <message>
        <source>Register</source>
        <translation>Anmelden</translation>
    </message>
    <message>
        <source>Band and mode</source>
        <translation>Frequenzband und Modus</translation>
    </message>
    <message>
        <source>Apply</source>
        <translation>Übernehmen</translation>
    </message>
    <message>
        <source>Band:</source>
        <translation>Frequenzband:</translation>
    </message>
    <message>
        <source>Mode:</source>
        <translation>Modus:</translation>
    </message>
    <message>
        <source>Band and mode: %1.</source>
        <translation>Frequenzband und Modus: %1.</translation>
    </message>
    <message>
        <source>Band mask %1</source>
        <translation>Bandmaske %1</translation>
    </message>
    <message>
        <source>Other (set by another program)</source>
        <translation>Andere (von einem anderen Programm gesetzt)</translation>
    </message>
    <message>
        <source>automatic</source>
        <translation>automatisch</translation>
    </message>
    <message>
        <source>manual</source>
        <translation>manuell</translation>
    </message>
    <message>
        <source>mode %1</source>
        <translation>Modus %1</translation>
    </message>
    <message>
        <source>Searching for networks… this can take a minute or two.</source>
        <translation>Netze werden gesucht… das kann ein, zwei Minuten dauern.</translation>
    </message>
    <message>
        <source>The search</source>
        <translation>Suche</translation>
    </message>
    <message>
        <source> Try again.</source>
        <translation> Versuchen Sie es erneut.</translation>
    </message>
    <message>
        <source>No networks found. Check the antenna and search again.</source>
        <translation>Keine Netze gefunden. Prüfen Sie die Antenne und suchen Sie erneut.</translation>
    </message>
    <message numerus="yes">
        <source>%n network(s) found.</source>
        <translation>
            <numerusform>%n Netz gefunden.</numerusform>
            <numerusform>%n Netze gefunden.</numerusform>
        </translation>
    </message>
    <message>
        <source>automatic selection</source>
        <translation>automatische Netzwahl</translation>
    </message>
    <message>
        <source>Registering…</source>
        <translation>Anmeldung läuft…</translation>
    </message>
    <message>
        <source>Registering with %1…</source>
        <translation>Anmeldung bei %1…</translation>
    </message>
    <message>
        <source>Registering with %1</source>
        <translation>Anmeldung bei %1</translation>
    </message>
    <message>
        <source> Choose another network or automatic selection.</source>
        <translation> Wählen Sie ein anderes Netz oder die automatische Netzwahl.</translation>
    </message>
    <message>
        <source>Registered: %1.</source>
        <translation>Angemeldet: %1.</translation>
    </message>
    <message>
        <source>Applying…</source>
        <translation>Wird übernommen…</translation>
    </message>
    <message>
        <source>Band and mode set.</source>
        <translation>Frequenzband und Modus eingestellt.</translation>
    </message>
    <message>
        <source>Setting the band</source>
        <translation>Einstellen des Frequenzbands</translation>
    </message>
    <message>
        <source> Choose &quot;All bands&quot; and try again.</source>
        <translation> Wählen Sie „Alle Frequenzbänder“ und versuchen Sie es erneut.</translation>
    </message>
    <message>
        <source>The modem refused this mode (code %1). Choose &quot;Automatic&quot; or another mode it supports.</source>
        <translation>Das Modem hat diesen Modus abgelehnt (Code %1). Wählen Sie „Automatisch“ oder einen anderen Modus, den es unterstützt.</translation>
    </message>
    <message>
        <source>Setting the mode</source>
        <translation>Einstellen des Modus</translation>
    </message>
    <message>
        <source>Searching…</source>
        <translation>Suche läuft…</translation>
    </message>
    <message>
        <source>Network</source>
        <translation>Netz</translation>
    </message>
    <message>
        <source>Signal finder…</source>
        <translation>Signalsuche…</translation>
    </message>
    <message>
        <source>Find the best place for the modem with a large gauge read once a second</source>
        <translation>Den besten Platz für das Modem finden, mit einer großen Anzeige, die jede Sekunde gelesen wird</translation>
    </message>
</context>
<context>
    <name>PinDialog</name>
    <message>
        <source>SIM card blocked</source>
        <translation>SIM-Karte blockiert</translation>
    </message>
    <message>
        <source>SIM card locked</source>
        <translation>SIM-Karte gesperrt</translation>
    </message>
    <message>
        <source>The SIM card is blocked. Enter the PUK from the card&apos;s holder and choose a new PIN.</source>
        <translation>Die SIM-Karte ist blockiert. Geben Sie die PUK aus dem Kartenbrief ein und wählen Sie eine neue PIN.</translation>
    </message>
    <message>
        <source>The SIM card is locked. Enter its PIN to use the modem.</source>
        <translation>Die SIM-Karte ist gesperrt. Geben Sie ihre PIN ein, um das Modem zu nutzen.</translation>
    </message>
    <message>
        <source>PUK:</source>
        <translation>PUK:</translation>
    </message>
    <message>
        <source>PIN:</source>
        <translation>PIN:</translation>
    </message>
    <message>
        <source>New PIN:</source>
        <translation>Neue PIN:</translation>
    </message>
    <message>
        <source>Repeat new PIN:</source>
        <translation>Neue PIN wiederholen:</translation>
    </message>
    <message>
        <source>Attempts left: %1</source>
        <translation>Verbleibende Versuche: %1</translation>
    </message>
    <message>
        <source>The PUK has 8 digits; the new PIN 4 to 8, typed twice the same.</source>
        <translation>Die PUK hat 8 Ziffern; die neue PIN 4 bis 8, zweimal gleich eingegeben.</translation>
    </message>
    <message>
        <source>The PIN has 4 to 8 digits.</source>
        <translation>Die PIN hat 4 bis 8 Ziffern.</translation>
    </message>
    <message>
        <source>Wrong code.</source>
        <translation>Falscher Code.</translation>
    </message>
</context>
<context>
    <name>PinSettingsPage</name>
    <message>
        <source>PIN request</source>
        <translation>PIN-Abfrage</translation>
    </message>
    <message>
        <source>At start:</source>
        <translation>Beim Start:</translation>
    </message>
    <message>
        <source>Attempts left:</source>
        <translation>Verbleibende Versuche:</translation>
    </message>
    <message>
        <source>Current PIN:</source>
        <translation>Aktuelle PIN:</translation>
    </message>
    <message>
        <source>Ask for the PIN at start</source>
        <translation>Beim Start nach der PIN fragen</translation>
    </message>
    <message>
        <source>Change PIN</source>
        <translation>PIN ändern</translation>
    </message>
    <message>
        <source>New PIN:</source>
        <translation>Neue PIN:</translation>
    </message>
    <message>
        <source>New PIN again:</source>
        <translation>Neue PIN wiederholen:</translation>
    </message>
    <message>
        <source>The PIN can only be changed while the modem asks for it at start.</source>
        <translation>Die PIN lässt sich nur ändern, solange das Modem beim Start nach ihr fragt.</translation>
    </message>
    <message>
        <source>PIN %1, PUK %2</source>
        <translation>PIN %1, PUK %2</translation>
    </message>
    <message>
        <source>A PIN has 4 to 8 digits.</source>
        <translation>Eine PIN hat 4 bis 8 Ziffern.</translation>
    </message>
    <message>
        <source>unknown</source>
        <translation>unbekannt</translation>
    </message>
    <message>
        <source>the modem asks for the PIN</source>
        <translation>das Modem fragt nach der PIN</translation>
    </message>
    <message>
        <source>the modem does not ask for the PIN</source>
        <translation>das Modem fragt nicht nach der PIN</translation>
    </message>
    <message>
        <source>Please wait…</source>
        <translation>Bitte warten…</translation>
    </message>
    <message>
        <source>Switching the PIN request on</source>
        <translation>Einschalten der PIN-Abfrage</translation>
    </message>
    <message>
        <source>Switching the PIN request off</source>
        <translation>Ausschalten der PIN-Abfrage</translation>
    </message>
    <message>
        <source>The modem asks for the PIN from now on.</source>
        <translation>Das Modem fragt ab jetzt nach der PIN.</translation>
    </message>
    <message>
        <source>The modem no longer asks for the PIN.</source>
        <translation>Das Modem fragt nicht mehr nach der PIN.</translation>
    </message>
    <message>
        <source>The new PIN and its repetition differ; type them again.</source>
        <translation>Die neue PIN und ihre Wiederholung stimmen nicht überein; geben Sie beide erneut ein.</translation>
    </message>
    <message>
        <source>Changing the PIN</source>
        <translation>Ändern der PIN</translation>
    </message>
    <message>
        <source>The PIN was changed.</source>
        <translation>Die PIN wurde geändert.</translation>
    </message>
    <message>
        <source>%1 failed: the PIN was wrong. Attempts left are shown above; after the last one the SIM needs the PUK from your operator.</source>
        <translation>%1 fehlgeschlagen: Die PIN war falsch. Die verbleibenden Versuche stehen oben; nach dem letzten braucht die SIM-Karte die PUK Ihres Netzbetreibers.</translation>
    </message>
    <message>
        <source>%1 failed: the SIM is blocked and needs the PUK from your operator.</source>
        <translation>%1 fehlgeschlagen: Die SIM-Karte ist blockiert und braucht die PUK Ihres Netzbetreibers.</translation>
    </message>
    <message>
        <source>%1 failed: the modem was unplugged.</source>
        <translation>%1 fehlgeschlagen: Das Modem wurde abgezogen.</translation>
    </message>
    <message>
        <source>%1 failed: %2 (code %3).</source>
        <translation>%1 fehlgeschlagen: %2 (Code %3).</translation>
    </message>
    <message>
        <source>Stop asking for the PIN at start</source>
        <translation>Beim Start nicht mehr nach der PIN fragen</translation>
    </message>
</context>
<context>
    <name>ProfileDialog</name>
    <message>
        <source>New profile</source>
        <translation>Neues Profil</translation>
    </message>
    <message>
        <source>Edit profile</source>
        <translation>Profil bearbeiten</translation>
    </message>
    <message>
        <source>Name:</source>
        <translation>Name:</translation>
    </message>
    <message>
        <source>APN:</source>
        <translation>APN:</translation>
    </message>
    <message>
        <source>Number:</source>
        <translation>Nummer:</translation>
    </message>
    <message>
        <source>User name:</source>
        <translation>Benutzername:</translation>
    </message>
    <message>
        <source>Password:</source>
        <translation>Passwort:</translation>
    </message>
    <message>
        <source>Any (PAP or CHAP)</source>
        <translation>Beliebig (PAP oder CHAP)</translation>
    </message>
    <message>
        <source>PAP</source>
        <translation>PAP</translation>
    </message>
    <message>
        <source>CHAP</source>
        <translation>CHAP</translation>
    </message>
    <message>
        <source>Authentication:</source>
        <translation>Authentifizierung:</translation>
    </message>
    <message>
        <source>Your operator tells you the APN; leave user name and password empty if it does not ask for them.</source>
        <translation>Den APN nennt Ihnen Ihr Netzbetreiber; lassen Sie Benutzername und Passwort leer, wenn er keine verlangt.</translation>
    </message>
    <message>
        <source>Give the profile a name.</source>
        <translation>Geben Sie dem Profil einen Namen.</translation>
    </message>
    <message>
        <source>Enter the number to dial (usually *99#).</source>
        <translation>Geben Sie die Einwahlnummer ein (meist *99#).</translation>
    </message>
    <message>
        <source>the APN</source>
        <translation>der APN</translation>
    </message>
    <message>
        <source>the number</source>
        <translation>die Nummer</translation>
    </message>
    <message>
        <source>the user name</source>
        <translation>der Benutzername</translation>
    </message>
    <message>
        <source>The fields cannot hold line breaks.</source>
        <translation>Die Felder dürfen keine Zeilenumbrüche enthalten.</translation>
    </message>
</context>
<context>
    <name>ProfilesPage</name>
    <message>
        <source>The profile tells the modem how to connect (APN, number, account). Profiles marked &quot;SIM&quot; come with your operator and cannot be changed.</source>
        <translation>Das Profil sagt dem Modem, wie es sich verbindet (APN, Nummer, Zugangsdaten). Mit „SIM“ markierte Profile kommen von Ihrem Netzbetreiber und lassen sich nicht ändern.</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>APN</source>
        <translation>APN</translation>
    </message>
    <message>
        <source>Number</source>
        <translation>Nummer</translation>
    </message>
    <message>
        <source>From</source>
        <translation>Herkunft</translation>
    </message>
    <message>
        <source>Default</source>
        <translation>Standard</translation>
    </message>
    <message>
        <source>No profiles yet. Add the one your operator gives you.</source>
        <translation>Noch keine Profile. Legen Sie das an, das Ihnen Ihr Netzbetreiber nennt.</translation>
    </message>
    <message>
        <source>Add…</source>
        <translation>Hinzufügen…</translation>
    </message>
    <message>
        <source>Edit…</source>
        <translation>Bearbeiten…</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>Make default</source>
        <translation>Als Standard festlegen</translation>
    </message>
    <message>
        <source>SIM</source>
        <translation>SIM</translation>
    </message>
    <message>
        <source>You</source>
        <translation>Eigenes</translation>
    </message>
    <message>
        <source>yes</source>
        <translation>ja</translation>
    </message>
    <message>
        <source>The profile could not be saved. Check that your configuration folder is writable.</source>
        <translation>Das Profil konnte nicht gespeichert werden. Prüfen Sie, ob Ihr Konfigurationsordner beschreibbar ist.</translation>
    </message>
    <message>
        <source>Profile &quot;%1&quot; added.</source>
        <translation>Profil „%1“ hinzugefügt.</translation>
    </message>
    <message>
        <source>Profile &quot;%1&quot; saved.</source>
        <translation>Profil „%1“ gespeichert.</translation>
    </message>
    <message>
        <source>The profile is gone meanwhile; add it again.</source>
        <translation>Das Profil ist inzwischen nicht mehr vorhanden; legen Sie es erneut an.</translation>
    </message>
    <message>
        <source>Delete profile</source>
        <translation>Profil löschen</translation>
    </message>
    <message>
        <source>Delete the profile &quot;%1&quot;?</source>
        <translation>Das Profil „%1“ löschen?</translation>
    </message>
    <message>
        <source>Profile &quot;%1&quot; deleted.</source>
        <translation>Profil „%1“ gelöscht.</translation>
    </message>
    <message>
        <source>The profile could not be deleted.</source>
        <translation>Das Profil konnte nicht gelöscht werden.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is the default profile now.</source>
        <translation>„%1“ ist jetzt das Standardprofil.</translation>
    </message>
    <message>
        <source>The profile could not be made the default.</source>
        <translation>Das Profil konnte nicht als Standard festgelegt werden.</translation>
    </message>
    <message>
        <source>Connection profiles</source>
        <translation>Verbindungsprofile</translation>
    </message>
</context>
<context>
    <name>SettingsPlugin</name>
    <message>
        <source>Profiles</source>
        <translation>Profile</translation>
    </message>
    <message>
        <source>PIN</source>
        <translation>PIN</translation>
    </message>
    <message>
        <source>Messages</source>
        <translation>Nachrichten</translation>
    </message>
    <message>
        <source>Play a sound for new messages</source>
        <translation>Bei neuen Nachrichten einen Ton abspielen</translation>
    </message>
    <message>
        <source>New messages and delivery reports are always shown as a notification; this adds a sound to it.</source>
        <translation>Neue Nachrichten und Zustellberichte werden immer als Benachrichtigung angezeigt; dies fügt einen Ton hinzu.</translation>
    </message>
    <message>
        <source>Sounds</source>
        <translation>Töne</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>Settings sections</source>
        <translation>Einstellungsbereiche</translation>
    </message>
</context>
<context>
    <name>SignalFinderDialog</name>
    <message>
        <source>Signal finder</source>
        <translation>Signalsuche</translation>
    </message>
    <message>
        <source>Move the modem on its cable, slowly, and watch the gauge: the mark shows the best signal of the last minute.</source>
        <translation>Bewegen Sie das Modem an seinem Kabel langsam hin und her und beobachten Sie die Anzeige: Die Marke zeigt das beste Signal der letzten Minute.</translation>
    </message>
    <message>
        <source>RSCP:</source>
        <translation>RSCP:</translation>
    </message>
    <message>
        <source>Ec/Io:</source>
        <translation>Ec/Io:</translation>
    </message>
    <message>
        <source>Bearer:</source>
        <translation>Übertragungsart:</translation>
    </message>
    <message>
        <source>Cell:</source>
        <translation>Zelle:</translation>
    </message>
    <message>
        <source>Play a tone whose pitch follows the signal</source>
        <translation>Einen Ton spielen, dessen Höhe dem Signal folgt</translation>
    </message>
    <message>
        <source>The signal could not be read: %1</source>
        <translation>Das Signal ließ sich nicht lesen: %1</translation>
    </message>
    <message>
        <source>%1 dBm</source>
        <translation>%1 dBm</translation>
    </message>
    <message>
        <source>not reported</source>
        <translation>nicht gemeldet</translation>
    </message>
    <message>
        <source>%1 dB</source>
        <translation>%1 dB</translation>
    </message>
    <message>
        <source>area %1, cell %2</source>
        <translation>Gebiet %1, Zelle %2</translation>
    </message>
</context>
<context>
    <name>SmsSettingsPage</name>
    <message>
        <source>1 hour</source>
        <translation>1 Stunde</translation>
    </message>
    <message>
        <source>12 hours</source>
        <translation>12 Stunden</translation>
    </message>
    <message>
        <source>1 day</source>
        <translation>1 Tag</translation>
    </message>
    <message>
        <source>2 days</source>
        <translation>2 Tage</translation>
    </message>
    <message>
        <source>1 week</source>
        <translation>1 Woche</translation>
    </message>
    <message>
        <source>As long as possible</source>
        <translation>So lange wie möglich</translation>
    </message>
    <message>
        <source>%1: the modem was unplugged.</source>
        <translation>%1: Das Modem wurde abgezogen.</translation>
    </message>
    <message>
        <source>%1 failed: %2 (code %3).</source>
        <translation>%1 fehlgeschlagen: %2 (Code %3).</translation>
    </message>
    <message>
        <source>Service centre</source>
        <translation>SMS-Zentrale</translation>
    </message>
    <message>
        <source>e.g. +491722270333</source>
        <translation>z. B. +491722270333</translation>
    </message>
    <message>
        <source>Save on SIM</source>
        <translation>Auf der SIM-Karte speichern</translation>
    </message>
    <message>
        <source>Number:</source>
        <translation>Nummer:</translation>
    </message>
    <message>
        <source>Sending and receiving</source>
        <translation>Senden und Empfangen</translation>
    </message>
    <message>
        <source>Messages are valid for:</source>
        <translation>Nachrichten gültig für:</translation>
    </message>
    <message>
        <source>Ask for delivery reports</source>
        <translation>Zustellberichte anfordern</translation>
    </message>
    <message>
        <source>SIM card</source>
        <translation>SIM-Karte</translation>
    </message>
    <message>
        <source>Modem memory</source>
        <translation>Modemspeicher</translation>
    </message>
    <message>
        <source>Keep new messages on:</source>
        <translation>Neue Nachrichten speichern auf:</translation>
    </message>
    <message>
        <source>Apply</source>
        <translation>Übernehmen</translation>
    </message>
    <message>
        <source>Reading the service centre</source>
        <translation>Lesen der SMS-Zentrale</translation>
    </message>
    <message>
        <source>Enter the service centre number, digits with an optional leading +.</source>
        <translation>Geben Sie die Nummer der SMS-Zentrale ein: Ziffern, wahlweise mit führendem +.</translation>
    </message>
    <message>
        <source>Saving…</source>
        <translation>Wird gespeichert…</translation>
    </message>
    <message>
        <source>The service centre number was saved on the SIM.</source>
        <translation>Die Nummer der SMS-Zentrale wurde auf der SIM-Karte gespeichert.</translation>
    </message>
    <message>
        <source>Saving the service centre</source>
        <translation>Speichern der SMS-Zentrale</translation>
    </message>
    <message>
        <source>The settings could not be saved. Check that your configuration folder is writable.</source>
        <translation>Die Einstellungen konnten nicht gespeichert werden. Prüfen Sie, ob Ihr Konfigurationsordner beschreibbar ist.</translation>
    </message>
    <message>
        <source>Message settings applied.</source>
        <translation>Nachrichteneinstellungen übernommen.</translation>
    </message>
    <message>
        <source>Applying…</source>
        <translation>Wird übernommen…</translation>
    </message>
    <message>
        <source>Setting the validity</source>
        <translation>Einstellen der Gültigkeit</translation>
    </message>
    <message>
        <source>Switching delivery reports</source>
        <translation>Umschalten der Zustellberichte</translation>
    </message>
    <message>
        <source>Choosing the storage</source>
        <translation>Wählen des Speichers</translation>
    </message>
</context>
<context>
    <name>StatisticsPlugin</name>
    <message>
        <source>This month</source>
        <translation>Dieser Monat</translation>
    </message>
    <message>
        <source>Last month</source>
        <translation>Letzter Monat</translation>
    </message>
    <message>
        <source>Custom</source>
        <translation>Benutzerdefiniert</translation>
    </message>
    <message>
        <source>Period:</source>
        <translation>Zeitraum:</translation>
    </message>
    <message>
        <source>from</source>
        <translation>von</translation>
    </message>
    <message>
        <source>to</source>
        <translation>bis</translation>
    </message>
    <message>
        <source>In this period</source>
        <translation>In diesem Zeitraum</translation>
    </message>
    <message>
        <source>Sent:</source>
        <translation>Gesendet:</translation>
    </message>
    <message>
        <source>Received:</source>
        <translation>Empfangen:</translation>
    </message>
    <message>
        <source>Total:</source>
        <translation>Gesamt:</translation>
    </message>
    <message>
        <source>Of which roaming:</source>
        <translation>Davon Roaming:</translation>
    </message>
    <message>
        <source>Since the last reset</source>
        <translation>Seit dem letzten Zurücksetzen</translation>
    </message>
    <message>
        <source>Connection time:</source>
        <translation>Verbindungszeit:</translation>
    </message>
    <message>
        <source>Last reset:</source>
        <translation>Zuletzt zurückgesetzt:</translation>
    </message>
    <message>
        <source>Reset…</source>
        <translation>Zurücksetzen…</translation>
    </message>
    <message>
        <source>Set the totals since the last reset to zero; optionally delete the day history</source>
        <translation>Die Summen seit dem letzten Zurücksetzen auf null setzen; wahlweise auch den Tagesverlauf löschen</translation>
    </message>
    <message>
        <source>The first day comes after the last day: choose the days again.</source>
        <translation>Der erste Tag liegt nach dem letzten Tag: Wählen Sie die Tage erneut.</translation>
    </message>
    <message>
        <source>The chart shows the last %1 days of the period; the totals cover all of it.</source>
        <translation>Das Diagramm zeigt die letzten %1 Tage des Zeitraums; die Summen umfassen den ganzen Zeitraum.</translation>
    </message>
    <message>
        <source>Includes the connection in progress.</source>
        <translation>Einschließlich der laufenden Verbindung.</translation>
    </message>
    <message>
        <source>Never</source>
        <translation>Nie</translation>
    </message>
    <message>
        <source>Reset the statistics</source>
        <translation>Statistik zurücksetzen</translation>
    </message>
    <message>
        <source>Set the totals since the last reset to zero? The traffic per day stays unless you delete it too.</source>
        <translation>Die Summen seit dem letzten Zurücksetzen auf null setzen? Der Datenverkehr pro Tag bleibt erhalten, außer Sie löschen ihn ebenfalls.</translation>
    </message>
    <message>
        <source>Reset</source>
        <translation>Zurücksetzen</translation>
    </message>
    <message>
        <source>Also delete the traffic per day</source>
        <translation>Auch den Datenverkehr pro Tag löschen</translation>
    </message>
    <message>
        <source>The totals could not be reset: the settings could not be written. Check that your configuration folder is writable, then try again.</source>
        <translation>Die Summen konnten nicht zurückgesetzt werden: Die Einstellungen ließen sich nicht schreiben. Prüfen Sie, ob Ihr Konfigurationsordner beschreibbar ist, und versuchen Sie es dann erneut.</translation>
    </message>
    <message>
        <source>The totals were reset, but the traffic per day could not be deleted. Check that your data folder is writable, then try again.</source>
        <translation>Die Summen wurden zurückgesetzt, aber der Datenverkehr pro Tag konnte nicht gelöscht werden. Prüfen Sie, ob Ihr Datenordner beschreibbar ist, und versuchen Sie es dann erneut.</translation>
    </message>
    <message>
        <source>Statistics</source>
        <translation>Statistik</translation>
    </message>
    <message>
        <source>Data budget</source>
        <translation>Datenbudget</translation>
    </message>
    <message>
        <source>Set…</source>
        <translation>Festlegen…</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>Entfernen</translation>
    </message>
    <message>
        <source>No SIM seen yet: the budget belongs to a SIM.</source>
        <translation>Noch keine SIM gesehen: Das Budget gehört zu einer SIM.</translation>
    </message>
    <message>
        <source>No budget for this SIM.</source>
        <translation>Kein Budget für diese SIM.</translation>
    </message>
    <message>
        <source>%1 %</source>
        <translation>%1 %</translation>
    </message>
    <message numerus="yes">
        <source>%1; %n day(s) left until %2</source>
        <translation>
            <numerusform>%1; noch %n Tag bis %2</numerusform>
            <numerusform>%1; noch %n Tage bis %2</numerusform>
        </translation>
    </message>
    <message>
        <source>The budget could not be stored: check that your data folder is writable, then try again.</source>
        <translation>Das Budget konnte nicht gespeichert werden: Prüfen Sie, ob Ihr Datenordner beschreibbar ist, und versuchen Sie es erneut.</translation>
    </message>
    <message>
        <source>Traffic</source>
        <translation>Datenverkehr</translation>
    </message>
    <message>
        <source>Signal</source>
        <translation>Signal</translation>
    </message>
    <message>
        <source>Show:</source>
        <translation>Anzeigen:</translation>
    </message>
    <message>
        <source>Day of the signal chart</source>
        <translation>Tag des Signaldiagramms</translation>
    </message>
    <message>
        <source>The budget could not be cleared: check that your data folder is writable, then try again.</source>
        <translation>Das Budget konnte nicht entfernt werden: Prüfen Sie, ob Ihr Datenordner beschreibbar ist, und versuchen Sie es erneut.</translation>
    </message>
</context>
<context>
    <name>StatusBarView</name>
    <message>
        <source>Operator</source>
        <translation>Netzbetreiber</translation>
    </message>
    <message>
        <source>Bearer</source>
        <translation>Übertragungsart</translation>
    </message>
    <message>
        <source>Registration</source>
        <translation>Anmeldung</translation>
    </message>
    <message>
        <source>Connection time and rates</source>
        <translation>Verbindungszeit und Datenraten</translation>
    </message>
    <message>
        <source>No operator</source>
        <translation>Kein Netzbetreiber</translation>
    </message>
    <message>
        <source>Roaming</source>
        <translation>Roaming</translation>
    </message>
    <message>
        <source>Connecting…</source>
        <translation>Verbindung wird hergestellt…</translation>
    </message>
    <message>
        <source>Disconnecting…</source>
        <translation>Verbindung wird getrennt…</translation>
    </message>
    <message>
        <source>Connected</source>
        <translation>Verbunden</translation>
    </message>
    <message>
        <source>Disconnected</source>
        <translation>Getrennt</translation>
    </message>
    <message>
        <source>%1   ↑ %2   ↓ %3</source>
        <translation>%1   ↑ %2   ↓ %3</translation>
    </message>
    <message>
        <source>Share of this SIM&apos;s data budget used in its period</source>
        <translation>Verbrauchter Anteil am Datenbudget dieser SIM im laufenden Zeitraum</translation>
    </message>
    <message numerus="yes">
        <source>Budget %1 %, %n day(s) left</source>
        <translation>
            <numerusform>Budget %1 %, noch %n Tag</numerusform>
            <numerusform>Budget %1 %, noch %n Tage</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>StatusText</name>
    <message>
        <source>unknown (%1)</source>
        <translation>unbekannt (%1)</translation>
    </message>
    <message>
        <source>no SIM</source>
        <translation>keine SIM-Karte</translation>
    </message>
    <message>
        <source>ready</source>
        <translation>bereit</translation>
    </message>
    <message>
        <source>PIN required</source>
        <translation>PIN erforderlich</translation>
    </message>
    <message>
        <source>PUK required</source>
        <translation>PUK erforderlich</translation>
    </message>
    <message>
        <source>PH-SIM PIN required</source>
        <translation>PH-SIM-PIN erforderlich</translation>
    </message>
    <message>
        <source>PH-FSIM PIN required</source>
        <translation>PH-FSIM-PIN erforderlich</translation>
    </message>
    <message>
        <source>PH-FSIM PUK required</source>
        <translation>PH-FSIM-PUK erforderlich</translation>
    </message>
    <message>
        <source>PIN2 required</source>
        <translation>PIN2 erforderlich</translation>
    </message>
    <message>
        <source>PUK2 required</source>
        <translation>PUK2 erforderlich</translation>
    </message>
    <message>
        <source>network PIN required</source>
        <translation>Netz-PIN erforderlich</translation>
    </message>
    <message>
        <source>network PUK required</source>
        <translation>Netz-PUK erforderlich</translation>
    </message>
    <message>
        <source>network subset PIN required</source>
        <translation>Teilnetz-PIN erforderlich</translation>
    </message>
    <message>
        <source>network subset PUK required</source>
        <translation>Teilnetz-PUK erforderlich</translation>
    </message>
    <message>
        <source>provider PIN required</source>
        <translation>Anbieter-PIN erforderlich</translation>
    </message>
    <message>
        <source>provider PUK required</source>
        <translation>Anbieter-PUK erforderlich</translation>
    </message>
    <message>
        <source>corporate PIN required</source>
        <translation>Firmen-PIN erforderlich</translation>
    </message>
    <message>
        <source>corporate PUK required</source>
        <translation>Firmen-PUK erforderlich</translation>
    </message>
    <message>
        <source>blocked</source>
        <translation>blockiert</translation>
    </message>
    <message>
        <source>home network</source>
        <translation>Heimatnetz</translation>
    </message>
    <message>
        <source>roaming</source>
        <translation>Roaming</translation>
    </message>
    <message>
        <source>searching</source>
        <translation>Suche läuft</translation>
    </message>
    <message>
        <source>not registered</source>
        <translation>nicht angemeldet</translation>
    </message>
    <message>
        <source>unknown</source>
        <translation>unbekannt</translation>
    </message>
    <message>
        <source>denied</source>
        <translation>abgewiesen</translation>
    </message>
    <message>
        <source>no service</source>
        <translation>kein Dienst</translation>
    </message>
    <message>
        <source>disconnected</source>
        <translation>getrennt</translation>
    </message>
    <message>
        <source>connecting</source>
        <translation>wird verbunden</translation>
    </message>
    <message>
        <source>connected</source>
        <translation>verbunden</translation>
    </message>
    <message>
        <source>disconnecting</source>
        <translation>wird getrennt</translation>
    </message>
    <message>
        <source>not connected</source>
        <translation>nicht verbunden</translation>
    </message>
    <message>
        <source>success</source>
        <translation>erfolgreich</translation>
    </message>
    <message>
        <source>the modem reported a failure</source>
        <translation>das Modem hat einen Fehler gemeldet</translation>
    </message>
    <message>
        <source>the modem did not answer in time</source>
        <translation>das Modem hat nicht rechtzeitig geantwortet</translation>
    </message>
    <message>
        <source>the request needs an argument</source>
        <translation>die Anfrage braucht ein Argument</translation>
    </message>
    <message>
        <source>SIM not inserted</source>
        <translation>keine SIM-Karte eingelegt</translation>
    </message>
    <message>
        <source>SIM PIN required</source>
        <translation>SIM-PIN erforderlich</translation>
    </message>
    <message>
        <source>SIM PUK required</source>
        <translation>SIM-PUK erforderlich</translation>
    </message>
    <message>
        <source>SIM failure</source>
        <translation>SIM-Karten-Fehler</translation>
    </message>
    <message>
        <source>SIM busy</source>
        <translation>SIM-Karte beschäftigt</translation>
    </message>
    <message>
        <source>SIM wrong</source>
        <translation>falsche SIM-Karte</translation>
    </message>
    <message>
        <source>incorrect password</source>
        <translation>falsches Passwort</translation>
    </message>
    <message>
        <source>SIM PIN2 required</source>
        <translation>SIM-PIN2 erforderlich</translation>
    </message>
    <message>
        <source>SIM PUK2 required</source>
        <translation>SIM-PUK2 erforderlich</translation>
    </message>
    <message>
        <source>network personalization PIN required</source>
        <translation>PIN der Netzsperre erforderlich</translation>
    </message>
    <message>
        <source>network personalization PUK required</source>
        <translation>PUK der Netzsperre erforderlich</translation>
    </message>
    <message>
        <source>network subset personalization PIN required</source>
        <translation>PIN der Teilnetzsperre erforderlich</translation>
    </message>
    <message>
        <source>network subset personalization PUK required</source>
        <translation>PUK der Teilnetzsperre erforderlich</translation>
    </message>
    <message>
        <source>service provider personalization PIN required</source>
        <translation>PIN der Anbietersperre erforderlich</translation>
    </message>
    <message>
        <source>service provider personalization PUK required</source>
        <translation>PUK der Anbietersperre erforderlich</translation>
    </message>
    <message>
        <source>corporate personalization PIN required</source>
        <translation>PIN der Firmensperre erforderlich</translation>
    </message>
    <message>
        <source>corporate personalization PUK required</source>
        <translation>PUK der Firmensperre erforderlich</translation>
    </message>
    <message>
        <source>the answer was withheld</source>
        <translation>die Antwort wurde zurückgehalten</translation>
    </message>
    <message>
        <source>no modem found</source>
        <translation>kein Modem gefunden</translation>
    </message>
    <message>
        <source>the modem&apos;s port could not be opened</source>
        <translation>der Anschluss des Modems ließ sich nicht öffnen</translation>
    </message>
    <message>
        <source>the command was cancelled, or the modem could not be switched to modem mode</source>
        <translation>der Befehl wurde abgebrochen, oder das Modem ließ sich nicht in den Modembetrieb umschalten</translation>
    </message>
    <message>
        <source>the modem did not answer its start-up commands</source>
        <translation>das Modem hat auf seine Startbefehle nicht geantwortet</translation>
    </message>
    <message>
        <source>no worker to send the request to</source>
        <translation>kein Arbeitsprozess, an den die Anfrage gehen könnte</translation>
    </message>
    <message>
        <source>the modem refused the network mode</source>
        <translation>das Modem hat den Netzmodus abgelehnt</translation>
    </message>
    <message>
        <source>unknown request name</source>
        <translation>unbekannter Anfragename</translation>
    </message>
    <message>
        <source>unknown report</source>
        <translation>unbekannte Meldung</translation>
    </message>
    <message>
        <source>the modem service was not found</source>
        <translation>der Modemdienst wurde nicht gefunden</translation>
    </message>
    <message>
        <source>no modem device name</source>
        <translation>kein Gerätename für das Modem</translation>
    </message>
    <message>
        <source>no modem device</source>
        <translation>kein Modemgerät</translation>
    </message>
    <message>
        <source>the message was taken by a filter</source>
        <translation>die Nachricht wurde von einem Filter abgefangen</translation>
    </message>
    <message>
        <source>the request&apos;s argument was refused before reaching the modem</source>
        <translation>das Argument der Anfrage wurde abgelehnt, bevor es das Modem erreichte</translation>
    </message>
    <message>
        <source>not supported by this modem</source>
        <translation>von diesem Modem nicht unterstützt</translation>
    </message>
    <message>
        <source>the modem reported error %1</source>
        <translation>das Modem hat Fehler %1 gemeldet</translation>
    </message>
</context>
<context>
    <name>ToolkitPlugin</name>
    <message>
        <source>&amp;Open</source>
        <translation>Ö&amp;ffnen</translation>
    </message>
    <message>
        <source>&amp;Back</source>
        <translation>&amp;Zurück</translation>
    </message>
    <message>
        <source>&amp;OK</source>
        <translation>&amp;OK</translation>
    </message>
    <message>
        <source>&amp;Yes</source>
        <translation>&amp;Ja</translation>
    </message>
    <message>
        <source>&amp;No</source>
        <translation>&amp;Nein</translation>
    </message>
    <message>
        <source>&amp;End session</source>
        <translation>Sitzung &amp;beenden</translation>
    </message>
    <message>
        <source>&amp;Read again</source>
        <translation>Erneut &amp;lesen</translation>
    </message>
    <message>
        <source>SIM Toolkit</source>
        <translation>SIM-Toolkit</translation>
    </message>
    <message>
        <source>The card&apos;s menu is read when the modem is ready.</source>
        <translation>Das Menü der Karte wird gelesen, sobald das Modem bereit ist.</translation>
    </message>
    <message>
        <source>%1 failed: %2. Try again, or end the session to go back to the main menu.</source>
        <translation>%1 fehlgeschlagen: %2. Versuchen Sie es erneut oder beenden Sie die Sitzung, um zum Hauptmenü zurückzukehren.</translation>
    </message>
    <message>
        <source>The card&apos;s menu could not be read (%1). This SIM card may have no toolkit menu; press Read again to retry.</source>
        <translation>Das Menü der Karte konnte nicht gelesen werden (%1). Diese SIM-Karte hat vielleicht kein Toolkit-Menü; klicken Sie auf „Erneut lesen“, um es noch einmal zu versuchen.</translation>
    </message>
    <message>
        <source>This SIM card has no toolkit menu.</source>
        <translation>Diese SIM-Karte hat kein Toolkit-Menü.</translation>
    </message>
    <message>
        <source>Sending your answer to the card</source>
        <translation>Senden Ihrer Antwort an die Karte</translation>
    </message>
    <message>
        <source>The card ended the dialogue.</source>
        <translation>Die Karte hat den Dialog beendet.</translation>
    </message>
    <message>
        <source>Message from the SIM card</source>
        <translation>Nachricht von der SIM-Karte</translation>
    </message>
    <message>
        <source>Type one key.</source>
        <translation>Drücken Sie eine Taste.</translation>
    </message>
    <message numerus="yes">
        <source>Type %n character(s).</source>
        <translation>
            <numerusform>Geben Sie %n Zeichen ein.</numerusform>
            <numerusform>Geben Sie %n Zeichen ein.</numerusform>
        </translation>
    </message>
    <message>
        <source>Type %1 to %2 characters.</source>
        <translation>Geben Sie %1 bis %2 Zeichen ein.</translation>
    </message>
    <message>
        <source>Digits, *, # and + only.</source>
        <translation>Nur Ziffern, *, # und +.</translation>
    </message>
    <message>
        <source>The card sent a request this program does not show (%1). Press OK to accept it or End session to leave.</source>
        <translation>Die Karte hat eine Anfrage gesendet, die dieses Programm nicht anzeigt (%1). Klicken Sie auf „OK“, um sie anzunehmen, oder auf „Sitzung beenden“, um den Dialog zu verlassen.</translation>
    </message>
    <message>
        <source>the answer</source>
        <translation>die Antwort</translation>
    </message>
    <message>
        <source>Opening…</source>
        <translation>Wird geöffnet…</translation>
    </message>
    <message>
        <source>Toolkit menu</source>
        <translation>Toolkit-Menü</translation>
    </message>
    <message>
        <source>Your answer</source>
        <translation>Ihre Antwort</translation>
    </message>
</context>
<context>
    <name>dialtone</name>
    <message>
        <source>input: %s (%s characters)</source>
        <translation>Eingabe: %s (%s Zeichen)</translation>
    </message>
    <message>
        <source>input: %s (%s characters of %s)</source>
        <translation>Eingabe: %s (%s Zeichen aus %s)</translation>
    </message>
    <message>
        <source>Reply (empty to end):</source>
        <translation>Antwort (leer zum Beenden):</translation>
    </message>
    <message>
        <source>Sending %s...</source>
        <translation>%s wird gesendet …</translation>
    </message>
    <message>
        <source>active</source>
        <translation>aktiv</translation>
    </message>
    <message>
        <source>held</source>
        <translation>gehalten</translation>
    </message>
    <message>
        <source>dialling</source>
        <translation>wird gewählt</translation>
    </message>
    <message>
        <source>ringing at the other end</source>
        <translation>klingelt beim Gegenüber</translation>
    </message>
    <message>
        <source>incoming</source>
        <translation>eingehend</translation>
    </message>
    <message>
        <source>waiting</source>
        <translation>wartend</translation>
    </message>
    <message>
        <source>unknown</source>
        <translation>unbekannt</translation>
    </message>
    <message>
        <source>No calls</source>
        <translation>Keine Anrufe</translation>
    </message>
    <message>
        <source>ID</source>
        <translation>ID</translation>
    </message>
    <message>
        <source>DIR</source>
        <translation>RICHTUNG</translation>
    </message>
    <message>
        <source>STATE</source>
        <translation>ZUSTAND</translation>
    </message>
    <message>
        <source>NUMBER</source>
        <translation>NUMMER</translation>
    </message>
    <message>
        <source>outgoing</source>
        <translation>ausgehend</translation>
    </message>
    <message>
        <source>calling %s</source>
        <translation>%s wird angerufen</translation>
    </message>
    <message>
        <source>Call answered</source>
        <translation>Anruf angenommen</translation>
    </message>
    <message>
        <source>Call ended</source>
        <translation>Anruf beendet</translation>
    </message>
    <message>
        <source>Tones sent</source>
        <translation>Töne gesendet</translation>
    </message>
    <message>
        <source>Run with --help for more information.</source>
        <translation>Mit --help erfahren Sie mehr.</translation>
    </message>
    <message>
        <source>a command is needed: %s.</source>
        <translation>ein Befehl fehlt: %s.</translation>
    </message>
    <message>
        <source>&apos;%s&apos; needs a command: %s.</source>
        <translation>&apos;%s&apos; braucht einen Befehl: %s.</translation>
    </message>
    <message>
        <source>unknown command &apos;%s&apos;.</source>
        <translation>unbekannter Befehl &apos;%s&apos;.</translation>
    </message>
    <message>
        <source>unknown %s command &apos;%s&apos;.</source>
        <translation>&apos;%s&apos; kennt den Befehl &apos;%s&apos; nicht.</translation>
    </message>
    <message>
        <source>Did you mean: %s?</source>
        <translation>Meinten Sie: %s?</translation>
    </message>
    <message>
        <source>Run &apos;%s&apos; for the list.</source>
        <translation>&apos;%s&apos; zeigt die Liste.</translation>
    </message>
    <message>
        <source>The first connection sets up the modem&apos;s dial-up service in %s, which only an administrator may change: the system asks for a password once.</source>
        <translation>Die erste Verbindung richtet den Einwahldienst des Modems in %s ein, das nur ein Administrator ändern darf: Das System fragt einmal nach einem Passwort.</translation>
    </message>
    <message>
        <source>%s  sent %s  received %s  up %s  down %s</source>
        <translation>%s  gesendet %s  empfangen %s  hoch %s  runter %s</translation>
    </message>
    <message>
        <source>Connecting with &quot;%s&quot; (APN %s)...</source>
        <translation>Verbindung mit „%s“ (APN %s) wird aufgebaut …</translation>
    </message>
    <message>
        <source>Connected with &quot;%s&quot;; press Ctrl-C to hang up</source>
        <translation>Verbunden mit „%s“; Strg-C trennt die Verbindung</translation>
    </message>
    <message>
        <source>Connected with &quot;%s&quot;; &quot;dialtone disconnect&quot; hangs up</source>
        <translation>Verbunden mit „%s“; „dialtone disconnect“ trennt die Verbindung</translation>
    </message>
    <message>
        <source>connecting...</source>
        <translation>Verbindung wird aufgebaut …</translation>
    </message>
    <message>
        <source>Not connected</source>
        <translation>Nicht verbunden</translation>
    </message>
    <message>
        <source>Hanging up...</source>
        <translation>Verbindung wird getrennt …</translation>
    </message>
    <message>
        <source>Disconnected after %s: sent %s, received %s</source>
        <translation>Getrennt nach %s: %s gesendet, %s empfangen</translation>
    </message>
    <message>
        <source>The connection ended</source>
        <translation>Die Verbindung wurde beendet</translation>
    </message>
    <message>
        <source>reading the phonebooks</source>
        <translation>Telefonbücher werden gelesen</translation>
    </message>
    <message>
        <source>No contacts</source>
        <translation>Keine Kontakte</translation>
    </message>
    <message>
        <source>STORE</source>
        <translation>SPEICHER</translation>
    </message>
    <message>
        <source>INDEX</source>
        <translation>INDEX</translation>
    </message>
    <message>
        <source>NAME</source>
        <translation>NAME</translation>
    </message>
    <message>
        <source>%s of %s used; names up to %s, numbers up to %s characters</source>
        <translation>%s von %s belegt; Namen bis %s, Nummern bis %s Zeichen</translation>
    </message>
    <message>
        <source>SIM:</source>
        <translation>SIM:</translation>
    </message>
    <message>
        <source>Modem:</source>
        <translation>Modem:</translation>
    </message>
    <message>
        <source>Added to the %s phonebook at index %s</source>
        <translation>Im Telefonbuch %s unter Index %s hinzugefügt</translation>
    </message>
    <message>
        <source>Updated %s %s</source>
        <translation>%s %s geändert</translation>
    </message>
    <message>
        <source>Deleted %s %s</source>
        <translation>%s %s gelöscht</translation>
    </message>
    <message>
        <source>ok</source>
        <translation>ok</translation>
    </message>
    <message>
        <source>FAIL</source>
        <translation>FEHLER</translation>
    </message>
    <message>
        <source>fix: %s</source>
        <translation>Abhilfe: %s</translation>
    </message>
    <message>
        <source>GPS on</source>
        <translation>GPS an</translation>
    </message>
    <message>
        <source>GPS off</source>
        <translation>GPS aus</translation>
    </message>
    <message>
        <source>Operator:</source>
        <translation>Netzbetreiber:</translation>
    </message>
    <message>
        <source>Provider:</source>
        <translation>Anbieter:</translation>
    </message>
    <message>
        <source>Selection:</source>
        <translation>Netzwahl:</translation>
    </message>
    <message>
        <source>automatic</source>
        <translation>automatisch</translation>
    </message>
    <message>
        <source>manual</source>
        <translation>manuell</translation>
    </message>
    <message>
        <source>mode %s</source>
        <translation>Modus %s</translation>
    </message>
    <message>
        <source>Technology:</source>
        <translation>Technologie:</translation>
    </message>
    <message>
        <source>Roaming:</source>
        <translation>Roaming:</translation>
    </message>
    <message>
        <source>Signal:</source>
        <translation>Signal:</translation>
    </message>
    <message>
        <source>Bearer:</source>
        <translation>Übertragung:</translation>
    </message>
    <message>
        <source>Packet service:</source>
        <translation>Paketdienst:</translation>
    </message>
    <message>
        <source>available</source>
        <translation>verfügbar</translation>
    </message>
    <message>
        <source>current</source>
        <translation>aktuell</translation>
    </message>
    <message>
        <source>forbidden</source>
        <translation>gesperrt</translation>
    </message>
    <message>
        <source>STATUS</source>
        <translation>STATUS</translation>
    </message>
    <message>
        <source>SHORT</source>
        <translation>KURZ</translation>
    </message>
    <message>
        <source>CODE</source>
        <translation>CODE</translation>
    </message>
    <message>
        <source>TECHNOLOGY</source>
        <translation>TECHNOLOGIE</translation>
    </message>
    <message>
        <source>Searching for networks, this can take a minute...</source>
        <translation>Netze werden gesucht, das kann eine Minute dauern …</translation>
    </message>
    <message>
        <source>Network selected</source>
        <translation>Netz gewählt</translation>
    </message>
    <message>
        <source>Automatic network selection</source>
        <translation>Automatische Netzwahl</translation>
    </message>
    <message>
        <source>Registration:</source>
        <translation>Anmeldung:</translation>
    </message>
    <message>
        <source>Attempts left:</source>
        <translation>Verbleibende Versuche:</translation>
    </message>
    <message>
        <source>PIN %s, PUK %s</source>
        <translation>PIN %s, PUK %s</translation>
    </message>
    <message>
        <source>PIN request:</source>
        <translation>PIN-Abfrage:</translation>
    </message>
    <message>
        <source>on</source>
        <translation>an</translation>
    </message>
    <message>
        <source>off</source>
        <translation>aus</translation>
    </message>
    <message>
        <source>SIM %s; %s PIN attempts and %s PUK attempts left</source>
        <translation>SIM %s; noch %s PIN-Versuche und %s PUK-Versuche</translation>
    </message>
    <message>
        <source>%s again</source>
        <translation>%s wiederholen</translation>
    </message>
    <message>
        <source>the two new PINs differ; nothing was changed</source>
        <translation>die beiden neuen PINs stimmen nicht überein; nichts wurde geändert</translation>
    </message>
    <message>
        <source>PIN accepted</source>
        <translation>PIN angenommen</translation>
    </message>
    <message>
        <source>New PIN</source>
        <translation>Neue PIN</translation>
    </message>
    <message>
        <source>PUK accepted, new PIN set</source>
        <translation>PUK angenommen, neue PIN gesetzt</translation>
    </message>
    <message>
        <source>Current PIN</source>
        <translation>Aktuelle PIN</translation>
    </message>
    <message>
        <source>PIN changed</source>
        <translation>PIN geändert</translation>
    </message>
    <message>
        <source>PIN request enabled</source>
        <translation>PIN-Abfrage eingeschaltet</translation>
    </message>
    <message>
        <source>PIN request disabled</source>
        <translation>PIN-Abfrage ausgeschaltet</translation>
    </message>
    <message>
        <source>No profiles for this SIM; add one with &quot;dialtone profiles add NAME APN&quot;</source>
        <translation>Keine Profile für diese SIM; fügen Sie eines mit „dialtone profiles add NAME APN“ hinzu</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>APN</source>
        <translation>APN</translation>
    </message>
    <message>
        <source>Number</source>
        <translation>Nummer</translation>
    </message>
    <message>
        <source>for this SIM</source>
        <translation>für diese SIM</translation>
    </message>
    <message>
        <source>default</source>
        <translation>Standard</translation>
    </message>
    <message>
        <source>Password</source>
        <translation>Passwort</translation>
    </message>
    <message>
        <source>Added &quot;%s&quot; as the default</source>
        <translation>„%s“ als Standard hinzugefügt</translation>
    </message>
    <message>
        <source>Added &quot;%s&quot;</source>
        <translation>„%s“ hinzugefügt</translation>
    </message>
    <message>
        <source>&quot;%s&quot; is the default profile</source>
        <translation>„%s“ ist das Standardprofil</translation>
    </message>
    <message>
        <source>Deleted &quot;%s&quot;</source>
        <translation>„%s“ gelöscht</translation>
    </message>
    <message>
        <source>report</source>
        <translation>Bericht</translation>
    </message>
    <message>
        <source>unread</source>
        <translation>neu</translation>
    </message>
    <message>
        <source>read</source>
        <translation>gelesen</translation>
    </message>
    <message>
        <source>unsent</source>
        <translation>Entwurf</translation>
    </message>
    <message>
        <source>sent</source>
        <translation>gesendet</translation>
    </message>
    <message>
        <source>delivery status %s</source>
        <translation>Zustellstatus %s</translation>
    </message>
    <message>
        <source>(incomplete)</source>
        <translation>(unvollständig)</translation>
    </message>
    <message>
        <source>New messages are kept on the computer</source>
        <translation>Neue Nachrichten werden auf dem Computer gespeichert</translation>
    </message>
    <message>
        <source>New messages are kept on the %s</source>
        <translation>Neue Nachrichten werden gespeichert auf: %s</translation>
    </message>
    <message>
        <source>Sending %s messages...</source>
        <translation>%s Nachrichten werden gesendet …</translation>
    </message>
    <message>
        <source>the copy for the sent box could not be written</source>
        <translation>die Kopie für die gesendeten Nachrichten konnte nicht geschrieben werden</translation>
    </message>
    <message>
        <source>Sent to %s</source>
        <translation>An %s gesendet</translation>
    </message>
    <message>
        <source>Sent to %s in %s parts</source>
        <translation>An %s gesendet, in %s Teilen</translation>
    </message>
    <message>
        <source>no message %s (dialtone sms list shows the IDs)</source>
        <translation>keine Nachricht %s („dialtone sms list“ zeigt die IDs)</translation>
    </message>
    <message>
        <source>Deleted message %s</source>
        <translation>Nachricht %s gelöscht</translation>
    </message>
    <message>
        <source>Delivery report from %s: status %s (message %s)</source>
        <translation>Zustellbericht von %s: Status %s (Nachricht %s)</translation>
    </message>
    <message>
        <source>Message %s from %s at %s: %s</source>
        <translation>Nachricht %s von %s am %s: %s</translation>
    </message>
    <message>
        <source>Waiting for messages; press Ctrl-C to stop</source>
        <translation>Warten auf Nachrichten; Strg-C beendet</translation>
    </message>
    <message>
        <source>%s of %s used</source>
        <translation>%s von %s belegt</translation>
    </message>
    <message>
        <source>Service centre:</source>
        <translation>Kurzmitteilungszentrale:</translation>
    </message>
    <message>
        <source>Messages sent from now on are valid for %s</source>
        <translation>Ab jetzt gesendete Nachrichten gelten für %s</translation>
    </message>
    <message>
        <source>Traffic from %s to %s</source>
        <translation>Datenverkehr vom %s bis %s</translation>
    </message>
    <message>
        <source>Day</source>
        <translation>Tag</translation>
    </message>
    <message>
        <source>Sent</source>
        <translation>Gesendet</translation>
    </message>
    <message>
        <source>Received</source>
        <translation>Empfangen</translation>
    </message>
    <message>
        <source>Roaming sent</source>
        <translation>Roaming gesendet</translation>
    </message>
    <message>
        <source>Roaming received</source>
        <translation>Roaming empfangen</translation>
    </message>
    <message>
        <source>(no traffic recorded on these days)</source>
        <translation>(an diesen Tagen kein Datenverkehr aufgezeichnet)</translation>
    </message>
    <message>
        <source>Total</source>
        <translation>Summe</translation>
    </message>
    <message>
        <source>Since the last reset on %s</source>
        <translation>Seit dem letzten Zurücksetzen am %s</translation>
    </message>
    <message>
        <source>Since the first use (never reset)</source>
        <translation>Seit der ersten Nutzung (nie zurückgesetzt)</translation>
    </message>
    <message>
        <source>%s: sent %s, received %s, connection time %s</source>
        <translation>%s: %s gesendet, %s empfangen, Verbindungsdauer %s</translation>
    </message>
    <message>
        <source>The totals since the last reset are zero now (reset on %s); the day history was deleted.</source>
        <translation>Die Summen seit dem letzten Zurücksetzen sind jetzt null (zurückgesetzt am %s); der Tagesverlauf wurde gelöscht.</translation>
    </message>
    <message>
        <source>The totals since the last reset are zero now (reset on %s); the day history was kept.</source>
        <translation>Die Summen seit dem letzten Zurücksetzen sind jetzt null (zurückgesetzt am %s); der Tagesverlauf bleibt erhalten.</translation>
    </message>
    <message>
        <source>Manufacturer:</source>
        <translation>Hersteller:</translation>
    </message>
    <message>
        <source>Model:</source>
        <translation>Modell:</translation>
    </message>
    <message>
        <source>Revision:</source>
        <translation>Firmware:</translation>
    </message>
    <message>
        <source>IMEI:</source>
        <translation>IMEI:</translation>
    </message>
    <message>
        <source>Hardware:</source>
        <translation>Hardware:</translation>
    </message>
    <message>
        <source>IMSI:</source>
        <translation>IMSI:</translation>
    </message>
    <message>
        <source>Number:</source>
        <translation>Rufnummer:</translation>
    </message>
    <message>
        <source>(%s attempts left)</source>
        <translation>(noch %s Versuche)</translation>
    </message>
    <message>
        <source>(%s PUK attempts left)</source>
        <translation>(noch %s PUK-Versuche)</translation>
    </message>
    <message>
        <source>%s, packet %s</source>
        <translation>%s, Paketdienst %s</translation>
    </message>
    <message>
        <source>Connection:</source>
        <translation>Verbindung:</translation>
    </message>
    <message>
        <source>(default)</source>
        <translation>(Standard)</translation>
    </message>
    <message>
        <source>(the card asks for a key)</source>
        <translation>(die Karte erwartet eine Taste)</translation>
    </message>
    <message>
        <source>(the card asks for an answer of %s to %s characters)</source>
        <translation>(die Karte erwartet eine Antwort mit %s bis %s Zeichen)</translation>
    </message>
    <message>
        <source>(the card ended the dialogue)</source>
        <translation>(die Karte hat den Dialog beendet)</translation>
    </message>
    <message>
        <source>(toolkit command %s)</source>
        <translation>(Toolkit-Befehl %s)</translation>
    </message>
    <message>
        <source>reading the SIM&apos;s menu</source>
        <translation>Menü der SIM-Karte wird gelesen</translation>
    </message>
    <message>
        <source>waiting for the SIM&apos;s answer</source>
        <translation>Warten auf die Antwort der SIM-Karte</translation>
    </message>
    <message>
        <source>waiting for the network&apos;s answer</source>
        <translation>Warten auf die Antwort des Netzes</translation>
    </message>
    <message>
        <source>dialogue ended</source>
        <translation>Dialog beendet</translation>
    </message>
    <message>
        <source>USSD dialogue ended</source>
        <translation>USSD-Dialog beendet</translation>
    </message>
    <message>
        <source>band set to %s</source>
        <translation>Frequenzband auf %s gesetzt</translation>
    </message>
    <message>
        <source>mode set to %s</source>
        <translation>Modus auf %s gesetzt</translation>
    </message>
    <message>
        <source>band:</source>
        <translation>Frequenzband:</translation>
    </message>
    <message>
        <source>mode:</source>
        <translation>Modus:</translation>
    </message>
    <message>
        <source>reading the SIM&apos;s IMSI</source>
        <translation>Lesen der IMSI der SIM-Karte</translation>
    </message>
    <message>
        <source>reading the calls</source>
        <translation>Lesen der Anrufe</translation>
    </message>
    <message>
        <source>hanging up</source>
        <translation>Auflegen</translation>
    </message>
    <message>
        <source>reading the phonebooks&apos; use</source>
        <translation>Lesen der Belegung der Telefonbücher</translation>
    </message>
    <message>
        <source>reading the phonebooks&apos; limits</source>
        <translation>Lesen der Grenzen der Telefonbücher</translation>
    </message>
    <message>
        <source>deleting the contact</source>
        <translation>Löschen des Kontakts</translation>
    </message>
    <message>
        <source>switching the GPS on</source>
        <translation>Einschalten des GPS</translation>
    </message>
    <message>
        <source>switching the GPS off</source>
        <translation>Ausschalten des GPS</translation>
    </message>
    <message>
        <source>starting the modem</source>
        <translation>Starten des Modems</translation>
    </message>
    <message>
        <source>%s: the modem was unplugged (plug it in and run the command again)</source>
        <translation>%s: Das Modem wurde abgezogen (stecken Sie es ein und führen Sie den Befehl erneut aus)</translation>
    </message>
    <message>
        <source>reading the SIM&apos;s state</source>
        <translation>Lesen des Zustands der SIM-Karte</translation>
    </message>
    <message>
        <source>reading the network information</source>
        <translation>Lesen der Netzinformationen</translation>
    </message>
    <message>
        <source>searching for networks</source>
        <translation>Suche nach Netzen</translation>
    </message>
    <message>
        <source>selecting the network</source>
        <translation>Wählen des Netzes</translation>
    </message>
    <message>
        <source>selecting automatic mode</source>
        <translation>Einschalten der automatischen Netzwahl</translation>
    </message>
    <message>
        <source>reading the registration</source>
        <translation>Lesen der Anmeldung</translation>
    </message>
    <message>
        <source>reading the modem&apos;s state</source>
        <translation>Lesen des Modemzustands</translation>
    </message>
    <message>
        <source>reading the PIN state</source>
        <translation>Lesen des PIN-Zustands</translation>
    </message>
    <message>
        <source>reading the PIN request</source>
        <translation>Lesen der PIN-Abfrage</translation>
    </message>
    <message>
        <source>verifying the PIN</source>
        <translation>Prüfen der PIN</translation>
    </message>
    <message>
        <source>verifying the PUK</source>
        <translation>Prüfen der PUK</translation>
    </message>
    <message>
        <source>changing the PIN</source>
        <translation>Ändern der PIN</translation>
    </message>
    <message>
        <source>enabling the PIN request</source>
        <translation>Einschalten der PIN-Abfrage</translation>
    </message>
    <message>
        <source>disabling the PIN request</source>
        <translation>Ausschalten der PIN-Abfrage</translation>
    </message>
    <message>
        <source>reading the SIM&apos;s identity</source>
        <translation>Lesen der Kennung der SIM-Karte</translation>
    </message>
    <message>
        <source>reading the network</source>
        <translation>Lesen des Netzes</translation>
    </message>
    <message>
        <source>deleting the message</source>
        <translation>Löschen der Nachricht</translation>
    </message>
    <message>
        <source>moving the message</source>
        <translation>Verschieben der Nachricht</translation>
    </message>
    <message>
        <source>preparing the messages</source>
        <translation>Vorbereiten der Nachrichten</translation>
    </message>
    <message>
        <source>keeping messages on the computer</source>
        <translation>Speichern der Nachrichten auf dem Computer</translation>
    </message>
    <message>
        <source>choosing the storage for new messages</source>
        <translation>Wählen des Speichers für neue Nachrichten</translation>
    </message>
    <message>
        <source>reading the messages</source>
        <translation>Lesen der Nachrichten</translation>
    </message>
    <message>
        <source>asking for a delivery report</source>
        <translation>Anfordern eines Zustellberichts</translation>
    </message>
    <message>
        <source>setting the validity period</source>
        <translation>Setzen der Gültigkeitsdauer</translation>
    </message>
    <message>
        <source>sending the message</source>
        <translation>Senden der Nachricht</translation>
    </message>
    <message>
        <source>reading the storages</source>
        <translation>Lesen der Speicher</translation>
    </message>
    <message>
        <source>setting the service centre</source>
        <translation>Setzen der Kurzmitteilungszentrale</translation>
    </message>
    <message>
        <source>reading the service centre</source>
        <translation>Lesen der Kurzmitteilungszentrale</translation>
    </message>
    <message>
        <source>reading the link&apos;s state</source>
        <translation>Lesen des Verbindungszustands</translation>
    </message>
    <message>
        <source>reading the modem&apos;s identity</source>
        <translation>Lesen der Kennung des Modems</translation>
    </message>
    <message>
        <source>reading the equipment information</source>
        <translation>Lesen der Geräteinformationen</translation>
    </message>
    <message>
        <source>ending the dialogue</source>
        <translation>Beenden des Dialogs</translation>
    </message>
    <message>
        <source>delivered</source>
        <translation>zugestellt</translation>
    </message>
    <message>
        <source>pending</source>
        <translation>ausstehend</translation>
    </message>
    <message>
        <source>not delivered</source>
        <translation>nicht zugestellt</translation>
    </message>
    <message>
        <source>draft</source>
        <translation>Entwurf</translation>
    </message>
    <message>
        <source>failed</source>
        <translation>fehlgeschlagen</translation>
    </message>
    <message>
        <source>in</source>
        <translation>ein</translation>
    </message>
    <message>
        <source>out</source>
        <translation>aus</translation>
    </message>
    <message>
        <source>&quot;%s&quot; names more than one contact; give one of the numbers:%s</source>
        <translation>„%s“ passt auf mehr als einen Kontakt; geben Sie eine der Nummern an:%s</translation>
    </message>
    <message>
        <source>no contact called &quot;%s&quot; in the address book or the phonebooks; give a number</source>
        <translation>kein Kontakt namens „%s“ im Adressbuch oder in den Telefonbüchern; geben Sie eine Nummer an</translation>
    </message>
    <message>
        <source>No messages</source>
        <translation>Keine Nachrichten</translation>
    </message>
    <message>
        <source>Imported %s: %s added, %s merged, %s already there, %s refused (no name, number or e-mail)</source>
        <translation>%s importiert: %s hinzugefügt, %s zusammengeführt, %s schon vorhanden, %s abgelehnt (ohne Name, Nummer oder E-Mail)</translation>
    </message>
    <message>
        <source>Exported %s contacts from %s to %s</source>
        <translation>%s Kontakte aus %s nach %s exportiert</translation>
    </message>
    <message>
        <source>copied</source>
        <translation>kopiert</translation>
    </message>
    <message>
        <source>refused: %s takes numbers of up to %s digits</source>
        <translation>abgelehnt: %s nimmt Nummern mit bis zu %s Ziffern</translation>
    </message>
    <message>
        <source>refused: not a number a phonebook can keep</source>
        <translation>abgelehnt: keine Nummer, die ein Telefonbuch speichern kann</translation>
    </message>
    <message>
        <source>refused: %s is full</source>
        <translation>abgelehnt: %s ist voll</translation>
    </message>
    <message>
        <source>copied, name cut from &quot;%s&quot;</source>
        <translation>kopiert, Name gekürzt aus „%s“</translation>
    </message>
    <message>
        <source>already there</source>
        <translation>schon vorhanden</translation>
    </message>
    <message>
        <source>Copied %s of %s numbers to %s</source>
        <translation>%s von %s Nummern nach %s kopiert</translation>
    </message>
    <message>
        <source>dialtone: %s numbers did not fit in %s: delete entries there (dialtone contacts delete %s INDEX) or shorten them, and copy again</source>
        <translation>dialtone: %s Nummern passten nicht in %s: Löschen Sie dort Einträge (dialtone contacts delete %s INDEX) oder kürzen Sie sie, und kopieren Sie erneut</translation>
    </message>
    <message>
        <source>copying: the address book would hold more than %s contacts</source>
        <translation>Kopieren: das Adressbuch hätte dann mehr als %s Kontakte</translation>
    </message>
    <message>
        <source>Copied to the computer&apos;s address book: %s added, %s merged, %s already there</source>
        <translation>In das Adressbuch des Computers kopiert: %s hinzugefügt, %s zusammengeführt, %s schon vorhanden</translation>
    </message>
    <message>
        <source>adding the contact: the address book is full (%s contacts)</source>
        <translation>Hinzufügen des Kontakts: das Adressbuch ist voll (%s Kontakte)</translation>
    </message>
    <message>
        <source>Added to the computer&apos;s address book at index %s</source>
        <translation>Dem Adressbuch des Computers an Index %s hinzugefügt</translation>
    </message>
    <message>
        <source>no contact %s in the computer&apos;s address book (dialtone contacts list --store pc shows them)</source>
        <translation>kein Kontakt %s im Adressbuch des Computers (dialtone contacts list --store pc zeigt sie)</translation>
    </message>
    <message>
        <source>Updated pc %s</source>
        <translation>pc %s geändert</translation>
    </message>
    <message>
        <source>Deleted pc %s</source>
        <translation>pc %s gelöscht</translation>
    </message>
    <message>
        <source>the computer&apos;s address book</source>
        <translation>das Adressbuch des Computers</translation>
    </message>
    <message>
        <source>the SIM</source>
        <translation>die SIM</translation>
    </message>
    <message>
        <source>SIM (IMSI):</source>
        <translation>SIM (IMSI):</translation>
    </message>
    <message>
        <source>%s connected</source>
        <translation>%s verbunden</translation>
    </message>
    <message>
        <source>Budget:</source>
        <translation>Budget:</translation>
    </message>
    <message>
        <source>%s per period, from day %s of the month</source>
        <translation>%s pro Zeitraum, ab dem %s. Tag des Monats</translation>
    </message>
    <message>
        <source>Period:</source>
        <translation>Zeitraum:</translation>
    </message>
    <message>
        <source>%s to %s, %s days left</source>
        <translation>%s bis %s, noch %s Tage</translation>
    </message>
    <message>
        <source>Used:</source>
        <translation>Verbraucht:</translation>
    </message>
    <message>
        <source>%s (%s %)</source>
        <translation>%s (%s %)</translation>
    </message>
    <message>
        <source>Warning at:</source>
        <translation>Warnung bei:</translation>
    </message>
    <message>
        <source>At the limit:</source>
        <translation>An der Grenze:</translation>
    </message>
    <message>
        <source>hang up and refuse to dial</source>
        <translation>auflegen und nicht wählen</translation>
    </message>
    <message>
        <source>warn</source>
        <translation>warnen</translation>
    </message>
    <message>
        <source>Override:</source>
        <translation>Ausnahme:</translation>
    </message>
    <message>
        <source>dialling over the budget until %s</source>
        <translation>Wählen über das Budget hinaus bis %s</translation>
    </message>
    <message>
        <source>none (&quot;dialtone budget set 2GB --day 1&quot; sets one)</source>
        <translation>keins („dialtone budget set 2GB --day 1“ legt eins fest)</translation>
    </message>
    <message>
        <source>Roaming guard:</source>
        <translation>Roaming-Schutz:</translation>
    </message>
    <message>
        <source>%s (%s %), %s days left until %s</source>
        <translation>%s (%s %), noch %s Tage bis %s</translation>
    </message>
    <message>
        <source>the override could not be stored</source>
        <translation>die Ausnahme konnte nicht gespeichert werden</translation>
    </message>
    <message>
        <source>&quot;dialtone connect --allow-roaming&quot; dials anyway</source>
        <translation>„dialtone connect --allow-roaming“ wählt trotzdem</translation>
    </message>
    <message>
        <source>&quot;dialtone connect --over-budget&quot; dials anyway</source>
        <translation>„dialtone connect --over-budget“ wählt trotzdem</translation>
    </message>
    <message>
        <source>excellent</source>
        <translation>ausgezeichnet</translation>
    </message>
    <message>
        <source>good</source>
        <translation>gut</translation>
    </message>
    <message>
        <source>fair</source>
        <translation>mittel</translation>
    </message>
    <message>
        <source>poor</source>
        <translation>schwach</translation>
    </message>
    <message>
        <source>no signal</source>
        <translation>kein Signal</translation>
    </message>
    <message>
        <source>%s (%s/5, %s)</source>
        <translation>%s (%s/5, %s)</translation>
    </message>
    <message>
        <source>reading the signal</source>
        <translation>Signal wird gelesen</translation>
    </message>
    <message>
        <source>RSCP:</source>
        <translation>RSCP:</translation>
    </message>
    <message>
        <source>Ec/Io:</source>
        <translation>Ec/Io:</translation>
    </message>
    <message>
        <source>Cell:</source>
        <translation>Zelle:</translation>
    </message>
    <message>
        <source>dialtone: --tone needs a terminal on standard error</source>
        <translation>dialtone: --tone braucht ein Terminal als Standardfehlerausgabe</translation>
    </message>
    <message>
        <source>Reading the signal once a second; press Ctrl-C to stop</source>
        <translation>Das Signal wird jede Sekunde gelesen; Strg-C beendet</translation>
    </message>
    <message>
        <source>best</source>
        <translation>bestes</translation>
    </message>
    <message>
        <source>--count and --tone go with --watch</source>
        <translation>--count und --tone gehen nur mit --watch</translation>
    </message>
    <message>
        <source>the modem&apos;s phonebook</source>
        <translation>das Telefonbuch des Modems</translation>
    </message>
    <message>
        <source>No message holds &quot;%s&quot;</source>
        <translation>Keine Nachricht enthält „%s“</translation>
    </message>
    <message>
        <source>Budget from %s to %s: %s</source>
        <translation>Budget von %s bis %s: %s</translation>
    </message>
    <message>
        <source>Signal on %s, in dBm per hour</source>
        <translation>Signal am %s, in dBm je Stunde</translation>
    </message>
    <message>
        <source>(no signal recorded on this day)</source>
        <translation>(an diesem Tag kein Signal aufgezeichnet)</translation>
    </message>
    <message>
        <source>Hour</source>
        <translation>Stunde</translation>
    </message>
    <message>
        <source>Average</source>
        <translation>Mittel</translation>
    </message>
    <message>
        <source>Best</source>
        <translation>Bestes</translation>
    </message>
    <message>
        <source>Worst</source>
        <translation>Schwächstes</translation>
    </message>
    <message>
        <source>Minutes</source>
        <translation>Minuten</translation>
    </message>
    <message>
        <source>%s: the bearer changed to %s</source>
        <translation>%s: die Übertragungsart wechselte zu %s</translation>
    </message>
    <message>
        <source>%s: the cell changed to %s</source>
        <translation>%s: die Zelle wechselte zu %s</translation>
    </message>
</context>
</TS>
