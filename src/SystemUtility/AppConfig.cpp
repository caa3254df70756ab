#include "AppConfig.h"

#include "CNSLog.h"
#include "ConvertUtilty.h"
#include "DamagedFile.h"
#include "PropertyList.h"
#include "ResourceLocator.h"
#include "StoreFile.h"
#include "StoreLock.h"
#include "UserDataFolder.h"

#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <optional>
#include <utility>

namespace {

const QString kDefaultApnInfo = QStringLiteral("default APN info");
const QString kIfSetDefault = QStringLiteral("if setDefault");
const QString kDefaultIMSI = QStringLiteral("default IMSI");
const QString kSMSValidityPeriod = QStringLiteral("SMS_VP");
const QString kSoundConnect = QStringLiteral("SOUND_CONNECT");
const QString kSoundDisconnect = QStringLiteral("SOUND_DISCONNECT");
const QString kSoundSMSIncoming = QStringLiteral("SOUND_SMS_INCOMING");
const QString kSMSDeliveryReport = QStringLiteral("SOUND_SMS_DELIVERY_REPORT");
const QString kTrue = QStringLiteral("TRUE");

// Predefined profile columns: account, MCC+MNC, dial number, user, password, APN, auth type, SPN,
// (unused), DNS1, DNS2.
constexpr int kProfileMinColumns = 7;
constexpr int kColumnSPN = 7;
constexpr int kColumnDNS1 = 9;
constexpr int kColumnDNS2 = 10;

QString filePath(const QString& folder, const QString& name) {
    return QStringLiteral("%1/%2").arg(folder, name);
}

// A resource table's text; nothing when the file is missing (a table without lines).
std::optional<QByteArray> resourceText(const QString& name) {
    QFile file(ResourceLocator::resourcePath(name));
    if (!file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    return file.readAll();
}

// Resource tables: lines separated by "\r\n", columns by a tab. A missing table has no lines.
QStringList tableLines(const std::optional<QByteArray>& text) {
    return text ? QString::fromUtf8(*text).split(QStringLiteral("\r\n")) : QStringList();
}

// Two strings that are both present and equal (a missing value equals nothing).
bool same(const QString& a, const QString& b) {
    return !a.isNull() && !b.isNull() && a == b;
}

QVariantList toDictionaries(const QList<APNInfo>& list) {
    QVariantList out;
    out.reserve(list.size());
    for (const APNInfo& item : list) {
        out.append(item.toDictionary());
    }
    return out;
}

// The profiles of a stored list; entries of the wrong shape are skipped and, with report, reported with
// their count.
QList<APNInfo> fromDictionaries(const QVariantList& list, const QString& path, bool report = true) {
    QList<APNInfo> out;
    for (const QVariant& item : list) {
        if (APNInfo::isWellFormed(item)) {
            out.append(APNInfo::fromDictionary(item.toMap()));
        }
    }
    if (report) {
        DamagedFile::reportWrongEntries(path, QFileInfo(path).fileName(), list.size() - out.size());
    }
    return out;
}

} // namespace

AppConfig::AppConfig() {
    initFixApnList();
    initUserApnList();
    initPLMNList();
    initSystemConfig();
}

QString AppConfig::getUserDataPath() {
    return UserDataFolder::dataPath();
}

void AppConfig::initSystemConfig() {
    _strSystemConfigFilePath = filePath(UserDataFolder::configPath(), QStringLiteral("SystemConfig.plist"));
    _dictSystemConfig = DamagedFile::readMap(_strSystemConfigFilePath);
    _dictSystemConfigAsRead = _dictSystemConfig;
    const QVariantMap marker = _dictSystemConfig.value(kDefaultApnInfo).toMap();
    _defAPNInfo.isSetDefault =
        marker.contains(kIfSetDefault) ? marker.value(kIfSetDefault).toString() : QString();
    _defAPNInfo.defaultIMSI =
        marker.contains(kDefaultIMSI) ? marker.value(kDefaultIMSI).toString() : QString();
}

void AppConfig::initFixApnList() {
    readFixApnList(resourceText(QStringLiteral("PredefinedProfile")));
}

void AppConfig::readFixApnList(const std::optional<QByteArray>& text) {
    _arrApnListFixed.clear();
    const QStringList lines = tableLines(text);
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const QStringList columns = lines[i].split(QLatin1Char('\t'));
        if (columns.size() < kProfileMinColumns) {
            CNSLOG(2, "FixAPN list incorrect!! in %d lien", static_cast<int>(i));
            continue;
        }
        APNInfo info;
        info.strAccount = columns[0];
        info.strMCCMNC = columns[1];
        info.strDialNum = columns[2];
        info.strUserName = columns[3];
        info.strPassword = columns[4];
        info.strApn = columns[5];
        info.nAuthType = columns[6].trimmed().toInt();
        // Lines of 7 to 10 columns lack the later ones: those stay absent.
        info.strSPN = columns.value(kColumnSPN);
        info.strDNS1 = columns.value(kColumnDNS1);
        info.strDNS2 = columns.value(kColumnDNS2);
        _arrApnListFixed.append(info);
    }
}

void AppConfig::initUserApnList() {
    const QString folder = getUserDataPath();
    _strUserAPNListFilePath = filePath(folder, QStringLiteral("UserAPNList.plist"));
    _strUserIMSIApnListFilePath = filePath(folder, QStringLiteral("UserIMSIAPNList.plist"));
    _arrUserApnList =
        fromDictionaries(DamagedFile::readList(_strUserAPNListFilePath), _strUserAPNListFilePath);
}

void AppConfig::initPLMNList() {
    readPLMNList(resourceText(QStringLiteral("PLMN")));
}

void AppConfig::readPLMNList(const std::optional<QByteArray>& text) {
    _arrPLMNList.clear();
    const QStringList lines = tableLines(text);
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const QStringList columns = lines[i].split(QLatin1Char('\t'));
        if (columns.size() == 2) {
            _arrPLMNList.append(
                QVariantMap{{QStringLiteral("MCCMNC"), columns[0]}, {QStringLiteral("OP_NAME"), columns[1]}});
        } else {
            // An empty entry keeps the list aligned with the file's lines.
            CNSLOG(2, "PLMN list incorrect!! in %d lien", static_cast<int>(i));
            _arrPLMNList.append(QVariantMap());
        }
    }
}

QList<APNInfo> AppConfig::getFixApnByIMSI(const QString& imsi, const QString& spn) {
    _strIMSIRetain = imsi;
    const QVariantMap perSim = DamagedFile::readMap(_strUserIMSIApnListFilePath);
    const auto entry = perSim.constFind(imsi);
    const bool hasEntry = !imsi.isNull() && entry != perSim.cend();

    QList<APNInfo> result;
    if (isSetDefaultUserApn() && isFromIMSI() && hasEntry) {
        result = fromDictionaries(entry.value().toList(), _strUserIMSIApnListFilePath);
    } else {
        if (isSetDefaultUserApn() && isFromIMSI()) {
            // The SIM's default list is gone: forget the marker (the settings file keeps it).
            _defAPNInfo.isSetDefault = QStringLiteral("FALSE");
            _defAPNInfo.defaultIMSI = QStringLiteral("");
        }
        bool bySPN = false;
        if (!spn.isEmpty()) {
            QList<APNInfo> named;
            for (const APNInfo& item : std::as_const(_arrApnListFixed)) {
                if (same(item.strSPN, spn)) {
                    named.append(item);
                }
            }
            if (named.size() == 1) {
                result = named;
                bySPN = true;
            } else if (named.size() > 1) {
                // Several operators of that name: the one of this SIM's network, else none at all.
                for (const APNInfo& item : std::as_const(named)) {
                    if (!imsi.isNull() && imsi.startsWith(item.strMCCMNC)) {
                        result.append(item);
                        break;
                    }
                }
                bySPN = true;
            }
        }
        if (!bySPN) {
            findApnItemByIMSI(imsi, &result);
            if (result.size() > 1) {
                // Several operators on one MCC+MNC: keep the network's own profiles.
                result.removeIf([](const APNInfo& item) { return !item.strSPN.isEmpty(); });
            }
        }
    }
    _arrUserIMSIApnList = result;
    writeUserIMSIApnListToFile();
    return result;
}

int AppConfig::findApnItemByIMSI(const QString& imsi, QList<APNInfo>* result) const {
    if (!result) {
        return 0;
    }
    int found = 0;
    for (const APNInfo& item : _arrApnListFixed) {
        if (!imsi.isNull() && imsi.startsWith(item.strMCCMNC)) {
            result->append(item);
            ++found;
        }
    }
    return found;
}

int AppConfig::changeUserList(bool perSim, const std::function<void(QList<APNInfo>&)>& change) {
    if (perSim && _strIMSIRetain.isNull()) {
        CNSLOG(2, "file write error!!!");
        return 1;
    }
    const QString& path = perSim ? _strUserIMSIApnListFilePath : _strUserAPNListFilePath;
    StoreLock fileLock(path);
    // Another process (the app beside a tool command) may have changed the list since this copy was
    // read: the change is made to the list as the file holds it now.
    QVariantMap perSimLists;
    QList<APNInfo> current;
    if (perSim) {
        perSimLists = DamagedFile::readMap(path);
        current = fromDictionaries(perSimLists.value(_strIMSIRetain).toList(), path, false);
    } else {
        current = fromDictionaries(DamagedFile::readList(path), path, false); // reported when first read
    }
    change(current);
    (perSim ? _arrUserIMSIApnList : _arrUserApnList) = current;
    bool written = false;
    if (perSim) {
        perSimLists.insert(_strIMSIRetain, toDictionaries(current));
        written = StoreFile::write(path, perSimLists);
    } else {
        written = StoreFile::write(path, toDictionaries(current));
    }
    if (!written) {
        CNSLOG(2, "file write error!!!");
        return 1;
    }
    return 0;
}

int AppConfig::writeUserIMSIApnListToFile() {
    if (_strIMSIRetain.isNull()) {
        CNSLOG(2, "file write error!!!");
        return 1;
    }
    StoreLock fileLock(_strUserIMSIApnListFilePath);
    QVariantMap perSim = DamagedFile::readMap(_strUserIMSIApnListFilePath);
    perSim.insert(_strIMSIRetain, toDictionaries(_arrUserIMSIApnList));
    if (!StoreFile::write(_strUserIMSIApnListFilePath, perSim)) {
        CNSLOG(2, "file write error!!!");
        return 1;
    }
    return 0;
}

QList<APNInfo>* AppConfig::listForIndex(int index, int* inListIndex) {
    if (index >= kIMSIListIndexBase) {
        *inListIndex = index - kIMSIListIndexBase;
        return &_arrUserIMSIApnList;
    }
    *inListIndex = index;
    return &_arrUserApnList;
}

void AppConfig::saveUserAPNItem(int index, const APNInfo& item) {
    int at = 0;
    QList<APNInfo>* list = listForIndex(index, &at);
    const bool perSim = list == &_arrUserIMSIApnList;
    if (at < 0 || at >= list->size()) {
        CNSLOG(2, "index is over max count nIndex = %d", index);
        changeUserList(perSim, [](QList<APNInfo>&) {});
        return;
    }
    const APNInfo before = list->at(at);
    changeUserList(perSim, [&](QList<APNInfo>& current) {
        const qsizetype found = current.indexOf(before);
        // Removed by another process meanwhile: the edit is kept as a new profile.
        if (found < 0)
            current.append(item);
        else
            current[found] = item;
    });
}

void AppConfig::addUserAPNItem(const APNInfo& item) {
    changeUserList(false, [&](QList<APNInfo>& current) { current.append(item); });
}

void AppConfig::deleteSingleUserApnItem(int index) {
    if (index < 0 || index >= _arrUserApnList.size()) {
        CNSLOG(2, "index is over max count nIndex = %d", index);
        return;
    }
    const APNInfo doomed = _arrUserApnList.at(index);
    changeUserList(false, [&](QList<APNInfo>& current) { current.removeOne(doomed); });
}

int AppConfig::deleteUserApnItems(const QList<APNInfo>& /*items*/) {
    return 0;
}

bool AppConfig::isSetDefaultUserApn() const {
    return _defAPNInfo.isSetDefault == kTrue && !_defAPNInfo.defaultIMSI.isNull() &&
           (_defAPNInfo.defaultIMSI.isEmpty() || same(_defAPNInfo.defaultIMSI, _strIMSIRetain));
}

bool AppConfig::isFromIMSI() const {
    return _defAPNInfo.isSetDefault == kTrue && !_defAPNInfo.defaultIMSI.isEmpty() &&
           same(_defAPNInfo.defaultIMSI, _strIMSIRetain);
}

std::optional<APNInfo> AppConfig::getDefaultUserAPNItem() const {
    if (!isSetDefaultUserApn() || _defAPNInfo.isSetDefault != kTrue) {
        return std::nullopt;
    }
    if (!_defAPNInfo.defaultIMSI.isEmpty()) {
        if (same(_defAPNInfo.defaultIMSI, _strIMSIRetain) && !_arrUserIMSIApnList.isEmpty()) {
            return _arrUserIMSIApnList.first();
        }
        return std::nullopt;
    }
    if (_arrUserApnList.isEmpty()) {
        return std::nullopt;
    }
    return _arrUserApnList.first();
}

void AppConfig::storeDefaultMarker() {
    _dictSystemConfig.insert(kDefaultApnInfo, QVariantMap{{kIfSetDefault, _defAPNInfo.isSetDefault},
                                                          {kDefaultIMSI, _defAPNInfo.defaultIMSI}});
}

int AppConfig::setDefaultUserApnItemsByIndex(int index) {
    int at = 0;
    QList<APNInfo>* list = listForIndex(index, &at);
    if (list->isEmpty() || at < 0 || at >= list->size()) {
        return 0;
    }
    const bool perSim = list == &_arrUserIMSIApnList;
    const APNInfo chosen = list->at(at);
    changeUserList(perSim, [&](QList<APNInfo>& current) {
        const qsizetype found = current.indexOf(chosen);
        if (found > 0)
            current.swapItemsAt(0, found);
    });
    _defAPNInfo.isSetDefault = kTrue;
    _defAPNInfo.defaultIMSI = perSim ? _strIMSIRetain : QStringLiteral("");
    storeDefaultMarker();
    if (perSim) {
        // Written too, as it always was (as the file holds it now).
        changeUserList(false, [](QList<APNInfo>&) {});
    }
    writeSystemConfigToFile();
    return 0;
}

int AppConfig::setDefaultUserApnItems(const APNInfo& item) {
    const QList<APNInfo>& list = _arrUserApnList;
    for (qsizetype i = 0; i < list.size(); ++i) {
        if (&list[i] == &item) {
            return setDefaultUserApnItemsByIndex(static_cast<int>(i));
        }
    }
    for (qsizetype i = 0; i < list.size(); ++i) {
        if (list[i] == item) {
            return setDefaultUserApnItemsByIndex(static_cast<int>(i));
        }
    }
    return 0;
}

int AppConfig::removeDefaultApnItems() {
    _defAPNInfo.isSetDefault = QStringLiteral("FALSE");
    _defAPNInfo.defaultIMSI = QStringLiteral("");
    storeDefaultMarker();
    writeSystemConfigToFile();
    return 0;
}

void AppConfig::setSMSValidityPeriod(int validityPeriod) {
    _dictSystemConfig.insert(kSMSValidityPeriod, validityPeriod);
    writeSystemConfigToFile();
}

int AppConfig::getSMSValidityPeriod() const {
    return _dictSystemConfig.value(kSMSValidityPeriod).toInt();
}

bool AppConfig::flag(const QString& key, bool defaultValue) {
    const auto it = _dictSystemConfig.constFind(key);
    if (it == _dictSystemConfig.cend()) {
        _dictSystemConfig.insert(key, ConvertUtilty::BOOLToNSStringBOOL(defaultValue));
        writeSystemConfigToFile();
        return defaultValue;
    }
    return it.value().toString() != QLatin1String("FALSE");
}

void AppConfig::setFlag(const QString& key, bool value) {
    _dictSystemConfig.insert(key, ConvertUtilty::BOOLToNSStringBOOL(value));
    writeSystemConfigToFile();
}

void AppConfig::setConnectSoundEnable(bool enable) {
    setFlag(kSoundConnect, enable);
}

void AppConfig::setDisconnectSoundEnable(bool enable) {
    setFlag(kSoundDisconnect, enable);
}

void AppConfig::setSMSIncomingSoundEnable(bool enable) {
    setFlag(kSoundSMSIncoming, enable);
}

void AppConfig::setSMSDeliveryReportEnable(bool enable) {
    setFlag(kSMSDeliveryReport, enable);
}

bool AppConfig::getConnectSoundEnable() {
    return flag(kSoundConnect, true);
}

bool AppConfig::getDisconnectSoundEnable() {
    return flag(kSoundDisconnect, true);
}

bool AppConfig::getSMSIncomingSoundEnable() {
    return flag(kSoundSMSIncoming, true);
}

bool AppConfig::getSMSDeliveryReportEnable() {
    return flag(kSMSDeliveryReport, false);
}

int AppConfig::writeSystemConfigToFile() {
    StoreLock fileLock(_strSystemConfigFilePath);
    // Another process (the app beside a tool command) may have changed other keys since this copy was
    // read: start from the file and apply only the keys changed here.
    QVariantMap merged = DamagedFile::readMap(_strSystemConfigFilePath);
    for (auto it = _dictSystemConfig.cbegin(); it != _dictSystemConfig.cend(); ++it) {
        if (_dictSystemConfigAsRead.value(it.key()) != it.value())
            merged.insert(it.key(), it.value());
    }
    for (auto it = _dictSystemConfigAsRead.cbegin(); it != _dictSystemConfigAsRead.cend(); ++it) {
        if (!_dictSystemConfig.contains(it.key()))
            merged.remove(it.key());
    }
    _dictSystemConfig = merged;
    _dictSystemConfigAsRead = merged;
    if (!StoreFile::write(_strSystemConfigFilePath, _dictSystemConfig)) {
        CNSLOG(2, "config file write error!!!");
        return 1;
    }
    return 0;
}

bool AppConfig::saveConfigObject(const QVariant& value, const QString& key) {
    _dictSystemConfig.insert(key, value);
    return writeSystemConfigToFile() == 0;
}

QVariant AppConfig::getConfigObjectByKey(const QString& key) const {
    return _dictSystemConfig.value(key);
}

QString AppConfig::getOperatorNameByNumeric(const QString& numeric) const {
    for (const QVariant& row : _arrPLMNList) {
        const QVariantMap entry = row.toMap();
        const auto code = entry.constFind(QStringLiteral("MCCMNC"));
        if (code != entry.cend() && same(code.value().toString(), numeric)) {
            return entry.value(QStringLiteral("OP_NAME")).toString();
        }
    }
    return QStringLiteral("");
}
