#pragma once

#include <QDBusConnection>
#include <QHash>
#include <QObject>
#include <QString>

#include <memory>

class FreedesktopNotifications;
class QSystemTrayIcon;

// Tells the user about something that happened while they looked elsewhere (a new message, a delivery
// report): through the desktop's notification server when the session bus has one, else a balloon from
// the tray icon when there is a tray, and the sound when the user wants sounds. A new message's
// notification offers "Read" and "Reply" where the server shows actions.
class DesktopNotifier : public QObject {
    Q_OBJECT
public:
    // The user default that switches the sounds on ("TRUE"/"FALSE"; on when unset).
    static inline const QString kPlaySoundsKey = QStringLiteral("PlaySounds");

    // How the latest notification reached the user.
    enum class Route { None, Server, Tray, SoundOnly };

    // The message a notification is about: its sender, and a key the Messages view finds it by.
    struct Message {
        QString sender;
        QString key;
    };

    explicit DesktopNotifier(QObject* parent = nullptr);
    ~DesktopNotifier() override;

    void setTrayIcon(QSystemTrayIcon* tray) { _tray = tray; }
    // The bus to find the notification server on; the session bus unless set.
    void setBus(const QDBusConnection& bus);

    void notify(const QString& title, const QString& text, bool withSound = true);
    // The same for a received message, with its actions.
    void notifyMessage(const QString& title, const QString& text, const Message& message);

    static bool soundsEnabled();
    static void setSoundsEnabled(bool enabled);

    // The latest notification and how many there were, for the views and tests.
    QString lastTitle() const { return _lastTitle; }
    QString lastText() const { return _lastText; }
    int count() const { return _count; }
    Route lastRoute() const { return _lastRoute; }

signals:
    void notified(const QString& title, const QString& text);
    // The user chose "Read" (or clicked the notification) of a message.
    void readRequested(const QString& key);
    // The user chose "Reply" on a server without a reply field: the editor should open for the sender.
    void replyRequested(const QString& sender);
    // The user typed a reply into the notification itself: it should go out to the sender.
    void replyTyped(const QString& sender, const QString& text);

private:
    void deliver(const QString& title, const QString& text, const Message* message);
    bool showBalloon(const QString& title, const QString& text);
    void onAction(uint id, const QString& key);
    void playSound();
    FreedesktopNotifications& server();

    QSystemTrayIcon* _tray = nullptr;
    std::unique_ptr<FreedesktopNotifications> _server;
    // The messages of the notifications still on screen, by the server's id.
    QHash<uint, Message> _shown;
    QString _lastTitle;
    QString _lastText;
    int _count = 0;
    Route _lastRoute = Route::None;
};
