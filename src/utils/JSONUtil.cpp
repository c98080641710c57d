#include "smarthome/JSONUtil.h"

#include <rapidjson/encodedstream.h>
#include <rapidjson/error/en.h>
#include <rapidjson/filereadstream.h>
#include <rapidjson/reader.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cstdio>
#include <memory>
#include <new>

#include "smarthome/SmartHomeLogger.h"

namespace smarthome {

const JSONValue JSONUtil::DEFAULT_VALUE;

namespace {

using Reader =
    rapidjson::GenericReader<rapidjson::UTF8<char>, rapidjson::UTF8<char>, rapidjson::CrtAllocator>;

// Forwards every event to the document, refusing to open a level beyond the limit. The
// reader then stops with kParseErrorTermination at that point.
class DepthLimitedHandler {
public:
    explicit DepthLimitedHandler(JSONDocument& document) : document_(document) {}

    bool Null() { return document_.Null(); }
    bool Bool(bool b) { return document_.Bool(b); }
    bool Int(int i) { return document_.Int(i); }
    bool Uint(unsigned i) { return document_.Uint(i); }
    bool Int64(int64_t i) { return document_.Int64(i); }
    bool Uint64(uint64_t i) { return document_.Uint64(i); }
    bool Double(double d) { return document_.Double(d); }
    bool RawNumber(const char* str, rapidjson::SizeType length, bool copy) {
        return document_.RawNumber(str, length, copy);
    }
    bool String(const char* str, rapidjson::SizeType length, bool copy) {
        return document_.String(str, length, copy);
    }
    bool Key(const char* str, rapidjson::SizeType length, bool copy) {
        return document_.Key(str, length, copy);
    }
    bool StartObject() { return enter() && document_.StartObject(); }
    bool EndObject(rapidjson::SizeType memberCount) {
        --depth_;
        return document_.EndObject(memberCount);
    }
    bool StartArray() { return enter() && document_.StartArray(); }
    bool EndArray(rapidjson::SizeType elementCount) {
        --depth_;
        return document_.EndArray(elementCount);
    }

private:
    bool enter() { return ++depth_ <= JSONUtil::kMaxParseDepth; }

    JSONDocument& document_;
    unsigned depth_ = 0;
};

// Runs the reader over a stream inside GenericDocument::Populate, which moves the parsed
// value into the document only on success and clears the document's stack either way.
template <typename Stream>
class LimitedParse {
public:
    explicit LimitedParse(Stream& stream) : stream_(stream) {}

    bool operator()(JSONDocument& document) {
        DepthLimitedHandler handler(document);
        Reader reader(nullptr, 1024);
        result_ = reader.Parse<rapidjson::kParseDefaultFlags>(stream_, handler);
        return !result_.IsError();
    }

    rapidjson::ParseResult result() const { return result_; }

private:
    Stream& stream_;
    rapidjson::ParseResult result_;
};

template <typename Stream>
rapidjson::ParseResult parseStream(JSONDocument& doc, Stream& stream) {
    LimitedParse<Stream> generator(stream);
    try {
        doc.Populate(generator);
    } catch (const std::bad_alloc&) {
        return rapidjson::ParseResult(rapidjson::kParseErrorTermination, 0);
    }
    return generator.result();
}

std::shared_ptr<JSONDocument> createWithRoot(const std::string& text, bool wantArray) {
    if (text.empty()) {
        return nullptr;
    }
    try {
        auto doc = std::make_shared<JSONDocument>();
        if (JSONUtil::parse(*doc, text).IsError()) {
            return nullptr;
        }
        if (wantArray ? !doc->IsArray() : !doc->IsObject()) {
            return nullptr;
        }
        return doc;
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

const JSONValue* findMember(const JSONValue& object, const std::string& key) {
    auto member = object.FindMember(key);
    return member == object.MemberEnd() ? nullptr : &member->value;
}

struct FileCloser {
    void operator()(FILE* file) const { std::fclose(file); }
};

}  // namespace

rapidjson::ParseResult JSONUtil::parse(JSONDocument& doc, const char* text) {
    rapidjson::GenericStringStream<rapidjson::UTF8<char>> stream(text != nullptr ? text : "");
    return parseStream(doc, stream);
}

rapidjson::ParseResult JSONUtil::parse(JSONDocument& doc, const std::string& text) {
    return parse(doc, text.c_str());
}

std::shared_ptr<JSONDocument> JSONUtil::createFromString(const std::string& text) {
    return createWithRoot(text, false);
}

std::shared_ptr<JSONDocument> JSONUtil::createArrayFromString(const std::string& text) {
    return createWithRoot(text, true);
}

bool JSONUtil::parseIntoValue(JSONDocument& doc, const std::string& text,
                              const SmartHomeLogger* logger) {
    rapidjson::ParseResult result = parse(doc, text);
    if (!result.IsError()) {
        return true;
    }
    if (logger != nullptr) {
        logger->e("event=parserError,reason=failedToParse,action=invalid,parseError=%s,source=%s",
                  rapidjson::GetParseError_En(result.Code()), text.c_str());
    }
    return false;
}

bool JSONUtil::parseJSONFromFile(const std::string& path, JSONDocument& doc) {
    std::unique_ptr<FILE, FileCloser> file(std::fopen(path.c_str(), "r"));
    if (!file) {
        return false;
    }
    char buffer[4096];
    rapidjson::FileReadStream stream(file.get(), buffer, sizeof(buffer));
    return !parseStream(doc, stream).IsError();
}

const JSONValue& JSONUtil::getOptionalValue(const JSONValue& object, const std::string& key,
                                            const JSONValue& defaultValue) {
    if (!object.IsObject()) {
        return defaultValue;
    }
    const JSONValue* member = findMember(object, key);
    return member == nullptr || member->IsNull() ? defaultValue : *member;
}

const JSONValue& JSONUtil::getOptionalArray(const JSONValue& object, const std::string& key,
                                            const JSONValue& defaultValue) {
    if (!object.IsObject()) {
        return defaultValue;
    }
    const JSONValue* member = findMember(object, key);
    return member == nullptr || !member->IsArray() ? defaultValue : *member;
}

namespace {

// The member when object is an object holding an acceptable member (*found = true);
// otherwise logs through logger (when not null) and returns defaultValue.
template <typename Acceptable>
const JSONValue& validateAndGet(const JSONValue& object, const std::string& key, bool* found,
                                const JSONValue& defaultValue, const SmartHomeLogger* logger,
                                Acceptable acceptable, const char* missingFormat) {
    if (found != nullptr) {
        *found = false;
    }
    if (!object.IsObject()) {
        if (logger != nullptr) {
            logger->e("event=parserError,reason=jsonNotObject,action=invalid");
        }
        return defaultValue;
    }
    const JSONValue* member = findMember(object, key);
    if (member == nullptr || !acceptable(*member)) {
        if (logger != nullptr) {
            logger->e(missingFormat, key.c_str());
        }
        return defaultValue;
    }
    if (found != nullptr) {
        *found = true;
    }
    return *member;
}

}  // namespace

const JSONValue& JSONUtil::validateAndGetValue(const JSONValue& object, const std::string& key,
                                               bool* found, const JSONValue& defaultValue,
                                               const SmartHomeLogger* logger) {
    return validateAndGet(
        object, key, found, defaultValue, logger,
        [](const JSONValue& member) { return !member.IsNull(); },
        "event=parserError,reason=valueNull,action=invalid,key=%s");
}

const JSONValue& JSONUtil::validateAndGetArray(const JSONValue& object, const std::string& key,
                                               bool* found, const JSONValue& defaultValue,
                                               const SmartHomeLogger* logger) {
    return validateAndGet(
        object, key, found, defaultValue, logger,
        [](const JSONValue& member) { return member.IsArray(); },
        "event=parserError,reason=valueNotAnArray,action=invalid,key=%s");
}

std::string JSONUtil::getStringForJSON(const JSONValue& value) {
    if (value.IsNull()) {
        return {};
    }
    try {
        rapidjson::StringBuffer buffer;
        rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
        if (!value.Accept(writer)) {
            return {};
        }
        return std::string(buffer.GetString(), buffer.GetSize());
    } catch (const std::bad_alloc&) {
        return {};
    }
}

}  // namespace smarthome
