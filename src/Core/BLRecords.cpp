#include "BLRecords.h"

#include <QList>

namespace {

template <typename... Records> void registerAll() {
    (qRegisterMetaType<Records>(), ...);
    (qRegisterMetaType<QList<Records>>(), ...);
}

} // namespace

void registerRecordMetaTypes() {
    static const bool registered = [] {
        registerAll<BLEquipmentInfo, BLDiagInfo, BLPINInfo, BLPinCheckState, BLPINEnableInfo, BLPINChangeInfo,
                    BLPINVerifyPukInfo, BLNetworkInfo, BLNetworkListItem, BLNetworkSet, BLNetRegState,
                    BLPbItem, BLPBNewItem, BLPBDeleteItem, BLPBStorageInfo, BLPbConstraint, BLSmsListItem,
                    BLSmsReceive, BLSmsSendItem, BLSmsValidPeriod, BLSmsStorageState, BLSmsFilterConfig,
                    BLUssdSendCmdInfo, BLUssdReceive, BLConnectDialinfo, BLConnectStatistics, BLSatMenuItem,
                    BLSatCommand, BLSatResponse, BLCallItem>();
        return true;
    }();
    (void)registered;
}
