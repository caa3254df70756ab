#pragma once

#include <initializer_list>
#include <list>
#include <string>

#include "ExecATCallback.h"
#include "PbTypes.h"

// The SIM ("SM") and modem ("ME") phonebooks: storage use (AT+CPBS), length limits and entries
// (AT+CPBR), writing and deleting (AT+CPBW). Names travel as UCS2 hex text, numbers as they stand.
// Operations return 0 on success, 1 on a failure found here, else the execute-AT code (2 time-out,
// 30 cancelled). Storage code 0 is the SIM; any other code is the modem's own phonebook.
// The use counts and index lists are as current as the last GetList or GetStorageInfo of each storage;
// AddItem relies on them, so read a storage before adding to it.
class CPbUtility {
public:
    CPbUtility() = default;
    virtual ~CPbUtility() = default;

    // Stores the callback every command runs through; returns 0.
    int RegisterExecAT(ExecATCallback callback);
    // The callback registered last, or null.
    ExecATCallback ExecAT() const { return m_pfnExecAT; }

    // Runs one command and cuts the modem's echo off a successful answer; 1 without a callback.
    int WriteComm(std::string& response, const char* command, const char* expected, int timeoutMs,
                  std::initializer_list<const char*> finals = {"OK", "+CME ERROR", "ERROR"});

    // AT+CSCS with the name of code (0 "GSM" ... 5 "UCS2" ... 10 "8859-H"); codePage fills "PCCP%03d"
    // (code 3), isoPart "8859-%d" (code 6). 0 only when the answer holds "OK", else 1.
    int SelectTeCharacterSet(int code, int codePage, int isoPart);
    // AT+CPBS="SM" for 0, "ME" otherwise. 1 for an answer without "OK".
    int SetStorage(int storage);

    // Selects the storage and reads its used and total counts (AT+CPBS?), which are kept.
    int GetStorageInfo(int storage);
    // The modem storage first, then the SIM; the first failure is returned.
    int GetStorageInfo(TPbStorageInfo& info);
    // The longest number and name of the selected storage (AT+CPBR=?). Values the answer lacks are left
    // alone or set to 0 as the answer allows; 1 only without "+CPBR: ".
    int GetMaxLengthPair(int& nameLength, int& numberLength);
    // The lengths of both storages. A SIM that cannot be selected only leaves its bits clear; a modem
    // storage that cannot be selected or read fails the whole call.
    int GetConstraint(TPbConstraint& constraint);

    // Every entry of one storage, in the order listed; also rebuilds its index list. An empty storage
    // sends no AT+CPBR. An entry that cannot be decoded empties the list and fails the read.
    int GetList(int storage, std::list<TPbBaseItem>& items);
    // The SIM's entries, then the modem's, appended to items only when both reads succeed.
    int InitList(std::list<TPbItem>& items);

    // Writes the entry at the chosen index: 1 when the storage is full (as last read), else the first
    // index not in use, returned in index.
    int AddItem(const TPbNewItem& item, int& index);
    // Writes the entry. The whole command is upper-cased, number included. A command that fails gives 2,
    // whatever the channel's code. Counts and index lists stay as they are.
    int UpdateItem(const TPbItem& item);
    int DeleteItem(int storage, int index);

    // One entry line, the text behind "+CPBR: ": 5,"12345",145,"00480069". A type of the international
    // class puts "+" before a number without one; a name of fewer than four hex digits is empty.
    static int DecodeItem(const std::string& line, TPbBaseItem& item);

    // Hexadecimal text helpers, under their historical names.
    // The value of one hexadecimal digit, or -1.
    static int BcdToDec(char digit);
    // Four upper-case hex digits per character (its low 16 bits) and a NUL into out. 1 for a null input or
    // output, or when outSize cannot hold them all.
    static int WStringToBcd(const wchar_t* text, char* out, int outSize);
    // Every four hex digits of hex to one character, at most outSize - 1 of them, then a NUL; a trailing
    // group of fewer than four digits is ignored. 1 at the first non-hex digit (characters decoded before
    // it stay written) or for a null argument.
    static int BcdToWString(const char* hex, wchar_t* out, int outSize);

    // Entry indexes in use in a storage, ascending; for tests and the business layer.
    const std::list<int>& UsedIndexes(int storage) const { return m_indexes[Slot(storage)]; }

private:
    static int Slot(int storage) { return storage == PB_STORAGE_SIM ? 0 : 1; }
    static void InsertSorted(std::list<int>& indexes, int index);

    ExecATCallback m_pfnExecAT = nullptr;
    int m_used[2] = {0, 0};
    int m_total[2] = {0, 0};
    std::list<int> m_indexes[2];
};
