#include "CNSLabels.h"

#include <QLabel>

QLabel* CNSPlainLabel(const QString& objectName, QWidget* parent) {
    auto* label = new QLabel(parent);
    label->setObjectName(objectName);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

QLabel* CNSValueLabel(const QString& objectName, QWidget* parent, const QString& text) {
    auto* label = new QLabel(text, parent);
    label->setObjectName(objectName);
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

QLabel* CNSErrorLabel(const QString& objectName, QWidget* parent) {
    QLabel* label = CNSPlainLabel(objectName, parent);
    CNSSetErrorStyle(label);
    label->hide();
    return label;
}

QLabel* CNSBuddyLabel(const QString& text, QWidget* buddy, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setBuddy(buddy);
    return label;
}

void CNSSetErrorStyle(QLabel* label, bool error) {
    label->setStyleSheet(error ? QStringLiteral("color: #b00020;") : QString());
}
