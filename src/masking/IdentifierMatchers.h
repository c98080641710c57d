// Recognisers for the identifier formats the logger masks. Each accepts exactly the
// strings that a whole-string match of the corresponding pattern accepts (C locale):
//
//   mac(':')   ^([0-9A-Fa-f]{2}[:]){5,7}([0-9A-Fa-f]{2})$
//   mac('-')   ^([0-9A-Fa-f]{2}[-]){5,7}([0-9A-Fa-f]{2})$
//   ipv4       ^(([01]?\d\d?|2[0-4]\d|25[0-5])\.){3}([01]?\d\d?|2[0-4]\d|25[0-5])$
//   hex32      [0-9a-fA-F]{8}[0-9a-fA-F]{4}[0-9a-fA-F]{4}[0-9a-fA-F]{4}[0-9a-fA-F]{12}
//   endpointId [[:xdigit:]]{4}_[[:xdigit:]]{4}_[[:alnum:]]+
//   shortId    (?=.*\d)[a-zA-Z0-9_.-]{6,19}
//
// They are plain scans: no allocation, no backtracking. Safe from any thread.
#pragma once

#include <cstddef>
#include <string>

namespace smarthome {
namespace detail {

// A view of a string's characters without leading and trailing isspace characters.
struct TrimmedView {
    const char* data;
    size_t size;
    std::string str() const { return std::string(data, size); }
};

TrimmedView trimmedView(const std::string& text);

bool isMacWithSeparator(const char* text, size_t size, char separator);
bool isIPv4(const char* text, size_t size);
bool isHex32(const char* text, size_t size);
bool isEndpointId(const char* text, size_t size);
bool isShortId(const char* text, size_t size);

}  // namespace detail
}  // namespace smarthome
