#pragma once

#include <QString>

// How a text typed in the message editor will be sent: into how many segments it is split, in which
// coding, and how much the last segment can still take. The answers come from the same alphabet and
// splitting code that sending uses, so the counter shown while typing is what goes out.
//
// Units: septets for 7-bit text (a character of the extension table, such as "€" or "[", takes two),
// UTF-16 units for UCS2 text (a character above U+FFFF takes two). latinSupport is the sending setting
// that replaces accented Latin letters the GSM alphabet lacks when that spares the text from UCS2.
struct TSmsSegmentInfo {
    int nPackets = 1;    // segments; an empty text is still sent as one
    int nRemain = 160;   // units the last segment can still take
    int nMaxLen = 160;   // units per segment: 160 or 153 (7-bit), 70 or 67 (UCS2)
    int nEncodeType = 0; // 0 7-bit, 1 UCS2
};

class SmsSegmentCounter {
public:
    // Fills info for text; returns 0.
    static int GetMessageInfo(const QString& text, TSmsSegmentInfo& info, bool latinSupport = false);
    // The units per segment for text.
    static int getPacketsMaxLen(const QString& text, bool latinSupport = false);
    // The number of segments; remain receives the units the last one can still take.
    static int getMsgPacketAndRemain(const QString& text, int& remain, bool latinSupport = false);
};
