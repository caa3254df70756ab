#include "PduCommand.h"

#include "ScriptJson.h"

#include <cstdio>
#include <memory>
#include <optional>

#include "NumberArguments.h"
#include "SMS/SmsPduText.h"
#include "TerminalText.h"

namespace {

using nlohmann::json;

int Decode(const CliContext& context, const std::string& hex, std::optional<int> tpduLength) {
    const SmsPduText::Decoded decoded = SmsPduText::Decode(hex, tpduLength);
    if (decoded.result != 0)
        return ReportFailure(context, decoded.result, "the PDU could not be decoded");
    if (context.json) {
        PrintJson(ScriptKeys(decoded.fields));
        return EXIT_OK;
    }
    // Addresses and texts come from the PDU as it was given: shown, never obeyed.
    for (const auto& [label, value] : decoded.lines)
        std::printf("%-16s%s\n", label.c_str(), TerminalText(value, LineBreaks::Keep).c_str());
    return EXIT_OK;
}

// Without a modem there is no home country: an international number becomes E.164, a national one keeps
// its digits.
int Encode(const CliContext& context, const std::string& typed, const std::string& text, bool report,
           const std::optional<SmsPduText::Validity>& validity) {
    const std::optional<std::string> dial = DialNumber(typed, {});
    if (!dial)
        return EXIT_USAGE;
    const SmsPduText::Encoded encoded = SmsPduText::Encode(*dial, text, report, validity);
    if (encoded.result != 0)
        return ReportFailure(context, encoded.result, "the message could not be encoded");
    if (context.json) {
        json list = json::array();
        for (const auto& [length, pdu] : encoded.segments)
            list.push_back({{"tpdu_length", length}, {"pdu", pdu}});
        PrintJson({{"encoding_code", encoded.encodeType}, {"segments", list}});
    } else {
        for (const auto& segment : encoded.segments)
            std::printf("%s\n", segment.second.c_str());
    }
    return EXIT_OK;
}

} // namespace

void AddPduCommand(CLI::App& app, CliContext& context) {
    CLI::App* pdu = app.add_subcommand("pdu", "Decode or encode SMS PDUs, without a modem");
    pdu->require_subcommand(1);

    struct DecodeArgs {
        std::string hex;
        std::optional<int> tpduLength;
    };
    auto decodeArgs = std::make_shared<DecodeArgs>();
    CLI::App* decode = pdu->add_subcommand("decode", "Decode a PDU as AT+CMGR or AT+CMGL print it");
    decode->add_option("HEX", decodeArgs->hex, "The PDU in hex, service-centre part first")->required();
    decode
        ->add_option("--tpdu-len", decodeArgs->tpduLength,
                     "The modem's length field (TPDU octets); computed from HEX when left out")
        ->check(CLI::Range(0, 1000));
    decode->callback([&context, decodeArgs] {
        context.exitCode = Decode(context, decodeArgs->hex, decodeArgs->tpduLength);
    });

    struct EncodeArgs {
        std::string number;
        std::string text;
        bool report = false;
        std::string validity;
    };
    auto encodeArgs = std::make_shared<EncodeArgs>();
    CLI::App* encode = pdu->add_subcommand(
        "encode", "Split a text into SMS-SUBMIT PDUs as the send path does, one per line");
    encode
        ->add_option("NUMBER", encodeArgs->number,
                     "Destination; a leading + or 00 marks an international number")
        ->required()
        ->check(NumberRefusal);
    encode->add_option("TEXT", encodeArgs->text, "The message text (UTF-8)")->required();
    encode->add_flag("--report", encodeArgs->report, "Ask for a status report");
    encode
        ->add_option("--validity", encodeArgs->validity,
                     "Validity period: max, or weeks/days/hours like 1w2d12h")
        ->check([](const std::string& value) {
            return SmsPduText::ParseValidity(value)
                       ? std::string()
                       : std::string("expected max or a period like 2d, 1w3d, 12h");
        });
    encode->callback([&context, encodeArgs] {
        std::optional<SmsPduText::Validity> validity;
        if (!encodeArgs->validity.empty())
            validity = SmsPduText::ParseValidity(encodeArgs->validity);
        context.exitCode =
            Encode(context, encodeArgs->number, encodeArgs->text, encodeArgs->report, validity);
    });
}
