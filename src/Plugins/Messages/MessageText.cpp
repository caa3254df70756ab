#include "MessageText.h"

#include <QCoreApplication>
#include <QLocale>
#include <QRegularExpression>

namespace MessageText {

namespace {

QString tr(const char* text) {
    return QCoreApplication::translate("MessageText", text);
}

} // namespace

QStringList splitRecipients(const QString& line) {
    QStringList out;
    for (const QString& part : line.split(QRegularExpression(QStringLiteral("[;,]")))) {
        const QString number = part.trimmed();
        if (!number.isEmpty() && !out.contains(number))
            out.append(number);
    }
    return out;
}

QString firstLine(const QString& text, int maxLength) {
    QString line = text.trimmed().section(QLatin1Char('\n'), 0, 0).trimmed();
    line.remove(QLatin1Char('\r'));
    if (maxLength > 1 && line.size() > maxLength)
        line = line.left(maxLength - 1) + QChar(0x2026);
    return line;
}

QString deliveryText(int status) {
    if (status >= 0 && status < 32)
        return tr("Delivered");
    if (status >= 32 && status < 64)
        return tr("Not yet delivered (the network keeps trying)");
    return tr("Not delivered");
}

QString counterText(int remain, int parts) {
    const QString left =
        remain == 1 ? tr("1 character left") : tr("%1 characters left").arg(QLocale().toString(remain));
    const QString count = parts == 1 ? tr("1 part") : tr("%1 parts").arg(QLocale().toString(parts));
    return left + QStringLiteral(" · ") + count;
}

} // namespace MessageText
