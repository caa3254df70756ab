#include "FreedesktopNotifications.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace {

const QString kPath = QStringLiteral("/org/freedesktop/Notifications");
const QString kInterface = QStringLiteral("org.freedesktop.Notifications");
// The desktop file's id, so that the server groups our notifications under the app and its settings.
const QString kDesktopEntry = QStringLiteral("dialtone");
constexpr int kCapabilitiesTimeoutMs = 2000;

QString Bounded(QString text, int limit) {
    for (QChar& c : text) {
        if (c.category() == QChar::Other_Control && c != u'\n')
            c = u' ';
    }
    if (text.size() > limit) {
        int cut = limit - 1;
        if (text.at(cut - 1).isHighSurrogate())
            --cut;
        text = text.left(cut) + QChar(0x2026);
    }
    return text;
}

} // namespace

// The server's signals this object follows: name, signature, slot.
struct FollowedSignal {
    const char* name;
    const char* slot;
};
static const FollowedSignal kFollowed[] = {
    {"ActionInvoked", SLOT(onActionInvoked(uint, QString))},
    // KDE's extension: the text typed into a notification's reply field.
    {"NotificationReplied", SLOT(onReplied(uint, QString))},
    {"NotificationClosed", SLOT(onClosed(uint, uint))},
};

FreedesktopNotifications::FreedesktopNotifications(const QDBusConnection& bus, QObject* parent)
    : QObject(parent), _bus(bus) {
    for (const FollowedSignal& followed : kFollowed)
        _bus.connect(kService, kPath, kInterface, QString::fromLatin1(followed.name), this, followed.slot);
}

// The connection may outlive this object (the session bus does), and keeps what it was told to follow.
FreedesktopNotifications::~FreedesktopNotifications() {
    for (const FollowedSignal& followed : kFollowed)
        _bus.disconnect(kService, kPath, kInterface, QString::fromLatin1(followed.name), this, followed.slot);
}

bool FreedesktopNotifications::available() const {
    return _bus.isConnected() && _bus.interface() && _bus.interface()->isServiceRegistered(kService);
}

QStringList FreedesktopNotifications::capabilities() {
    if (_capabilities)
        return *_capabilities;
    if (!available())
        return {};
    const QDBusMessage call =
        QDBusMessage::createMethodCall(kService, kPath, kInterface, QStringLiteral("GetCapabilities"));
    const QDBusMessage answer = _bus.call(call, QDBus::Block, kCapabilitiesTimeoutMs);
    if (answer.type() != QDBusMessage::ReplyMessage || answer.arguments().isEmpty())
        return {};
    _capabilities = answer.arguments().constFirst().toStringList();
    return *_capabilities;
}

QString FreedesktopNotifications::bodyText(const QString& text, bool markup) {
    const QString bounded = Bounded(text, kMaxBody);
    return markup ? bounded.toHtmlEscaped() : bounded;
}

void FreedesktopNotifications::show(const QString& summary, const QString& body, const QList<Action>& actions,
                                    const std::function<void(uint)>& done) {
    const QStringList caps = capabilities();
    QStringList actionList;
    if (caps.contains(QStringLiteral("actions"))) {
        for (const auto& [key, label] : actions) {
            if (key == QStringLiteral("inline-reply") && !caps.contains(QStringLiteral("inline-reply")))
                continue;
            actionList << key << label;
        }
    }
    const QVariantMap hints{{QStringLiteral("desktop-entry"), kDesktopEntry},
                            {QStringLiteral("category"), QStringLiteral("im.received")}};
    QDBusMessage call = QDBusMessage::createMethodCall(kService, kPath, kInterface, QStringLiteral("Notify"));
    // Summaries are plain text to every server; the body may be read as markup.
    call << QStringLiteral("Dialtone") << uint(0) << kDesktopEntry << Bounded(summary, kMaxSummary)
         << bodyText(body, caps.contains(QStringLiteral("body-markup"))) << actionList << hints << int(-1);
    auto* watcher = new QDBusPendingCallWatcher(_bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [done](QDBusPendingCallWatcher* finished) {
        finished->deleteLater();
        const QDBusPendingReply<uint> reply = *finished;
        done(reply.isValid() ? reply.value() : 0);
    });
}

void FreedesktopNotifications::onActionInvoked(uint id, const QString& key) {
    emit actionInvoked(id, key);
}

void FreedesktopNotifications::onReplied(uint id, const QString& text) {
    emit replied(id, text);
}

void FreedesktopNotifications::onClosed(uint id, uint) {
    emit closed(id);
}
