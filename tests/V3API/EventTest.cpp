#include <gtest/gtest.h>
#include <tvkcommon/utils/UuidGeneration.h>

#include <regex>
#include <set>

#include "smarthome/V3API/ResponseEvent.h"

namespace smarthome {
namespace V3API {
namespace {

const std::regex kUuidV4("[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}");

std::shared_ptr<Context> directive(const std::string& nameSpace, const std::string& name) {
    return std::make_shared<Context>(nameSpace, name, "3", "token", "endpoint-1", "request-9");
}

TEST(ResponseEvent, NameAndNamespaceFollowTheDirectiveAndItsPayload) {
    struct Case {
        const char* directiveName;
        const char* payload;
        const char* name;
        const char* nameSpace;
    };
    const Case cases[] = {
        {"ReportState", "not json", "StateReport", "Tavra"},
        {"ReportState", R"({"a":1})", "StateReport", "Ns"},
        {"SetMode", R"({"mode":"eco"})", "SetMode.Response", "Ns"},
        {"SetMode", "{}", "Response", "Ns"},
        {"SetMode", " {}", "SetMode.Response", "Ns"},  // only the two-character text is special
        {"SetMode", "not json", "Response", "Tavra"},
        {"SetMode", "[1]", "Response", "Tavra"},
        {"SetMode", "", "Response", "Tavra"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.directiveName) + " " + c.payload);
        const auto event = ResponseEvent::create(c.payload, directive("Ns", c.directiveName));
        EXPECT_EQ(event->getName(), c.name);
        EXPECT_EQ(event->getNamespace(), c.nameSpace);
    }
}

TEST(ResponseEvent, TheEnvelopeCarriesHeaderEndpointAndPayload) {
    const auto event = ResponseEvent::create(R"({"mode":"eco"})", directive("Ns", "SetMode"));
    const std::string messageId = event->getPayload()->getMessageId();
    EXPECT_TRUE(std::regex_match(messageId, kUuidV4)) << messageId;
    EXPECT_EQ(event->toJson(),
              R"({"event":{"header":{"namespace":"Ns","name":"SetMode.Response","messageId":")" +
                  messageId +
                  R"(","payloadVersion":"3","correlationToken":"token"},)"
                  R"("endpoint":{"endpointId":"endpoint-1"},"payload":{"mode":"eco"}}})");
    // A payload that is no object is sent as an empty one; no payload object at all leaves
    // the header with the event's names only.
    EXPECT_NE(ResponseEvent::create("oops", directive("Ns", "X"))->toJson().find(R"("payload":{})"),
              std::string::npos);
    EXPECT_EQ(Event("N", "E", nullptr).toJson(),
              R"({"event":{"header":{"namespace":"N","name":"E"},"endpoint":{},"payload":{}}})");
}

TEST(EventResponsePayload, BuildsTheDirectivesHeaderAndEndpoint) {
    EventResponsePayload payload("{}", directive("Ns", "SetMode"));
    JSONDocument header;
    payload.buildHeader(header);
    EXPECT_EQ(JSONUtil::getStringForJSON(header),
              R"({"namespace":"Ns","name":"SetMode","messageId":")" + payload.getMessageId() +
                  R"(","payloadVersion":"3","correlationToken":"token"})");
    JSONDocument endpoint;
    payload.buildEndpoint(endpoint);
    EXPECT_EQ(JSONUtil::getStringForJSON(endpoint), R"({"endpointId":"endpoint-1"})");
    EXPECT_EQ(
        directive("Ns", "SetMode")->toJson(),
        R"({"namespace":"Ns","name":"SetMode","payloadVersion":"3","correlationToken":"token",)"
        R"("endpointId":"endpoint-1","eventRequestId":"request-9"})");
}

TEST(UuidGeneration, GivesDistinctVersion4Texts) {
    std::set<std::string> seen;
    for (int i = 0; i < 1000; ++i) {
        const std::string id = tavraClientSDK::tvkCommon::utils::uuidGeneration::generateUUID();
        ASSERT_TRUE(std::regex_match(id, kUuidV4)) << id;
        seen.insert(id);
    }
    EXPECT_EQ(seen.size(), 1000U);
}

}  // namespace
}  // namespace V3API
}  // namespace smarthome
