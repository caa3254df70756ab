#include "E2ESupport.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <cstdlib>

namespace {

std::vector<std::string> Arguments(const QStringList& args) {
    std::vector<std::string> arguments;
    for (const QString& arg : args)
        arguments.push_back(arg.toStdString());
    return arguments;
}

} // namespace

SimulatedModem::SimulatedModem(const QStringList& args)
    : _process(DIALTONE_MODEMSIM, _dir.path().toStdString(), Arguments(args)) {
    setenv("DIALTONE_DEV_DIR", _dir.path().toLocal8Bit().constData(), 1);
}

SimulatedModem::~SimulatedModem() {
    unsetenv("DIALTONE_DEV_DIR");
}

QJsonObject SimulatedModem::control(const QString& line) const {
    return QJsonDocument::fromJson(QByteArray::fromStdString(_process.command(line.toStdString()))).object();
}

QStringList SimulatedModem::commands() const {
    QStringList result;
    for (const QJsonValue& value : control("dump").value("commands").toArray()) {
        const QString command = value.toString();
        if (command.compare("at", Qt::CaseSensitive) != 0)
            result << command;
    }
    return result;
}
