#include "DialString.h"

namespace DialString {

bool isDtmfKey(QChar key) {
    const char16_t c = key.unicode();
    return c == u'#' || c == u'*' || (c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'D');
}

bool isDialNumber(const QString& number) {
    if (number.isEmpty() || number.size() > kNumberCap) {
        return false;
    }
    for (qsizetype i = 0; i < number.size(); ++i) {
        const char16_t c = number.at(i).unicode();
        const bool digit = (c >= u'0' && c <= u'9') || c == u'*' || c == u'#';
        if (!digit && !(c == u'+' && i == 0)) {
            return false;
        }
    }
    return number != QStringLiteral("+");
}

} // namespace DialString
