#include "ModemTable.h"

#include "CNSLog.h"
#include "ResourceLocator.h"

#include <QFile>
#include <QRegularExpression>

namespace {

constexpr qint64 kMaxFileSize = 256 * 1024;

bool parseInterface(const QString& field, int& number) {
    if (field == QLatin1String("-")) {
        number = -1;
        return true;
    }
    bool ok = false;
    number = field.toInt(&ok, 16);
    return ok && field.size() == 2;
}

// Checks one line's fields; an empty return means the row is good.
QString readRow(const QStringList& fields, ModemModel& model) {
    if (fields.size() < 6) {
        return QStringLiteral("expected modem id, storage ids, AT and dial interface, dialect and name");
    }
    if (!UsbId::parse(fields[0], model.modemId)) {
        return QStringLiteral("bad modem id \"%1\" (want vvvv:pppp in hex)").arg(fields[0]);
    }
    if (fields[1] != QLatin1String("-")) {
        const QStringList ids = fields[1].split(QLatin1Char(','));
        if (ids.size() > ModemTable::kMaxStorageIds) {
            return QStringLiteral("more than %1 storage ids").arg(ModemTable::kMaxStorageIds);
        }
        for (const QString& text : ids) {
            UsbId id;
            if (!UsbId::parse(text, id)) {
                return QStringLiteral("bad storage id \"%1\"").arg(text);
            }
            model.storageIds << id;
        }
    }
    if (!parseInterface(fields[2], model.atInterface) || !parseInterface(fields[3], model.dialInterface)) {
        return QStringLiteral("bad interface number (want two hex digits or -)");
    }
    if ((model.atInterface < 0) != (model.dialInterface < 0) ||
        (model.atInterface >= 0 && model.atInterface == model.dialInterface)) {
        return QStringLiteral("AT and dial interface must both be known and differ, or both be -");
    }
    if (!ModemDialectFromName(fields[4].toStdString(), model.dialect)) {
        return QStringLiteral("unknown dialect \"%1\" (vel or standard)").arg(fields[4]);
    }
    model.name = fields.mid(5).join(QLatin1Char(' '));
    return {};
}

} // namespace

ModemTable ModemTable::parse(const QByteArray& text, QStringList* problems) {
    ModemTable table;
    const QList<QByteArray> lines = text.split('\n');
    static const QRegularExpression blanks(QStringLiteral("\\s+"));
    for (qsizetype index = 0; index < lines.size(); ++index) {
        const QByteArray line = lines[index].trimmed();
        if (line.isEmpty() || line.startsWith('#')) {
            continue;
        }
        auto report = [&](const QString& why) {
            if (problems != nullptr) {
                problems->append(QStringLiteral("line %1: %2").arg(index + 1).arg(why));
            }
        };
        if (line.size() > kMaxLineLength) {
            report(QStringLiteral("longer than %1 characters").arg(kMaxLineLength));
            continue;
        }
        if (table._models.size() >= kMaxRows) {
            report(QStringLiteral("more than %1 rows; the rest is ignored").arg(kMaxRows));
            break;
        }
        ModemModel model;
        const QString why = readRow(QString::fromUtf8(line).split(blanks), model);
        if (!why.isEmpty()) {
            report(why);
            continue;
        }
        if (table.findModem(model.modemId) != nullptr) {
            report(QStringLiteral("%1 is listed twice").arg(model.modemId.text()));
            continue;
        }
        const qsizetype row = table._models.size();
        model.linkSuffix = row == 0 ? QStringLiteral("1") : QString::number(row) + QLatin1Char('1');
        table._models << model;
    }
    return table;
}

ModemTable ModemTable::installed() {
    QFile file(ResourceLocator::resourcePath(QStringLiteral("modems.table")));
    if (!file.open(QIODevice::ReadOnly)) {
        CNSLOG(2, "device table %s: %s", qPrintable(file.fileName()), qPrintable(file.errorString()));
        return {};
    }
    QStringList problems;
    ModemTable table = parse(file.read(kMaxFileSize), &problems);
    for (const QString& problem : problems) {
        CNSLOG(2, "device table %s, %s", qPrintable(file.fileName()), qPrintable(problem));
    }
    return table;
}

const ModemModel* ModemTable::findModem(UsbId id) const {
    for (const ModemModel& model : _models) {
        if (model.modemId == id) {
            return &model;
        }
    }
    return nullptr;
}

const ModemModel* ModemTable::findStorage(UsbId id) const {
    for (const ModemModel& model : _models) {
        if (model.storageIds.contains(id)) {
            return &model;
        }
    }
    return nullptr;
}

const ModemModel* ModemTable::findLinkSuffix(const QString& suffix) const {
    for (const ModemModel& model : _models) {
        if (model.linkSuffix == suffix) {
            return &model;
        }
    }
    return nullptr;
}
