#include "HomeRegion.h"

#include "ResourceLocator.h"

#include <QFile>
#include <QHash>
#include <QStringList>

namespace {

// "MCC<tab>REGION" lines separated by "\r\n", read once per process.
const QHash<QString, QString>& regions() {
    static const QHash<QString, QString> table = [] {
        QHash<QString, QString> out;
        QFile file(ResourceLocator::resourcePath(QStringLiteral("MCCRegion")));
        if (!file.open(QIODevice::ReadOnly))
            return out;
        const QStringList lines = QString::fromUtf8(file.readAll()).split(QStringLiteral("\r\n"));
        for (const QString& line : lines) {
            const QStringList columns = line.split(QLatin1Char('\t'));
            if (columns.size() == 2 && columns[0].size() == 3 && columns[1].size() == 2)
                out.insert(columns[0], columns[1]);
        }
        return out;
    }();
    return table;
}

bool startsWithMcc(const QString& text) {
    if (text.size() < 3)
        return false;
    for (int i = 0; i < 3; ++i) {
        if (!text[i].isDigit() || text[i].unicode() > '9')
            return false;
    }
    return true;
}

} // namespace

namespace HomeRegion {

QString regionForMcc(const QString& mccOrLonger) {
    if (!startsWithMcc(mccOrLonger))
        return {};
    return regions().value(mccOrLonger.left(3));
}

QString fromImsiOrNetwork(const QString& imsi, const QString& networkPlmn) {
    const QString fromSim = regionForMcc(imsi);
    return fromSim.isEmpty() ? regionForMcc(networkPlmn) : fromSim;
}

} // namespace HomeRegion
