#pragma once

#include <optional>
#include <string>
#include <vector>

// Bands and radio modes by name, as "network band" and "network mode" show and take them. The numbers the
// modem uses keep working as input.

// The band mask as names: "all" for every band, else "GSM 900, GSM 1800, UMTS 2100"; bits without a name
// follow as a hex mask ("GSM 900, 0x1").
std::string BandText(int mask);
// "all", a list of names ("gsm900,umts2100", case and spaces ignored), or a number (decimal or 0x hex).
// nullopt with the reason (naming the known names) in error.
std::optional<int> ParseBand(const std::string& text, std::string& error);

// "auto", "3g-preferred", "2g-only", "2g-preferred", "3g-only"; the number for one outside the table.
std::string ModeText(int mode);
std::optional<int> ParseMode(const std::string& text, std::string& error);

// The names for completion.
std::vector<std::string> BandNames();
std::vector<std::string> ModeNames();
