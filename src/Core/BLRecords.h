#pragma once

#include "CallRecords.h"
#include "ConnectRecords.h"
#include "EquipmentRecords.h"
#include "NetworkRecords.h"
#include "PhonebookRecords.h"
#include "PinRecords.h"
#include "SatRecords.h"
#include "SmsRecords.h"
#include "StatisticsRecords.h"
#include "UssdRecords.h"

// The request and result records that travel under "VALUE_OBJECT" between the modules and the worker.
// They are plain values: a QVariant carries a copy, and a copy is what crosses to the other thread.

// Registers every record type, BLConnectDialinfo included, and the list types the results use, by name with
// QMetaType, so that queued calls can carry them and a streamed QVariant can be read back. Safe to call more
// than once, from any thread.
void registerRecordMetaTypes();
