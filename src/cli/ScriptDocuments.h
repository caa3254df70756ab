#pragma once

#include <nlohmann/json.hpp>

#include "ConnectRecords.h"
#include "EquipmentRecords.h"
#include "NetworkRecords.h"
#include "PhonebookRecords.h"
#include "PinRecords.h"
#include "SmsRecords.h"
#include "StatisticsRecords.h"

// The worker's records as the tool's JSON shows them to scripts (doc/json.md): states as words with
// the standard's code beside them, levels and counters as numbers, absence as null.

nlohmann::json EquipmentDocument(const BLEquipmentInfo& info);
// "state", "pin_attempts", "puk_attempts" (null when the modem does not tell).
nlohmann::json SimDocument(const BLPinCheckState& state);
nlohmann::json NetworkDocument(const BLNetworkInfo& info);
// "registration" and "registration_code" (27.007's <stat>) for the worker's registration state.
nlohmann::json RegistrationDocument(int state);
nlohmann::json OperatorDocument(const BLNetworkListItem& item);
nlohmann::json NetworkSetDocument(const BLNetworkSet& set);
// name: the contact's name for the number, empty when none is known.
nlohmann::json MessageDocument(const BLSmsListItem& item, const QString& name = {});
nlohmann::json ContactDocument(const BLPbItem& item);
// Counters of a connection: duration in seconds, bytes, and rates in bytes per second.
nlohmann::json TrafficDocument(const BLConnectStatistics& statistics);
