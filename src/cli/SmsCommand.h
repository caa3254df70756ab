#pragma once

#include <CLI/CLI.hpp>

#include "CliSupport.h"
#include "ModemSession.h"
#include "SMS/MessagesController.h"

// "dialtone sms": the modem's messages (list, send, delete, watch, storage, state, sc, validity) and the
// boxes kept on the computer (outbox, sent, drafts, archive).
void AddSmsCommand(CLI::App& app, CliContext& context);

// Runs one step of the controller and waits for its answer; a failure is reported as what failed.
int AwaitStep(ModemSession& session, const std::string& what,
              const std::function<void(MessagesController::Done)>& step,
              int deadlineSeconds = ModemSession::kDefaultDeadlineSeconds);
// Readies the modem for messages (settings, the SIM's computer-side inbox, the chosen storage); the SIM's
// IMSI is then messages.imsi().
int PrepareSms(ModemSession& session, MessagesController& messages);
// Builds the worker's message table; the IDs of list and delete come from it.
int ReadMessages(ModemSession& session, MessagesController& messages, QList<BLSmsListItem>& items);
// The computer's address book and the phonebooks, for messages.names(); a phonebook that cannot be read
// leaves the book's names.
void ReadNames(ModemSession& session, MessagesController& messages);
// PrepareSms, ReadMessages and ReadNames in turn.
int ReadMessagesAndNames(ModemSession& session, MessagesController& messages, QList<BLSmsListItem>& items);
