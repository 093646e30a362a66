#include "Core/CaptureSource/CaptureSourceCoding.h"

#include <fmt/format.h>

#include <concepts>
#include <string_view>
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

std::unexpected<DecodingError> typeMismatch(std::string description) {
    return std::unexpected(
        DecodingError(DecodingError::Kind::typeMismatch, std::move(description)));
}

std::expected<const Json*, DecodingError> member(const Json& object, const char* key) {
    if (!object.is_object())
        return typeMismatch("Expected an object.");
    const auto found = object.find(key);
    if (found == object.end()) {
        return std::unexpected(DecodingError(DecodingError::Kind::keyNotFound,
                                             fmt::format("No value for the key \"{}\".", key)));
    }
    return &*found;
}

template <std::integral Number>
std::expected<Number, DecodingError> number(const Json& object, const char* key) {
    const auto value = member(object, key);
    if (!value)
        return std::unexpected(value.error());
    const Json& json = **value;
    if (!json.is_number_integer())
        return typeMismatch(fmt::format("Expected an integer for the key \"{}\".", key));
    // What is parsed without a sign is stored unsigned, and may be beyond the signed range.
    const bool fits = json.is_number_unsigned()
                          ? std::in_range<Number>(*json.get_ptr<const Json::number_unsigned_t*>())
                          : std::in_range<Number>(*json.get_ptr<const Json::number_integer_t*>());
    if (!fits) {
        return std::unexpected(
            DecodingError(DecodingError::Kind::dataCorrupted,
                          fmt::format("The number for the key \"{}\" does not fit.", key)));
    }
    return json.get<Number>();
}

std::expected<std::string, DecodingError> text(const Json& object, const char* key) {
    const auto value = member(object, key);
    if (!value)
        return std::unexpected(value.error());
    const auto* const string = (*value)->get_ptr<const Json::string_t*>();
    if (string == nullptr)
        return typeMismatch(fmt::format("Expected a text for the key \"{}\".", key));
    return *string;
}

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
    const auto identifier = number<std::uint32_t>(payload, identifierKey);
    if (!identifier)
        return std::unexpected(identifier.error());
    return isDisplay ? CaptureSource::display(*identifier) : CaptureSource::window(*identifier);
}

std::expected<WindowOwnerIdentity, DecodingError> decodeWindowOwnerIdentity(const Json& json) {
    const auto processID = number<ProcessID>(json, processIDKey);
    if (!processID)
        return std::unexpected(processID.error());
    auto bundleIdentifier = text(json, bundleIdentifierKey);
    if (!bundleIdentifier)
        return std::unexpected(std::move(bundleIdentifier.error()));
    return WindowOwnerIdentity{*processID, std::move(*bundleIdentifier)};
}

std::expected<ManualWindowSelection, DecodingError> decodeManualWindowSelection(const Json& json) {
    const auto windowID = number<WindowID>(json, windowIDKey);
    if (!windowID)
        return std::unexpected(windowID.error());
    const auto ownerJson = member(json, ownerKey);
    if (!ownerJson)
        return std::unexpected(ownerJson.error());
    auto owner = decodeWindowOwnerIdentity(**ownerJson);
    if (!owner)
        return std::unexpected(std::move(owner.error()));
    return ManualWindowSelection{*windowID, std::move(*owner)};
}

} // namespace kestrove
