// Text helpers used throughout the library: trimming, splitting, number parsing, hex
// conversion, UTF-8 cleaning and identifier sanitising. Character classes follow the C
// locale. Nothing here logs or throws on bad input: conversions report failure through
// a bool (leaving the out-parameter untouched) or a (success, value) pair.
//
// Thread-safety: all functions are reentrant and share no state.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <sstream>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace smarthome {

enum class VantorPredefinedKey : int32_t;
enum class VantorDimensionType : int32_t;
struct VantorDimension;

class StringUtils {
public:
    // ---- trimming and cleaning -------------------------------------------------------
    static std::string trim(std::string s);
    static std::string removeWhiteSpaces(std::string s);
    static std::string stripCharacter(std::string s, char c);
    // In place: keeps only isspace, isalnum and ispunct characters (so control characters
    // and every byte of 0x80 and above go).
    static void removeSpecialCharacters(std::string& s);
    // In place: keeps letters, digits, blanks, '_' and # & - : ; = ? @. True when 1 to 256
    // characters remain.
    static bool sanitizeEndpointId(std::string& s);
    static std::string camelMerge(const std::string& first, std::string second);
    static std::string toLowerCase(const std::string& s);
    static std::string toUpperCase(const std::string& s);
    // Every non-overlapping occurrence of from, left to right, resuming after the inserted
    // text. An empty s or from returns s unchanged.
    static std::string replaceAll(const std::string& s, const std::string& from,
                                  const std::string& to);
    static bool startsWith(const std::string& s, const std::string& prefix);
    static bool hasSuffix(const std::string& s, const std::string& suffix);
    // Each part followed by separator, then the trailing separator removed; a null
    // separator concatenates; null parts count as empty.
    static std::string concatenate(std::initializer_list<const char* const> parts,
                                   const char* separator);

    // ---- splitting -----------------------------------------------------------------------
    // Pieces as a line reader with delim as terminator reads them: "a,b," gives a and b;
    // ",a,,b" gives "", a, "", b. An empty s gives no pieces.
    static std::vector<std::string> split(std::string s, char delim);
    // At most maxCount pieces: maxCount - 1 pieces as above, then the rest of the text up
    // to the next newline. maxCount of 1 or less gives s as the only piece.
    static std::vector<std::string> split(std::string s, char delim, int maxCount);
    // Cuts at every occurrence of delim; a trailing delimiter gives a final empty piece.
    // An empty delim gives s as the only piece.
    static std::vector<std::string> split(const std::string& s, const std::string& delim);
    // As the string form, but never cuts inside a {...} group: "a,{b,c},d" gives a, {b,c}
    // and d. Text with an unclosed group ends with the rest of s as the last piece.
    static std::vector<std::string> splitStrIgnoringSubStrInBrackets(const std::string& s,
                                                                     const std::string& delim);
    // With i the first '{' and j the last '}', the substring starting at i + 1 that is
    // j - 1 characters long (cut at the end of s): exactly the inside when s starts with
    // '{'. Empty when s is empty or lacks either brace.
    static std::string getSubStrInOutermostBracket(const std::string& s);

    // ---- numbers from text ------------------------------------------------------------
    // strtoll/strtoull with the given base; only blanks may follow the number. Null
    // arguments, nothing parsed, overflow or a value out of range give false.
    static bool stringToInt64(const char* s, long long* out, int base);
    static bool stringToInt(const char* s, int* out);
    static bool stringToInt32(const char* s, int* out);
    static bool stringToUInt8(const char* s, unsigned char* out, int base);
    static bool stringToUInt16(const char* s, unsigned short* out, int base);
    static bool stringToUInt32(const char* s, unsigned int* out);
    // A leading '-' is accepted as strtoull does: the value wraps.
    static bool stringToUInt64(const char* s, unsigned long long* out, int base);
    // strtod; trailing characters are not examined. False for nothing parsed, ERANGE, NaN.
    static bool stringToDouble(const char* s, double* out);

    static std::pair<bool, long long> toInt64(std::string s);
    // Reads an int with a text stream, in hex when "0x" occurs anywhere in s. Failure
    // gives (false, -1); trailing characters are ignored.
    static std::pair<bool, int> toInt(std::string s);
    // Hexadecimal unsigned 64-bit, "0x" put in front when absent. Failure gives
    // (false, all bits set).
    static std::pair<bool, unsigned long long> hexStringToUint64(const std::string& s);

    // ---- hex and bytes ------------------------------------------------------------------
    // One byte per whole character pair, parsed by strtol base 16, into out (which must
    // hold s.size() / 2 bytes). A final unpaired character is ignored, so nothing is
    // written past s.size() / 2 bytes; a null out writes nothing.
    static void hexStringToByteArray(const std::string& s, unsigned char* out);
    // Empty for an empty or odd-length s.
    static std::vector<unsigned char> hexStringToByteVector(const std::string& s);
    static std::string byteVectorToHexString(std::vector<unsigned char> bytes);
    static std::string byteVectorToString(std::vector<unsigned char> bytes);
    static std::string uint64ToHexString(unsigned long long v);
    static std::string uint64ToHexString(unsigned long long v, unsigned char width);
    // The two's-complement negation of v (2^64 - v) in 16 lower-case hex digits.
    static std::string uint64ToHex2sComplementString(unsigned long long v);

    // ---- UTF-8 ----------------------------------------------------------------------------
    // Lax check: overlong two-byte forms and code points above U+10FFFF pass; surrogates
    // (0xED followed by 0xA0 or more) and truncated or malformed sequences do not.
    static bool isValidUtf8String(const std::string& s);
    // Keeps only the sequences isValidUtf8String accepts. A broken sequence is dropped
    // together with the byte that broke it.
    static std::string removeNonUtf8Characters(const std::string& s);

    // ---- printing -------------------------------------------------------------------------
    // "[a, b, c]"; an empty vector gives "[]".
    static std::string toString(const std::vector<std::string>& values);
    template <typename T, typename = std::enable_if_t<std::is_arithmetic<T>::value>>
    static std::string toString(const std::vector<T>& values) {
        std::ostringstream out;
        out << '[';
        for (size_t i = 0; i < values.size(); ++i) {
            if (i != 0) {
                out << ", ";
            }
            out << +values[i];
        }
        out << ']';
        return out.str();
    }
    // The enumerator's name ("PLATFORM", "LONG", ...); "INVALID" for values out of range.
    static std::string toString(VantorPredefinedKey key);
    static std::string toString(VantorDimensionType type);
    // "[d1, d2]" with each dimension in its output-operator form.
    static std::string toString(const std::vector<VantorDimension>& dimensions);
};

}  // namespace smarthome
