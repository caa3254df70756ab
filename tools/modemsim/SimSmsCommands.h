#pragma once

#include <string>

#include <nlohmann/json.hpp>

#include "SimModem.h"
#include "SimPdu.h"

namespace modemsim {

// SMS in PDU mode: AT+CNMI, AT+CSCB, AT+CMMS, AT+CMGF, AT+CSMS, AT+CSCA, AT+CPMS, AT+CMGL, AT+CMGR,
// AT+CMGD, AT+CMGS and AT+CMGW (the "> " prompt, the PDU, Ctrl-Z; ESC aborts). Sent messages are kept;
// a requested status report comes back from the network, is stored and announced with "+CDSI:"; a
// message to the SIM's own number comes back as a new message.
void RegisterSmsCommands(CommandTable& table);

// Stores a PDU in a storage; the new index, or 0 when the storage is full or unknown.
int StoreMessage(SimState& state, const std::string& storage, int status, const std::string& pdu,
                 int tpduLength);

// What the control socket's "sms" asks the network to deliver.
struct IncomingSms {
    DeliverParams params;
    bool ref16 = false;
    std::string order; // "" in order, "reverse", or the sequence numbers "2,1,3"
};

// The network delivers a message, split into parts when it is long; each part is stored in the receive
// storage and announced as AT+CNMI asks. A full storage rejects the message.
nlohmann::json DeliverText(SimModem& m, const IncomingSms& sms);
// The network delivers one PDU given in hex (service-centre part first).
nlohmann::json DeliverPdu(SimModem& m, const std::string& hex);

} // namespace modemsim
