#include "smarthome/V3API/ReportEndpointConnection.h"

#include <cstring>
#include <ctime>
#include <utility>

#include "V3API/LocalTime.h"
#include "smarthome/SmartHomeLogger.h"
#include "smarthome/SystemPropertyWrapper.h"
#include "smarthome/V3API/ReportEndpointCHIPConnection.h"

namespace smarthome {
namespace V3API {

namespace {

const SmartHomeLogger logger("ReportEndpointConnection");

// The connection's members as read, before the form is chosen.
template <class Value>
struct ConnectionFields {
    std::string type;
    std::string id;
    std::string version;
    std::string macAddress;
    const Value* protocolData = nullptr;
};

template <class Value>
bool readString(const Value& value, const char* key, std::string* target) {
    if (!value.IsString()) {
        logger.e("%s:event=parserError,reason=valueNotAString,action=invalid,key=%s", "create",
                 key);
        return false;
    }
    target->assign(value.GetString(), value.GetStringLength());
    return true;
}

template <class Value>
bool readFields(const Value& object, ConnectionFields<Value>* fields) {
    for (auto member = object.MemberBegin(); member != object.MemberEnd(); ++member) {
        const char* key = member->name.GetString();
        const Value& value = member->value;
        bool ok = true;
        if (std::strcmp(key, "type") == 0) {
            ok = readString(value, "type", &fields->type);
        } else if (std::strcmp(key, "version") == 0) {
            ok = readString(value, "version", &fields->version);
        } else if (std::strcmp(key, "id") == 0) {
            ok = readString(value, "id", &fields->id);
        } else if (std::strcmp(key, "macAddress") == 0) {
            ok = readString(value, "macAddress", &fields->macAddress);
        } else if (std::strcmp(key, "protocolData") == 0) {
            fields->protocolData = &value;
        } else {
            logger.w("%s:unhandledKeyInJSONObject,key=%s", "create", key);
        }
        if (!ok) {
            return false;
        }
    }
    return true;
}

// The Matter data of protocolData, or false after the failing check's line.
struct MatterData {
    std::string manualPairingCode;
    std::string expiryText;
    ReportEndpointCHIPConnection::ExpiryTime expiry{};
    unsigned short discriminator = 0;
    bool discriminatorProvided = false;
};

template <class Value>
const Value* findMember(const Value* object, const char* key) {
    if (object == nullptr || !object->IsObject()) {
        return nullptr;
    }
    const auto member = object->FindMember(key);
    return member == object->MemberEnd() ? nullptr : &member->value;
}

template <class Value>
bool readDiscriminator(const Value* protocolData, MatterData* data) {
    if (!SystemPropertyWrapper().getBoolSystemProperty("matter.automation.testing", false)) {
        return true;
    }
    const Value* discriminator = findMember(protocolData, "discriminator");
    if (discriminator == nullptr) {
        return true;
    }
    if (!discriminator->IsUint()) {
        logger.e("%s:event=parserError,reason=valueNotAUnsignedInt,action=invalid,key=%s", "create",
                 "discriminator");
        return false;
    }
    data->discriminator = static_cast<unsigned short>(discriminator->GetUint() & 0xffffU);
    data->discriminatorProvided = true;
    logger.i("%s:FullDiscriminatorProvided=%d", "create", static_cast<int>(data->discriminator));
    return true;
}

bool parseExpiry(const std::string& text, ReportEndpointCHIPConnection::ExpiryTime* expiry) {
    std::tm calendar{};
    const char* end =
        strptime(text.c_str(), ReportEndpointCHIPConnection::kTimestampFormat, &calendar);
    if (end != text.c_str() + text.size()) {
        logger.e("%s:event=FailedToParseInputTime: %s", "create", text.c_str());
        return false;
    }
    std::time_t seconds = 0;  // local time, daylight saving as the date has it
    if (!detail::localTimeToEpoch(calendar, &seconds)) {
        logger.e("%s:reason=InvalidCommissioningWindowExpirationTimestamp", "create");
        return false;
    }
    *expiry = ReportEndpointCHIPConnection::ExpiryTime(std::chrono::seconds(seconds));
    logger.i("%s:CommissioningExpirationTimestampParsed=%s", "create", text.c_str());
    return true;
}

template <class Value>
bool readMatterData(const Value* protocolData, MatterData* data) {
    const Value* code = findMember(protocolData, "manualPairingCode");
    if (code != nullptr && code->IsString()) {
        data->manualPairingCode.assign(code->GetString(), code->GetStringLength());
    }
    if (code == nullptr || !code->IsString() ||
        !ReportEndpointCHIPConnection::isValidManualPairingCode(data->manualPairingCode)) {
        logger.e("%s:reason=InvalidManualPairingCode", "create");
        return false;
    }
    if (!readDiscriminator(protocolData, data)) {
        return false;
    }
    const Value* timestamp = findMember(protocolData, "commissioningWindowExpirationTimestamp");
    if (timestamp == nullptr || !timestamp->IsString()) {
        logger.e("%s:reason=InvalidCommissioningWindowExpirationTimestamp", "create");
        return false;
    }
    data->expiryText.assign(timestamp->GetString(), timestamp->GetStringLength());
    return parseExpiry(data->expiryText, &data->expiry);
}

}  // namespace

ReportEndpointConnection::ReportEndpointConnection(std::string type, std::string id,
                                                   std::string version)
    : type(std::move(type)), id(std::move(id)), version(std::move(version)) {}

std::shared_ptr<ReportEndpointConnection> ReportEndpointConnection::getErrorConnection() {
    auto connection = std::make_shared<ReportEndpointConnection>("", "", "");
    connection->error = true;
    return connection;
}

template <class Value>
std::shared_ptr<ReportEndpointConnection> ReportEndpointConnection::read(const Value& value) {
    if (!value.IsObject()) {
        logger.e("%s:reason=NullOrInvalidConnectionObject", "create");
        return getErrorConnection();
    }
    ConnectionFields<Value> fields;
    if (!readFields(value, &fields)) {
        return getErrorConnection();
    }
    std::shared_ptr<ReportEndpointConnection> connection;
    if (fields.type == "MATTER") {
        MatterData data;
        if (!readMatterData(fields.protocolData, &data)) {
            logger.e(
                "%s:Cannot construct ReportEndpointCHIPConnection, manualPairingCode=%s, "
                "commissioningWindowExpirationTimestamp=%s",
                "create", data.manualPairingCode.c_str(), data.expiryText.c_str());
            return getErrorConnection();
        }
        connection = std::make_shared<ReportEndpointCHIPConnection>(
            std::move(fields.id), std::move(fields.version), std::move(data.manualPairingCode),
            data.expiry, data.discriminator, data.discriminatorProvided);
    } else {
        connection = std::make_shared<ReportEndpointConnection>(
            std::move(fields.type), std::move(fields.id), std::move(fields.version));
    }
    connection->setMacAddress(std::move(fields.macAddress));
    return connection;
}

std::shared_ptr<ReportEndpointConnection> ReportEndpointConnection::create(const JSONValue& value) {
    return read(value);
}

std::shared_ptr<ReportEndpointConnection> ReportEndpointConnection::create(
    const rapidjson::Value& value) {
    return read(value);
}

void ReportEndpointConnection::write(JsonTextWriter& writer) const {
    writer.StartObject();
    writeMembers(writer);
    writer.EndObject();
}

void ReportEndpointConnection::writeMembers(JsonTextWriter& writer) const {
    const std::pair<const char*, const std::string*> members[] = {
        {"type", &type}, {"id", &id}, {"version", &version}, {"macAddress", &macAddress}};
    for (const auto& member : members) {
        if (!member.second->empty()) {
            writer.Key(member.first);
            writer.String(member.second->data(),
                          static_cast<rapidjson::SizeType>(member.second->size()));
        }
    }
}

}  // namespace V3API
}  // namespace smarthome
