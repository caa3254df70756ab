#pragma once

#include <cstdint>

// Field sizes of the equipment identity, terminator included.
constexpr int kEquipmentTextSize = 2049;
constexpr int kImsiSize = 16;
constexpr int kMsisdnNumberSize = 20;
constexpr int kHardwareVersionSize = 41;

// Bits of TEquipmentInfo::nMask: which fields hold a value.
enum : uint32_t {
    EQUIPMENT_MANUFACTURER = 1,
    EQUIPMENT_MODEL = 2,
    EQUIPMENT_REVISION = 4,
    EQUIPMENT_SERIAL_NUMBER = 8,
    EQUIPMENT_IMSI = 16,
    EQUIPMENT_MSISDN = 32,
    EQUIPMENT_HARDWARE_VERSION = 64,
};

// The own number from "+CNUM: ": at most 19 characters, so the field always holds its own terminator.
// The byte behind it is only zeroed.
struct TMsisdnInfo {
    char szNumber[kMsisdnNumberSize] = {};
    char chTerminator = 0;
};

// The modem's identity, filled by GetEquipmentInfo. Texts are NUL-terminated.
struct TEquipmentInfo {
    uint32_t nMask = 0;
    char szManufacturer[kEquipmentTextSize] = {};
    char szModel[kEquipmentTextSize] = {};
    char szRevision[kEquipmentTextSize] = {};
    char szSerialNumber[kEquipmentTextSize] = {};
    char szImsi[kImsiSize] = {};
    TMsisdnInfo msisdn;
    char szHardwareVersion[kHardwareVersionSize] = {};
};
