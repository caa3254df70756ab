#pragma once

#include <QMutex>
#include <QString>
#include <QVariantList>

#include <list>
#include <string>

#include "SmsTypes.h"

class TInterfaceAtSublayer;

// The computer-side inbox: messages moved out of the modem memory, kept per SIM (IMSI text) in
// "SmsInBoxPC.plist" in the user data folder:
//
//     { "<imsi>": [ { "SMS_REF": 1, "SMS_PDU_LEN": 24, "SMS_PDU": "0791..." }, ... ], ... }
//
// The file is re-read for every call and written whole (atomically, up to 3 attempts, synced to disk)
// after every change, so records survive a crash of the program. Changes hold the file's StoreLock, so
// two processes (two sticks, the app and a tool command) never lose each other's records. A PDU already
// stored is not stored again: its record's index is returned, and listing shows each PDU once. Every call
// returns 0 on success, 1 on failure; an empty IMSI is refused. The three static callbacks are those of
// CSmsUtility's computer-side store; their context is the SMSExt object.
class SMSExt {
public:
    static SMSExt& shared();

    // Registers the store with the sublayer and enables it.
    static int registerWith(TInterfaceAtSublayer& sublayer);

    QString filePath() const;

    int list(const QString& imsi, std::list<TSMSRecordInPC>& records);
    // pdu: the hex text as read (service centre included); newIndex receives the record's SMS_REF.
    int save(const QString& imsi, const QString& pdu, int pduLength, int& newIndex);
    // 1 when no record has that index.
    int remove(const QString& imsi, int index);

    // The next SMS_REF for an IMSI's records: one past the highest while that is below 30000, else the
    // first number of a gap between neighbours; -1 when there is none.
    static int newIndex(const QVariantList& records);

    static int ListCallback(void* context, const char* imsi, std::list<TSMSRecordInPC>& records);
    static int SaveCallback(void* context, const char* imsi, const char* pdu, int tpduLength, int& newIndex);
    static int DeleteCallback(void* context, const char* imsi, int index);

private:
    // The file's content under its lock, with the leftovers of an interrupted write merged in.
    QVariantMap readUnderLock() const;
    bool writeFile(const QVariantMap& root) const;

    QMutex _mutex;
};
