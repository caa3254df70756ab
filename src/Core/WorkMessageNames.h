#pragma once

#include <QString>

// The names of the requests the modules send to the worker, and of the reports it sends on its own. An
// answer is posted under its request's name. The worker compares them exactly: the five names without
// "MESSAGE_" are spelled so on both sides and must stay so.

inline const QString MESSAGE_INIT_WORK_THREAD = QStringLiteral("MESSAGE_INIT_WORK_THREAD");
inline const QString MESSAGE_CONNECT_DIALUP = QStringLiteral("MESSAGE_CONNECT_DIALUP");
inline const QString MESSAGE_CONNECT_DISCONNECT = QStringLiteral("MESSAGE_CONNECT_DISCONNECT");
inline const QString MESSAGE_CONNECT_PPP_STATUS = QStringLiteral("MESSAGE_CONNECT_PPP_STATUS");
inline const QString MESSAGE_CONNECT_GET_STATISTICS = QStringLiteral("MESSAGE_CONNECT_GET_STATISTICS");
inline const QString MESSAGE_CONNECT_STATUS = QStringLiteral("MESSAGE_CONNECT_STATUS");
inline const QString MESSAGE_MODEM_INIT = QStringLiteral("MESSAGE_MODEM_INIT");
inline const QString MESSAGE_NETWORK_GET_LIST = QStringLiteral("MESSAGE_NETWORK_GET_LIST");
inline const QString MESSAGE_PB_INIT_LIST = QStringLiteral("MESSAGE_PB_INIT_LIST");
inline const QString MESSAGE_PB_GET_STORAGE_INFO = QStringLiteral("MESSAGE_PB_GET_STORAGE_INFO");
inline const QString MESSAGE_PB_GET_CONSTRAINT = QStringLiteral("MESSAGE_PB_GET_CONSTRAINT");
inline const QString MESSAGE_SMS_SEND = QStringLiteral("MESSAGE_SMS_SEND");
inline const QString MESSAGE_SMS_INIT = QStringLiteral("MESSAGE_SMS_INIT");
inline const QString MESSAGE_SYSTEM_GET_EQUIPMENT_INFO = QStringLiteral("MESSAGE_SYSTEM_GET_EQUIPMENT_INFO");
inline const QString MESSAGE_SYSTEM_GET_DIAG_INFO = QStringLiteral("MESSAGE_SYSTEM_GET_DIAG_INFO");
inline const QString MESSAGE_NETWORK_SET = QStringLiteral("MESSAGE_NETWORK_SET");
inline const QString MESSAGE_NETWORK_INIT = QStringLiteral("MESSAGE_NETWORK_INIT");
inline const QString NETWORK_GET_BAND = QStringLiteral("NETWORK_GET_BAND");
inline const QString NETWORK_GET_MODE = QStringLiteral("NETWORK_GET_MODE");
inline const QString MESSAGE_NETWORK_GET_INFO = QStringLiteral("MESSAGE_NETWORK_GET_INFO");
// The received signal strength in dBm (negative; 0 when the modem does not know it), from "+CSQ".
inline const QString MESSAGE_NETWORK_GET_SIGNAL_DBM = QStringLiteral("MESSAGE_NETWORK_GET_SIGNAL_DBM");
// One signal reading as a dictionary (keys in SignalSample): the dBm figures, bars, bearer and cell.
inline const QString MESSAGE_NETWORK_GET_SIGNAL = QStringLiteral("MESSAGE_NETWORK_GET_SIGNAL");
inline const QString NETWORK_SET_BAND = QStringLiteral("NETWORK_SET_BAND");
inline const QString NETWORK_SET_MODE = QStringLiteral("NETWORK_SET_MODE");
inline const QString NETWORK_GET_REG_STATE = QStringLiteral("NETWORK_GET_REG_STATE");
inline const QString MESSAGE_PB_ADD_ITEM = QStringLiteral("MESSAGE_PB_ADD_ITEM");
inline const QString MESSAGE_PB_DELETE_ITEM = QStringLiteral("MESSAGE_PB_DELETE_ITEM");
inline const QString MESSAGE_PB_UPDATE_ITEM = QStringLiteral("MESSAGE_PB_UPDATE_ITEM");
inline const QString MESSAGE_PIN_CHANGE = QStringLiteral("MESSAGE_PIN_CHANGE");
inline const QString MESSAGE_PIN_CHECK_STATE = QStringLiteral("MESSAGE_PIN_CHECK_STATE");
inline const QString MESSAGE_PIN_ENABLE = QStringLiteral("MESSAGE_PIN_ENABLE");
inline const QString MESSAGE_PIN_GET_INFO = QStringLiteral("MESSAGE_PIN_GET_INFO");
inline const QString MESSAGE_PIN_GET_STATE = QStringLiteral("MESSAGE_PIN_GET_STATE");
inline const QString MESSAGE_PIN_VERIFY = QStringLiteral("MESSAGE_PIN_VERIFY");
inline const QString MESSAGE_PIN_VERIFY_PUK = QStringLiteral("MESSAGE_PIN_VERIFY_PUK");
inline const QString MESSAGE_SMS_DELETE = QStringLiteral("MESSAGE_SMS_DELETE");
inline const QString MESSAGE_SMS_GET_LIST = QStringLiteral("MESSAGE_SMS_GET_LIST");
inline const QString MESSAGE_SMS_GET_PREFERRED_STORAGE = QStringLiteral("MESSAGE_SMS_GET_PREFERRED_STORAGE");
inline const QString MESSAGE_SMS_SET_PREFERRED_STORAGE = QStringLiteral("MESSAGE_SMS_SET_PREFERRED_STORAGE");
inline const QString MESSAGE_SMS_GET_SC = QStringLiteral("MESSAGE_SMS_GET_SC");
inline const QString MESSAGE_SMS_SET_SC = QStringLiteral("MESSAGE_SMS_SET_SC");
inline const QString MESSAGE_SMS_GET_STORAGE_STATE = QStringLiteral("MESSAGE_SMS_GET_STORAGE_STATE");
inline const QString MESSAGE_SMS_SET_VALID_PERIOD = QStringLiteral("MESSAGE_SMS_SET_VALID_PERIOD");
inline const QString MESSAGE_CONFIG_FILTER_SMS = QStringLiteral("MESSAGE_CONFIG_FILTER_SMS");
inline const QString MESSAGE_SMS_SET_STATUS_REPORT = QStringLiteral("MESSAGE_SMS_SET_STATUS_REPORT");
inline const QString MESSAGE_USSD_CHECKSTATE = QStringLiteral("MESSAGE_USSD_CHECKSTATE");
inline const QString MESSAGE_USSD_SETSTATE = QStringLiteral("MESSAGE_USSD_SETSTATE");
inline const QString MESSAGE_USSD_SENDCMD = QStringLiteral("MESSAGE_USSD_SENDCMD");
inline const QString MESSAGE_STK_GET_MENU = QStringLiteral("MESSAGE_STK_GET_MENU");
inline const QString MESSAGE_STK_SELECT_ITEM = QStringLiteral("MESSAGE_STK_SELECT_ITEM");
inline const QString MESSAGE_STK_POLL = QStringLiteral("MESSAGE_STK_POLL");
inline const QString MESSAGE_CALL_DIAL = QStringLiteral("MESSAGE_CALL_DIAL");
inline const QString MESSAGE_CALL_ANSWER = QStringLiteral("MESSAGE_CALL_ANSWER");
inline const QString MESSAGE_CALL_HANGUP = QStringLiteral("MESSAGE_CALL_HANGUP");
inline const QString MESSAGE_CALL_SEND_DTMF = QStringLiteral("MESSAGE_CALL_SEND_DTMF");
inline const QString MESSAGE_CALL_GET_LIST = QStringLiteral("MESSAGE_CALL_GET_LIST");
inline const QString MESSAGE_GPS_INIT = QStringLiteral("MESSAGE_GPS_INIT");
inline const QString MESSAGE_GPS_UNINIT = QStringLiteral("MESSAGE_GPS_UNINIT");
// Keeps messages moved out of the modem memory in the computer-side inbox of the SIM; the argument is the
// SIM's IMSI (read from the modem when absent).
inline const QString MESSAGE_SMS_USE_PC_INBOX = QStringLiteral("MESSAGE_SMS_USE_PC_INBOX");

// Sent by the worker without a request.
inline const QString MESSAGE_DEVICE_FIND = QStringLiteral("MESSAGE_DEVICE_FIND");
inline const QString MESSAGE_USB_UNPLUGGED = QStringLiteral("MESSAGE_USB_UNPLUGGED");
inline const QString MESSAGE_RPT_RECEIVE_SMS = QStringLiteral("MESSAGE_RPT_RECEIVE_SMS");
inline const QString MESSAGE_RPT_RECEIVE_FILTER_SMS = QStringLiteral("MESSAGE_RPT_RECEIVE_FILTER_SMS");
inline const QString MESSAGE_RPT_RECEIVE_USSD = QStringLiteral("MESSAGE_RPT_RECEIVE_USSD");
// New-message reports were merged or fell far behind: list the storage again to show every message.
inline const QString MESSAGE_RPT_SMS_RELIST = QStringLiteral("MESSAGE_RPT_SMS_RELIST");
