<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>AccountPlugin</name>
    <message>
        <source>*100#</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Send</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Service code:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The network&apos;s answer appears here.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Reply</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;End dialogue</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Your reply:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The network does not offer this service. Check the code.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The network ended the dialogue.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Sending %1 failed: %2. Check the code and that the modem is registered, then try again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The account menu file for this SIM card is damaged. You can still send a service code below.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>There are no account menus for this SIM card. You can still send a service code such as *100# below.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Service</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Choose a service on the left.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>at least %1 characters</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 characters</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 to %2 characters</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 needs at least %2 characters.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 needs %2 characters.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 needs %2 to %3 characters.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 takes only the characters %2.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the code</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>(dialogue ended)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Sending…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Account</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>CNSSignalBars</name>
    <message>
        <source>Signal strength</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No signal information</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Signal %1 of 5</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>CNSTrafficChart</name>
    <message>
        <source>Home network</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Roaming</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No traffic in this period</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1
Home network: %2
Roaming: %3</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ComposeDialog</name>
    <message>
        <source>New message</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Numbers, separated by ;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Send</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Save as draft</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>To:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Sending…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Enter at least one recipient.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The modem is not ready. Save the message as a draft and send it later.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The message to %1 could not be sent: %2. A copy is in the outbox; the text is still here, press Send to try again.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ConnectPlugin</name>
    <message>
        <source>Connection</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Profile:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>State:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>This connection</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Duration:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Sent:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Received:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Upload rate:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Download rate:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cannot dial: %1.
Fix: %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>APN: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No profiles yet</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No modem</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No modem: plug it in to connect</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Not connected: the first connection sets up the modem&apos;s dial-up service</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Preparing the modem&apos;s dial-up service…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Connecting…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Connected</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Disconnecting…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Not connected</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The modem&apos;s dial-up service could not be created.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cannot connect</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Dialtone will close now.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Set up dial-up</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Before its first connection, the modem needs a dial-up service: a small entry in the system&apos;s pppd configuration (/etc/ppp/peers), which only an administrator may change. The system now asks for an administrator&apos;s password once; later connections need no password.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Continue</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Waiting for the administrator&apos;s password…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The password dialog was closed: the dial-up service was not set up.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The modem&apos;s dial-up service could not be set up.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Connect</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ContactDialog</name>
    <message>
        <source>Contact in the %1 phonebook</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>+491701234567</source>
        <translation type="unfinished"></translation>
    </message>
    <message numerus="yes">
        <source>names up to %n character(s)</source>
        <translation type="unfinished">
            <numerusform></numerusform>
            <numerusform></numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>numbers up to %n character(s)</source>
        <translation type="unfinished">
            <numerusform></numerusform>
            <numerusform></numerusform>
        </translation>
    </message>
    <message>
        <source>This phonebook keeps %1.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source> and </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Name:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>N&amp;umber:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 has %2 characters; this phonebook keeps numbers up to %3.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the name</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ContactsPlugin</name>
    <message>
        <source>Reading the phonebooks</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Reading the phonebooks&apos; use</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Reading the phonebooks&apos; limits</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>SIM card</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Modem</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Search names and numbers</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Phonebook:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Name</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Number</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Add…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Edit…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Delete</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Send &amp;message</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Reload</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Adding the contact</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Check the name and number and try again; Reload shows what the phonebook holds now.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Saving the contact</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Deleting the contact</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Press Reload to see what the phonebook holds now, then try again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 of %2 used</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 failed: %2.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Plug the modem in again; the contacts are read when it is back.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Check that the SIM is in place and press Reload to try again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>This phonebook is full. Delete a contact or choose the other phonebook.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No modem: the contacts are read when the modem is ready.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No contact matches &quot;%1&quot;.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No contacts in this phonebook.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source> (names up to %1, numbers up to %2 characters)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Delete contact</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Delete %1 (%2) from the %3 phonebook?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Contacts</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>LocalizedStrings</name>
    <message>
        <source>Available</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Current</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Forbidden</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Connect</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Disconnect</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Warning</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>OK</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>There is no connection profile to dial. Add one in Settings, Profiles.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>Dialtone</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unlock the SIM…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show Dialtone</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Quit</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Connected</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Not connected</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Dialtone: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Dialtone: %1 (%2)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&lt;h2&gt;No modem&lt;/h2&gt;&lt;p&gt;Plug in your USB modem. Dialtone finds it by itself; there is no need to restart.&lt;/p&gt;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&lt;h2&gt;Starting the modem…&lt;/h2&gt;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&lt;h2&gt;The SIM card is locked&lt;/h2&gt;&lt;p&gt;Enter its code to go on.&lt;/p&gt;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&lt;h2&gt;No SIM card&lt;/h2&gt;&lt;p&gt;Put a SIM card into the modem and plug it in again.&lt;/p&gt;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&lt;h2&gt;The SIM card is blocked&lt;/h2&gt;&lt;p&gt;It accepts no more codes; ask your operator for a new card.&lt;/p&gt;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Looking for the cause…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&lt;p&gt;&lt;b&gt;What Dialtone checked&lt;/b&gt;&lt;/p&gt;&lt;ul&gt;</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>MessageText</name>
    <message>
        <source>Delivered</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Not yet delivered (the network keeps trying)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Not delivered</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>1 character left</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 characters left</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>1 part</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 parts</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>MessagesPlugin</name>
    <message>
        <source>New</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Reply</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Forward</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Delete</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Move to</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Archive</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Drafts</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Outbox</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Sent</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Reload</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Reading the messages from the modem…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No messages</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Select a message to read it.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The modem&apos;s messages could not be prepared: %1. Press Reload to try again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The messages could not be read from the modem: %1. Press Reload to try again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>New message</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The delivery report could not be saved with the sent message.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Delivery report</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>SIM card</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Modem</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>On this computer</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 unread</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>From / To</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>To</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Date</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Message</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Status</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Not sent</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Incomplete (parts missing)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The modem&apos;s messages show here once the modem is ready.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>To: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>From: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>(Some parts of this message have not arrived.)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Delivery report: %1 (%2)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The unsent message could not be kept in the outbox; copy its text.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The message could not be written to the message store in your home folder. Check that the disk is not full.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>New message to %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Delete message</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Delete the selected message? This cannot be undone.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The message store could not be written; the message is still there.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The message could not be deleted: %1.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The archive could not be written; the message stays on the modem.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The message was archived but could not be removed from the modem: %1.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The message was changed by another program meanwhile; see the list again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The message store could not be written; check the disk and try again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Messages</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ModemLink</name>
    <message>
        <source>No modem</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Starting the modem…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>PIN required</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>PUK required</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No SIM card</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>SIM card blocked</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ready</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>NetworkPlugin</name>
    <message>
        <source>available</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>current</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>forbidden</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>unknown</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 failed: the modem was unplugged.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 failed: %2 (code %3).</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>All bands</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>GSM 900/1800</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>GSM 850/1900</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>UMTS 2100</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>UMTS 850/1900</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Automatic</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>3G preferred</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>2G (GSM) only</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>2G preferred</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>3G (UMTS) only</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Current network</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Operator:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Registration:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Technology:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Bearer:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Signal:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Roaming:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Selection:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Available networks</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Search networks</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Search to see the networks in reach; this can take a minute.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Name</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Short name</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Code</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Technology</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Status</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Automatic selection</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Manual: the network chosen above</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Register</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Band and mode</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Apply</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Band:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Mode:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Band and mode: %1.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Band mask %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Other (set by another program)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>automatic</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>manual</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>mode %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Searching for networks… this can take a minute or two.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The search</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source> Try again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No networks found. Check the antenna and search again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message numerus="yes">
        <source>%n network(s) found.</source>
        <translation type="unfinished">
            <numerusform></numerusform>
            <numerusform></numerusform>
        </translation>
    </message>
    <message>
        <source>automatic selection</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Registering…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Registering with %1…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Registering with %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source> Choose another network or automatic selection.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Registered: %1.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Applying…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Band and mode set.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Setting the band</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source> Choose &quot;All bands&quot; and try again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The modem refused this mode (code %1). Choose &quot;Automatic&quot; or another mode it supports.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Setting the mode</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Searching…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Network</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>PinDialog</name>
    <message>
        <source>SIM card blocked</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>SIM card locked</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The SIM card is blocked. Enter the PUK from the card&apos;s holder and choose a new PIN.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The SIM card is locked. Enter its PIN to use the modem.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>PUK:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>PIN:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>New PIN:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Repeat new PIN:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Attempts left: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The PUK has 8 digits; the new PIN 4 to 8, typed twice the same.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The PIN has 4 to 8 digits.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Wrong code.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>PinSettingsPage</name>
    <message>
        <source>PIN request</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>At start:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Attempts left:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Current PIN:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ask for the PIN at start</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Change PIN</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>New PIN:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>New PIN again:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The PIN can only be changed while the modem asks for it at start.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>PIN %1, PUK %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>A PIN has 4 to 8 digits.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>unknown</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the modem asks for the PIN</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the modem does not ask for the PIN</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Please wait…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Switching the PIN request on</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Switching the PIN request off</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The modem asks for the PIN from now on.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The modem no longer asks for the PIN.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The new PIN and its repetition differ; type them again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Changing the PIN</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The PIN was changed.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 failed: the PIN was wrong. Attempts left are shown above; after the last one the SIM needs the PUK from your operator.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 failed: the SIM is blocked and needs the PUK from your operator.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 failed: the modem was unplugged.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 failed: %2 (code %3).</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Stop asking for the PIN at start</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ProfileDialog</name>
    <message>
        <source>New profile</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Edit profile</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Name:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>APN:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Number:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>User name:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Password:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Any (PAP or CHAP)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>PAP</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>CHAP</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Authentication:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Your operator tells you the APN; leave user name and password empty if it does not ask for them.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Give the profile a name.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Enter the number to dial (usually *99#).</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the APN</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the number</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the user name</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The fields cannot hold line breaks.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ProfilesPage</name>
    <message>
        <source>The profile tells the modem how to connect (APN, number, account). Profiles marked &quot;SIM&quot; come with your operator and cannot be changed.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Name</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>APN</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Number</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>From</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Default</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No profiles yet. Add the one your operator gives you.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Add…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Edit…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Delete</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Make default</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>SIM</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>You</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>yes</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The profile could not be saved. Check that your configuration folder is writable.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Profile &quot;%1&quot; added.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Profile &quot;%1&quot; saved.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The profile is gone meanwhile; add it again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Delete profile</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Delete the profile &quot;%1&quot;?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Profile &quot;%1&quot; deleted.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The profile could not be deleted.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&quot;%1&quot; is the default profile now.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The profile could not be made the default.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>SettingsPlugin</name>
    <message>
        <source>Profiles</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>PIN</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Messages</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Play a sound for new messages</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>New messages and delivery reports are always shown as a notification; this adds a sound to it.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Sounds</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Settings</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>SmsSettingsPage</name>
    <message>
        <source>1 hour</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>12 hours</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>1 day</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>2 days</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>1 week</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>As long as possible</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1: the modem was unplugged.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 failed: %2 (code %3).</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Service centre</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>e.g. +491722270333</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Save on SIM</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Number:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Sending and receiving</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Messages are valid for:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ask for delivery reports</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>SIM card</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Modem memory</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Keep new messages on:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Apply</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Reading the service centre</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Enter the service centre number, digits with an optional leading +.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Saving…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The service centre number was saved on the SIM.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Saving the service centre</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The settings could not be saved. Check that your configuration folder is writable.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Message settings applied.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Applying…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Setting the validity</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Switching delivery reports</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Choosing the storage</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>StatisticsPlugin</name>
    <message>
        <source>This month</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Last month</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Custom</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Period:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>from</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>to</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>In this period</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Sent:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Received:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Total:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Of which roaming:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Since the last reset</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Connection time:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Last reset:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Reset…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Set the totals since the last reset to zero; optionally delete the day history</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The first day comes after the last day: choose the days again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The chart shows the last %1 days of the period; the totals cover all of it.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Includes the connection in progress.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Never</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Reset the statistics</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Set the totals since the last reset to zero? The traffic per day stays unless you delete it too.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Reset</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Also delete the traffic per day</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The totals could not be reset: the settings could not be written. Check that your configuration folder is writable, then try again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The totals were reset, but the traffic per day could not be deleted. Check that your data folder is writable, then try again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Statistics</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>StatusBarView</name>
    <message>
        <source>Operator</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Bearer</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Registration</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Connection time and rates</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No operator</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Roaming</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Connecting…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Disconnecting…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Connected</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Disconnected</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1   ↑ %2   ↓ %3</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ToolkitPlugin</name>
    <message>
        <source>&amp;Open</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Back</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;OK</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Yes</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;No</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;End session</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Read again</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>SIM Toolkit</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The card&apos;s menu is read when the modem is ready.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 failed: %2. Try again, or end the session to go back to the main menu.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The card&apos;s menu could not be read (%1). This SIM card may have no toolkit menu; press Read again to retry.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>This SIM card has no toolkit menu.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Sending your answer to the card</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The card ended the dialogue.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Message from the SIM card</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Type one key.</source>
        <translation type="unfinished"></translation>
    </message>
    <message numerus="yes">
        <source>Type %n character(s).</source>
        <translation type="unfinished">
            <numerusform></numerusform>
            <numerusform></numerusform>
        </translation>
    </message>
    <message>
        <source>Type %1 to %2 characters.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Digits, *, # and + only.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The card sent a request this program does not show (%1). Press OK to accept it or End session to leave.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the answer</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Opening…</source>
        <translation type="unfinished"></translation>
    </message>
</context>
</TS>
