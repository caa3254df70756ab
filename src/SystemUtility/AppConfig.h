#pragma once

#include "APNInfo.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QVariant>
#include <QVariantList>
#include <QVariantMap>

#include <functional>
#include <optional>

// The application's configuration: system settings, the user's connection profiles, the per-SIM profiles
// and the read-only operator tables. One object, created at start-up after the log, used on the GUI
// thread only. Every change is written to its file at once; a failed write is logged and the in-memory
// state is kept.
//
// Files: in the configuration folder (UserDataFolder)
//   "SystemConfig.plist"     dictionary of settings
// and in the data folder
//   "UserAPNList.plist"      array of profile dictionaries (the user list)
//   "UserIMSIAPNList.plist"  dictionary IMSI -> array of profile dictionaries (the per-SIM lists)
// and, read-only in the resources, "PredefinedProfile" and "PLMN" (tab-separated lines, "\r\n" between
// lines). A missing file reads as empty; an unreadable one is kept aside (DamagedFile) and reads as empty.
// The profile lists hold passwords and are written readable by the owner only.
//
// One index addresses both user lists: below 90000 the user list, from 90000 on the per-SIM list at
// (index - 90000). An index outside the list (an index equal to the count included) addresses nothing.
class AppConfig {
public:
    static constexpr int kIMSIListIndexBase = 90000;

    // Loads the predefined profiles, the user list, the PLMN table and the settings, in that order.
    AppConfig();

    void initSystemConfig();
    void initFixApnList();
    void initUserApnList();
    void initPLMNList();
    // The two resource tables' readers, on their text (UTF-8) rather than the resource file; nothing
    // stands for a missing file.
    void readFixApnList(const std::optional<QByteArray>& text);
    void readPLMNList(const std::optional<QByteArray>& text);

    // Chooses the profiles for the SIM in use (IMSI, service provider name, which may be null or empty),
    // makes them the per-SIM list of that IMSI and writes it. Later per-SIM operations use this IMSI.
    QList<APNInfo> getFixApnByIMSI(const QString& imsi, const QString& spn);
    // Appends the predefined profiles whose MCC+MNC starts the IMSI, in file order; returns how many.
    int findApnItemByIMSI(const QString& imsi, QList<APNInfo>* result) const;

    // The lists themselves, not copies.
    QList<APNInfo>& getUserApnList() { return _arrUserApnList; }
    QList<APNInfo>& getUserIMSIApnList() { return _arrUserIMSIApnList; }
    const QList<APNInfo>& fixedApnList() const { return _arrApnListFixed; }
    const QVariantList& plmnList() const { return _arrPLMNList; }

    // Writes this copy as the SIM's list (the per-SIM file's other SIMs are kept). 0 written, 1 failed
    // ("file write error!!!" at level 2). The user list is only written through the changes below.
    int writeUserIMSIApnListToFile();

    // Replaces the item at the index (90000 rule) and writes that list; an index outside the list logs
    // "index is over max count nIndex = %d" and replaces nothing, but the file is still written.
    void saveUserAPNItem(int index, const APNInfo& item);
    void addUserAPNItem(const APNInfo& item);
    void deleteSingleUserApnItem(int index);
    int deleteUserApnItems(const QList<APNInfo>& items);

    // The default profile: in the user list, or in the per-SIM list of one SIM (then only while that SIM
    // is in use). It is always item 0 of its list.
    std::optional<APNInfo> getDefaultUserAPNItem() const;
    bool isSetDefaultUserApn() const;
    bool isFromIMSI() const;
    int setDefaultUserApnItemsByIndex(int index);
    // The item is looked up in the user list: by address when it is an element of getUserApnList(),
    // else the first equal profile. An item not found changes nothing.
    int setDefaultUserApnItems(const APNInfo& item);
    int removeDefaultApnItems();

    void setSMSValidityPeriod(int validityPeriod);
    int getSMSValidityPeriod() const;

    // "TRUE" unless stored "FALSE"; a getter that finds no value stores and writes its default first
    // (sounds on, delivery reports off).
    void setConnectSoundEnable(bool enable);
    void setDisconnectSoundEnable(bool enable);
    void setSMSIncomingSoundEnable(bool enable);
    void setSMSDeliveryReportEnable(bool enable);
    bool getConnectSoundEnable();
    bool getDisconnectSoundEnable();
    bool getSMSIncomingSoundEnable();
    bool getSMSDeliveryReportEnable();

    // 0 written, 1 failed ("config file write error!!!" at level 2).
    int writeSystemConfigToFile();
    // Stores the value under the key and writes the settings; true when written.
    bool saveConfigObject(const QVariant& value, const QString& key);
    QVariant getConfigObjectByKey(const QString& key) const;

    // The operator name of the first PLMN line with exactly this MCC+MNC, "" if there is none.
    QString getOperatorNameByNumeric(const QString& numeric) const;

    // The user data folder, created when missing.
    static QString getUserDataPath();

    // Kept for callers; not used by the operations above.
    struct DeviceInfo {
        bool blOK = false;
        QString strManufacturer;
        QString strModel;
        QString strRevision;
        QString strSerialNumber;
        QString strImsi;
    };
    DeviceInfo& deviceInfo() { return _deviceInfo; }

    const QString& currentIMSI() const { return _strIMSIRetain; }

private:
    struct DefaultApnInfo {
        QString isSetDefault; // "TRUE" / "FALSE", null when never stored
        QString defaultIMSI;  // "" for the user list, else the IMSI of the per-SIM list
    };

    QList<APNInfo>* listForIndex(int index, int* inListIndex);
    bool flag(const QString& key, bool defaultValue);
    void setFlag(const QString& key, bool value);
    void storeDefaultMarker();
    // Re-reads the user list (or this SIM's list) under its file's lock, applies the change to it, writes
    // it and keeps it as this copy. 0 written, 1 failed.
    int changeUserList(bool perSim, const std::function<void(QList<APNInfo>&)>& change);

    QList<APNInfo> _arrUserApnList;
    QList<APNInfo> _arrUserIMSIApnList;
    QList<APNInfo> _arrApnListFixed;
    QVariantList _arrPLMNList;
    QVariantMap _dictSystemConfig;
    QVariantMap _dictSystemConfigAsRead; // the file's content when last read or written
    QString _strUserAPNListFilePath;
    QString _strUserIMSIApnListFilePath;
    QString _strSystemConfigFilePath;
    DeviceInfo _deviceInfo;
    QString _strIMSIRetain;
    DefaultApnInfo _defAPNInfo;
};
