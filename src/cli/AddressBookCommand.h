#pragma once

#include <QString>

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "CliSupport.h"

// The computer's address book in "dialtone contacts": list, add, update and delete with --store pc (no
// modem needed), and import, export, search and copy, which reach the SIM's and the modem's phonebooks
// when they are asked for.

// One line of a contacts listing: "sim      3  Anna            +49 170 1234567".
struct ContactRow {
    std::string store;
    qsizetype index;
    QString name;
    std::string numbers;
};
// The rows under a header, or "No contacts".
void PrintContactRows(const std::vector<ContactRow>& rows);

// "pc" commands of contacts list, add, update and delete; index is 1-based, as list shows it.
int ListBook(CliContext& context);
int AddToBook(CliContext& context, const std::string& name, const std::string& number);
int UpdateInBook(CliContext& context, int index, const std::string& name, const std::string& number);
int DeleteFromBook(CliContext& context, int index);

// contacts import, export, search and copy.
void AddAddressBookCommands(CLI::App& contacts, CliContext& context);
