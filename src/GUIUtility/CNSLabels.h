#pragma once

#include <QString>

class QLabel;
class QWidget;

// Labels the views share. Text from the modem, the network or the SIM is never shown as rich text.

// Plain text that wraps.
QLabel* CNSPlainLabel(const QString& objectName, QWidget* parent = nullptr);
// A value in a form (a count, a name from the network): plain text the user can select and copy.
QLabel* CNSValueLabel(const QString& objectName, QWidget* parent = nullptr, const QString& text = {});
// A view's error line: plain text that wraps, in the error colour, hidden until it has something to say.
QLabel* CNSErrorLabel(const QString& objectName, QWidget* parent = nullptr);
// A field's caption; screen readers name the field by it, and its & mnemonic focuses the field.
QLabel* CNSBuddyLabel(const QString& text, QWidget* buddy, QWidget* parent = nullptr);
// Shows the label's text in the error colour, or in the normal one.
void CNSSetErrorStyle(QLabel* label, bool error = true);
