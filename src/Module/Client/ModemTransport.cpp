#include "ModemTransport.h"

#include "moc_ModemTransport.cpp"
