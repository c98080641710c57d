// The library's JSON conventions in one place: the value and document types, parsing with
// a depth limit and logged errors, member access with defaults, and compact writing.
//
// Every JSON parse in the library goes through JSONUtil::parse, which refuses documents
// nested deeper than kMaxParseDepth levels with RapidJSON's termination error
// (kParseErrorTermination, "Terminate parsing due to Handler error."): deeper documents
// would overflow the stack when parsed, walked, written or freed.
//
// Thread-safety: stateless apart from the immutable DEFAULT_VALUE; safe from any thread
// on distinct documents.
#pragma once

#include <rapidjson/allocators.h>
#include <rapidjson/document.h>
#include <rapidjson/error/error.h>

#include <memory>
#include <string>

namespace smarthome {

class SmartHomeLogger;

using JSONValue = rapidjson::GenericValue<rapidjson::UTF8<char>, rapidjson::CrtAllocator>;
using JSONDocument = rapidjson::GenericDocument<rapidjson::UTF8<char>, rapidjson::CrtAllocator,
                                                rapidjson::CrtAllocator>;

class JSONUtil {
public:
    // Deepest nesting of objects and arrays that a parse accepts.
    static constexpr unsigned kMaxParseDepth = 512;

    // An immutable null value: every "not found" result refers to it (or to the caller's
    // default), so callers always get a valid reference.
    static const JSONValue DEFAULT_VALUE;

    // Parses the NUL-terminated text into doc with default flags and the depth limit.
    // On success doc holds the parsed value; on failure it keeps its previous value. The
    // result carries the error code and offset (doc.GetParseError() is not updated).
    static rapidjson::ParseResult parse(JSONDocument& doc, const char* text);
    static rapidjson::ParseResult parse(JSONDocument& doc, const std::string& text);

    // A document holding the parsed object (array), or null for empty text, a parse error
    // or a root of another type. Nothing is logged.
    static std::shared_ptr<JSONDocument> createFromString(const std::string& text);
    static std::shared_ptr<JSONDocument> createArrayFromString(const std::string& text);

    // Parses text into doc. On failure logs (when logger is not null) "event=parserError,
    // reason=failedToParse,action=invalid,parseError=<message>,source=<text>" at error
    // level and returns false.
    static bool parseIntoValue(JSONDocument& doc, const std::string& text,
                               const SmartHomeLogger* logger);

    // Parses the file at path into doc; false when it cannot be opened or does not parse.
    static bool parseJSONFromFile(const std::string& path, JSONDocument& doc);

    // The member, or defaultValue when object is not an object or the member is missing
    // or null.
    static const JSONValue& getOptionalValue(const JSONValue& object, const std::string& key,
                                             const JSONValue& defaultValue = DEFAULT_VALUE);
    // The member, or defaultValue when object is not an object or the member is missing
    // or not an array.
    static const JSONValue& getOptionalArray(const JSONValue& object, const std::string& key,
                                             const JSONValue& defaultValue = DEFAULT_VALUE);

    // The member when present and not null (*found = true); otherwise logs through logger
    // (when not null) and returns defaultValue with *found = false.
    static const JSONValue& validateAndGetValue(const JSONValue& object, const std::string& key,
                                                bool* found, const JSONValue& defaultValue,
                                                const SmartHomeLogger* logger);
    // As validateAndGetValue, requiring an array.
    static const JSONValue& validateAndGetArray(const JSONValue& object, const std::string& key,
                                                bool* found, const JSONValue& defaultValue,
                                                const SmartHomeLogger* logger);

    // The value written compactly; "" for a null value or when writing fails.
    static std::string getStringForJSON(const JSONValue& value);
};

}  // namespace smarthome
