// Drives the splitters, number parsers and hex helpers with arbitrary text and checks the
// invariants callers rely on.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "smarthome/StringUtils.h"

using smarthome::StringUtils;

namespace {

void check(bool condition) {
    if (!condition) {
        std::abort();
    }
}

std::string joined(const std::vector<std::string>& pieces, const std::string& delim) {
    std::string out;
    for (size_t i = 0; i < pieces.size(); ++i) {
        out += (i == 0 ? "" : delim) + pieces[i];
    }
    return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2) {
        return 0;
    }
    const char delimChar = static_cast<char>(data[0]);
    const int maxCount = static_cast<int8_t>(data[1]);
    const std::string text(reinterpret_cast<const char*>(data) + 2, size - 2);
    const std::string delim(1, delimChar);

    // The string form cuts at every delimiter: joining the pieces gives the text back.
    auto pieces = StringUtils::split(text, delim);
    check(text.empty() ? pieces.empty() : joined(pieces, delim) == text);
    auto charPieces = StringUtils::split(text, delimChar);
    check(charPieces.size() <= pieces.size());
    auto limited = StringUtils::split(text, delimChar, maxCount);
    check(maxCount <= 1 ? limited.size() == (text.empty() ? 0u : 1u)
                        : limited.size() <= static_cast<size_t>(maxCount));

    for (const std::string& d : {delim, std::string(), std::string(",{"), std::string("}")}) {
        auto braced = StringUtils::splitStrIgnoringSubStrInBrackets(text, d);
        size_t total = 0;
        for (const auto& piece : braced) {
            total += piece.size();
        }
        check(total <= text.size());
    }
    StringUtils::getSubStrInOutermostBracket(text);
    StringUtils::trim(text);
    StringUtils::replaceAll(text, delim, "xx");

    long long i64 = 0;
    StringUtils::stringToInt64(text.c_str(), &i64, maxCount & 0x3f);
    unsigned long long u64 = 0;
    StringUtils::stringToUInt64(text.c_str(), &u64, 16);
    unsigned short u16 = 0;
    if (StringUtils::stringToUInt16(text.c_str(), &u16, 10)) {
        check(StringUtils::stringToInt64(text.c_str(), &i64, 10) && i64 == u16);
    }
    double d = 0;
    StringUtils::stringToDouble(text.c_str(), &d);
    StringUtils::toInt(text);
    StringUtils::toInt64(text);
    StringUtils::hexStringToUint64(text);

    auto bytes = StringUtils::hexStringToByteVector(text);
    check(bytes.size() * 2 == (text.size() % 2 == 0 ? text.size() : 0));
    std::vector<unsigned char> raw(data, data + size);
    check(StringUtils::hexStringToByteVector(StringUtils::byteVectorToHexString(raw)) == raw);

    std::string endpoint = text;
    bool ok = StringUtils::sanitizeEndpointId(endpoint);
    check(ok == (!endpoint.empty() && endpoint.size() <= 256));
    return 0;
}
