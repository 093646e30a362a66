#include "Core/SourceLister/CanonicalText.h"

#include <unicode/bytestream.h>
#include <unicode/normalizer2.h>
#include <unicode/stringpiece.h>

#include <cstdint>
#include <limits>

namespace kestrove {

std::string canonicallyComposed(std::string_view text) {
    UErrorCode status = U_ZERO_ERROR;
    const auto* const composer = icu::Normalizer2::getNFCInstance(status);
    // The data is part of the library; texts longer than its sizes can tell are no titles.
    if (U_FAILURE(status) || text.size() > std::numeric_limits<std::int32_t>::max())
        return std::string(text);
    std::string composed;
    icu::StringByteSink<std::string> sink(&composed, static_cast<std::int32_t>(text.size()));
    composer->normalizeUTF8(0,
                            icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())),
                            sink, nullptr, status);
    return U_FAILURE(status) ? std::string(text) : composed;
}

} // namespace kestrove
