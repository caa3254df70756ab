#pragma once

#include <QObject>
#include <QString>

class QSystemTrayIcon;

// Tells the user about something that happened while they looked elsewhere (a new message, a delivery
// report): a balloon from the tray icon when there is a tray, and the sound when the user wants sounds.
class DesktopNotifier : public QObject {
    Q_OBJECT
public:
    // The user default that switches the sounds on ("TRUE"/"FALSE"; on when unset).
    static inline const QString kPlaySoundsKey = QStringLiteral("PlaySounds");

    explicit DesktopNotifier(QObject* parent = nullptr);

    void setTrayIcon(QSystemTrayIcon* tray) { _tray = tray; }

    void notify(const QString& title, const QString& text, bool withSound = true);

    static bool soundsEnabled();
    static void setSoundsEnabled(bool enabled);

    // The latest notification and how many there were, for the views and tests.
    QString lastTitle() const { return _lastTitle; }
    QString lastText() const { return _lastText; }
    int count() const { return _count; }

signals:
    void notified(const QString& title, const QString& text);

private:
    void playSound();

    QSystemTrayIcon* _tray = nullptr;
    QString _lastTitle;
    QString _lastText;
    int _count = 0;
};
