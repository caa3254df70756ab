#pragma once

#include <QString>

// The region phone numbers are read in: the country of the SIM's MCC (the IMSI's first three digits), or
// of the registered network's MCC when there is no SIM or IMSI. The MCC to country table is the
// "MCCRegion" resource. Empty when neither MCC is known.
namespace HomeRegion {

// "262" or an IMSI or an MCC+MNC starting with it -> "DE"; empty for an unknown MCC.
QString regionForMcc(const QString& mccOrLonger);
QString fromImsiOrNetwork(const QString& imsi, const QString& networkPlmn);

} // namespace HomeRegion
