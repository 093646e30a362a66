#include "Core/CaptureSource/CaptureSourceCoding.h"

#include <utility>

namespace kestrove {

namespace {

constexpr auto displayKey = "display";
constexpr auto windowKey = "window";
constexpr auto identifierKey = "_0";
constexpr auto processIDKey = "processID";
constexpr auto bundleIdentifierKey = "bundleIdentifier";
constexpr auto windowIDKey = "windowID";
constexpr auto ownerKey = "owner";

} // namespace

Json encode(const CaptureSource& source) {
    Json identifier = Json::object();
    identifier[identifierKey] = source.identifier();
    Json json = Json::object();
    json[source.isDisplay() ? displayKey : windowKey] = std::move(identifier);
    return json;
}

Json encode(const WindowOwnerIdentity& owner) {
    Json json = Json::object();
    json[processIDKey] = owner.processID;
    json[bundleIdentifierKey] = owner.bundleIdentifier;
    return json;
}

Json encode(const ManualWindowSelection& selection) {
    Json json = Json::object();
    json[windowIDKey] = selection.windowID;
    json[ownerKey] = encode(selection.owner);
    return json;
}

std::expected<CaptureSource, DecodingError> decodeCaptureSource(const Json& json) {
    if (!json.is_object())
        return typeMismatch("Expected an object.");
    const bool isDisplay = json.contains(displayKey);
    if (isDisplay == json.contains(windowKey))
        return typeMismatch("Invalid number of keys found, expected one.");
    const Json& payload = *json.find(isDisplay ? displayKey : windowKey);
    const auto identifier = decodeNumber<std::uint32_t>(payload, identifierKey);
    if (!identifier)
        return std::unexpected(identifier.error());
    return isDisplay ? CaptureSource::display(*identifier) : CaptureSource::window(*identifier);
}

std::expected<WindowOwnerIdentity, DecodingError> decodeWindowOwnerIdentity(const Json& json) {
    const auto processID = decodeNumber<ProcessID>(json, processIDKey);
    if (!processID)
        return std::unexpected(processID.error());
    auto bundleIdentifier = decodeText(json, bundleIdentifierKey);
    if (!bundleIdentifier)
        return std::unexpected(std::move(bundleIdentifier.error()));
    return WindowOwnerIdentity{*processID, std::move(*bundleIdentifier)};
}

std::expected<ManualWindowSelection, DecodingError> decodeManualWindowSelection(const Json& json) {
    const auto windowID = decodeNumber<WindowID>(json, windowIDKey);
    if (!windowID)
        return std::unexpected(windowID.error());
    const auto ownerJson = decodeMember(json, ownerKey);
    if (!ownerJson)
        return std::unexpected(ownerJson.error());
    auto owner = decodeWindowOwnerIdentity(**ownerJson);
    if (!owner)
        return std::unexpected(std::move(owner.error()));
    return ManualWindowSelection{*windowID, std::move(*owner)};
}

} // namespace kestrove
