#include "TempHome.h"

#include "BLRecords.h"
#include "SMS/MessagesController.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

#include "QtEventLoop.h"
#include "RecordingTransport.h"
