#include "compose/ValueMask.h"

namespace {

constexpr std::string_view kConfidential = "[...]";
constexpr std::string_view kUnknown = "???";

} // namespace

std::optional<std::string_view> ValueMask::For(const DataField& field,
                                               CZrHbDataTransmit::EZrHbRequestDataType eType) {
    if (eType == CZrHbDataTransmit::eRequestDataType_Plain) return std::nullopt;
    if (eType != CZrHbDataTransmit::eRequestDataType_Masked) return kUnknown;
    switch (field.eConfidentiality) {
    case CZrHbDataTransmit::eDataConfidentialityType_Public:
        return std::nullopt;
    case CZrHbDataTransmit::eDataConfidentialityType_Confidential:
        return kConfidential;
    }
    return kUnknown;
}
