#pragma once

#include <QString>
#include <QStringList>

// Small text rules of the Messages tab, kept apart from the widgets so they can be checked on their own.
namespace MessageText {

// The recipients typed in one line: separated by ";" or ",", blanks dropped; order kept, repeats removed.
QStringList splitRecipients(const QString& line);

// The first line of a message for the list, at most maxLength characters ("…" when cut).
QString firstLine(const QString& text, int maxLength = 80);

// A delivery report's status (TP-ST) in words: 0-31 delivered, 32-63 still trying, from 64 failed.
QString deliveryText(int status);

// The counter under the editor: characters left in the last part and the number of parts.
QString counterText(int remain, int parts);

} // namespace MessageText
