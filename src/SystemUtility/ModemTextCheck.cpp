#include "ModemTextCheck.h"

#include "AtParameter.h"

QString ModemTextProblem(const QString& what, const QString& value, std::size_t maxLength) {
    const std::string problem = AtParameterProblem(what.toStdString(), value.toStdString(), maxLength);
    if (problem.empty())
        return {};
    QString sentence = QString::fromStdString(problem) + QLatin1Char('.');
    sentence[0] = sentence[0].toUpper();
    return sentence;
}

std::string ModemTextProblem(std::string_view what, std::string_view value, std::size_t maxLength) {
    return AtParameterProblem(what, value, maxLength);
}
