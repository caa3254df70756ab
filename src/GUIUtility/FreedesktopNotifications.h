#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QStringList>

#include <functional>
#include <optional>
#include <utility>

// A client of the desktop's notification server (org.freedesktop.Notifications on the session bus, as
// GNOME, KDE and the small daemons serve it). The server's capabilities are asked once; Notify is sent
// without waiting, and its answer (the server's id, or 0 when the call failed) comes back through a
// callback. Texts are bounded, and escaped for servers that read markup.
class FreedesktopNotifications : public QObject {
    Q_OBJECT
public:
    static inline const QString kService = QStringLiteral("org.freedesktop.Notifications");
    // Longest summary and body sent; the rest is cut with an ellipsis.
    static constexpr int kMaxSummary = 120;
    static constexpr int kMaxBody = 400;

    // A button: the key the server sends back, and its label.
    using Action = std::pair<QString, QString>;

    explicit FreedesktopNotifications(const QDBusConnection& bus, QObject* parent = nullptr);
    ~FreedesktopNotifications() override;

    // Whether a server owns the name on the bus right now.
    bool available() const;
    // The server's capabilities ("actions", "body-markup", "inline-reply", ...); empty without a server.
    QStringList capabilities();
    bool hasCapability(const QString& capability) { return capabilities().contains(capability); }

    // Shows the notification; done gets the server's id, or 0 when the call failed. An action key
    // "inline-reply" asks servers with that capability for a text field.
    void show(const QString& summary, const QString& body, const QList<Action>& actions,
              const std::function<void(uint)>& done);

    // The body as sent: bounded, control characters as spaces, and with markup escaped.
    static QString bodyText(const QString& text, bool markup);

signals:
    void actionInvoked(uint id, const QString& key);
    void replied(uint id, const QString& text);
    void closed(uint id);

private slots:
    void onActionInvoked(uint id, const QString& key);
    void onReplied(uint id, const QString& text);
    void onClosed(uint id, uint reason);

private:
    QDBusConnection _bus;
    std::optional<QStringList> _capabilities;
};
