#include "smarthome/InProcessConnector.h"

#include <android/log.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "smarthome/SmartHomedInProcessConnector.h"
#include "testing/TestSupport.h"

namespace smarthome {
namespace {

using test::LogCapture;

const char kTag[] = "SmartHome:InProcessConnector";

class InProcessConnectorTest : public testing::Test {
protected:
    LogCapture capture;
    InProcessConnector connector{"test.connector"};
};

TEST_F(InProcessConnectorTest, PublishReachesEverySubscriberOfTheEventWithThePayload) {
    std::vector<std::string> received;
    connector.subscribeForEvent("pubA", "evt", [&](const char* data, unsigned size) {
        received.push_back("A:" + std::string(data, size));
    });
    connector.subscribeForEvent("pubB", "evt", [&](const char* data, unsigned size) {
        received.push_back("B:" + std::string(data, size));
    });
    connector.subscribeForEvent("pubA", "other",
                                [&](const char*, unsigned) { received.push_back("other"); });
    capture.clear();
    EXPECT_TRUE(connector.publishEvent("evt", std::string("hi\0x", 4)));
    EXPECT_EQ(received, (std::vector<std::string>{"A:" + std::string("hi\0x", 4),
                                                  "B:" + std::string("hi\0x", 4)}));
    EXPECT_EQ(capture.texts(ANDROID_LOG_DEBUG, kTag),
              (std::vector<std::string>{"receivedEvent=pubA:evt", "receivedEvent=pubB:evt"}));
}

TEST_F(InProcessConnectorTest, PublishWithoutPayloadDeliversNullAndZero) {
    const char* seenData = "unset";
    unsigned seenSize = 99;
    connector.subscribeForEvent("p", "e", [&](const char* data, unsigned size) {
        seenData = data;
        seenSize = size;
    });
    EXPECT_TRUE(connector.publishEvent("e"));
    EXPECT_EQ(seenData, nullptr);
    EXPECT_EQ(seenSize, 0u);
}

TEST_F(InProcessConnectorTest, PublishingAnUnknownEventWarnsAndFails) {
    EXPECT_FALSE(connector.publishEvent("nobody", "x"));
    EXPECT_EQ(capture.texts(ANDROID_LOG_WARN, kTag),
              (std::vector<std::string>{"publishEvent:noServiceRegisteredForEventName:nobody"}));
}

TEST_F(InProcessConnectorTest, SubscribingTwiceKeepsOnlyTheSecondCallback) {
    std::vector<int> calls;
    connector.subscribeForEvent("p", "e", [&](const char*, unsigned) { calls.push_back(1); });
    connector.subscribeForEvent("p", "e", [&](const char*, unsigned) { calls.push_back(2); });
    EXPECT_EQ(capture.texts(ANDROID_LOG_DEBUG, kTag),
              (std::vector<std::string>{"subscribeForEvent:publisher:event=p:e",
                                        "subscribeForEvent:publisher:event=p:e"}));
    connector.publishEvent("e");
    EXPECT_EQ(calls, std::vector<int>{2});
}

TEST_F(InProcessConnectorTest, UnsubscribeForEventNeedsAnEntryForTheEvent) {
    int calls = 0;
    connector.subscribeForEvent("p", "e", [&](const char*, unsigned) { ++calls; });
    capture.clear();
    EXPECT_FALSE(connector.unsubscribeForEvent("p", "unknown"));
    EXPECT_TRUE(connector.unsubscribeForEvent("other", "e"));
    EXPECT_TRUE(connector.unsubscribeForEvent("p", "e"));
    auto lines = capture.lines();
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0].text, "unsubscribeForEvent:publisher=p,event=unknown");
    EXPECT_EQ(lines[1].priority, ANDROID_LOG_WARN);
    EXPECT_EQ(lines[1].text, "unsubscribeForEvent:clientIsNotSubscribedToTheEventName");
    // The event keeps its (now empty) entry: publishing succeeds and calls nobody.
    EXPECT_TRUE(connector.publishEvent("e"));
    EXPECT_EQ(calls, 0);
}

TEST_F(InProcessConnectorTest, UnsubscribeFromPublisherWarnsByTheLastEventOnly) {
    EXPECT_TRUE(connector.unsubscribeFromPublisher("p"));
    EXPECT_EQ(capture.texts(ANDROID_LOG_WARN, kTag),
              (std::vector<std::string>{"unsubscribeFromPublisher:noHandlerFoundForPublisher=p"}));
    capture.clear();

    int calls = 0;
    connector.subscribeForEvent("p", "e1", [&](const char*, unsigned) { ++calls; });
    connector.subscribeForEvent("p", "e2", [&](const char*, unsigned) { ++calls; });
    EXPECT_TRUE(connector.unsubscribeFromPublisher("p"));
    EXPECT_TRUE(capture.texts(ANDROID_LOG_WARN, kTag).empty());
    connector.publishEvent("e1");
    connector.publishEvent("e2");
    EXPECT_EQ(calls, 0);

    // Only one of two events holds the publisher: whether the warning appears depends on
    // which event is examined last, and there is exactly one examination per event.
    connector.subscribeForEvent("p", "e1", [&](const char*, unsigned) { ++calls; });
    capture.clear();
    EXPECT_TRUE(connector.unsubscribeFromPublisher("p"));
    EXPECT_LE(capture.texts(ANDROID_LOG_WARN, kTag).size(), 1u);
    connector.publishEvent("e1");
    EXPECT_EQ(calls, 0);
}

TEST_F(InProcessConnectorTest, CallbacksMayUnsubscribeThemselvesDuringDelivery) {
    int calls = 0;
    connector.subscribeForEvent("a", "e", [&](const char*, unsigned) {
        ++calls;
        connector.unsubscribeFromPublisher("a");
        connector.unsubscribeFromPublisher("b");
    });
    connector.subscribeForEvent("b", "e", [&](const char*, unsigned) { ++calls; });
    EXPECT_TRUE(connector.publishEvent("e"));
    EXPECT_EQ(calls, 2);
    EXPECT_TRUE(connector.publishEvent("e"));
    EXPECT_EQ(calls, 2);
}

TEST_F(InProcessConnectorTest, SyncRequestsRunTheHandlerOrAnswerStatusTwo) {
    EXPECT_TRUE(connector.registerSyncRequestHandler("echo", [](const char* data, unsigned size) {
        return std::vector<char>(data, data + size);
    }));
    capture.clear();
    auto reply = connector.makeSyncRequest("svc", "echo", "abc", 3);
    EXPECT_EQ(reply.first, 0);
    EXPECT_EQ(std::string(reply.second.begin(), reply.second.end()), "abc");
    EXPECT_EQ(capture.texts(ANDROID_LOG_DEBUG, kTag),
              std::vector<std::string>{"receivedSyncRequest=echo"});

    auto missing = connector.makeSyncRequest("svc", "nothing", "abc", 3);
    EXPECT_EQ(missing.first, 2);
    EXPECT_TRUE(missing.second.empty());
    EXPECT_EQ(capture.texts(ANDROID_LOG_ERROR, kTag),
              std::vector<std::string>{
                  "makeSyncRequest:event=RequestNameNotFound,action=DroppingRequest, "
                  "requestName:nothing"});

    EXPECT_TRUE(connector.unregisterSyncRequestHandler("echo"));
    EXPECT_FALSE(connector.unregisterSyncRequestHandler("echo"));
    EXPECT_EQ(connector.makeSyncRequest("svc", "echo", nullptr, 0).first, 2);
}

TEST_F(InProcessConnectorTest, AsyncRequestReturnsAfterTheHandlerRanOnAnotherThread) {
    std::thread::id handlerThread;
    std::string seenTag;
    bool handlerReturned = false;
    connector.registerAsyncRequestHandler(
        "work", [&](const char* data, unsigned size, IAsyncReqConnector::ReplyCallback reply,
                    const std::string& tag) {
            handlerThread = std::this_thread::get_id();
            seenTag = tag;
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            reply(true, data, size);
            handlerReturned = true;
        });
    std::string replied;
    bool replyOk = false;
    int status = connector.makeAsyncRequest("svc", "work", "payload", 7,
                                            [&](bool ok, const char* data, unsigned size) {
                                                replyOk = ok;
                                                replied.assign(data, size);
                                            });
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(handlerReturned);
    EXPECT_TRUE(replyOk);
    EXPECT_EQ(replied, "payload");
    EXPECT_NE(handlerThread, std::this_thread::get_id());
    EXPECT_EQ(seenTag.rfind("0x", 0), 0u) << seenTag;
}

TEST_F(InProcessConnectorTest, AsyncRegistrationKeepsTheFirstHandlerAndUnknownNamesFail) {
    std::vector<int> ran;
    auto handler = [&ran](int id) {
        return [&ran, id](const char*, unsigned, IAsyncReqConnector::ReplyCallback,
                          const std::string&) { ran.push_back(id); };
    };
    EXPECT_TRUE(connector.registerAsyncRequestHandler("job", handler(1)));
    EXPECT_TRUE(connector.registerAsyncRequestHandler("job", handler(2)));
    EXPECT_EQ(capture.texts(ANDROID_LOG_DEBUG, kTag),
              (std::vector<std::string>{"registerAsyncRequestHandler:request=job",
                                        "registerAsyncRequestHandler:request=job"}));
    EXPECT_EQ(connector.makeAsyncRequest("svc", "job", nullptr, 0, nullptr), 0);
    EXPECT_EQ(ran, std::vector<int>{1});

    bool replied = false;
    EXPECT_EQ(connector.makeAsyncRequest("svc", "none", nullptr, 0,
                                         [&](bool, const char*, unsigned) { replied = true; }),
              2);
    EXPECT_FALSE(replied);
    EXPECT_EQ(capture.texts(ANDROID_LOG_ERROR, kTag),
              std::vector<std::string>{
                  "makeAsyncRequest:event=RequestNameNotFound,action=DroppingRequest, "
                  "requestName:none"});
    EXPECT_TRUE(connector.unregisterAsyncRequestHandler("job"));
    EXPECT_FALSE(connector.unregisterAsyncRequestHandler("job"));
}

TEST_F(InProcessConnectorTest, RecurringCallbacksAreNotSupported) {
    EXPECT_FALSE(connector.setRecurringCallback([](const char*, unsigned) {}));
    EXPECT_EQ(connector.makeAsyncRequestWithRecurringCallback("svc", "r", nullptr, 0), 4);
    EXPECT_TRUE(connector.initialize());
    EXPECT_EQ(connector.getConnectorName(), "test.connector");
    EXPECT_EQ(connector.getConnectorType(), ConnectorConstants::ConnectorType::IN_PROCESS);
}

TEST(SmartHomedInProcessConnector, HandsOutOneNamedInstance) {
    auto first = SmartHomedInProcessConnector::getInstance();
    auto second = SmartHomedInProcessConnector::getInstance();
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first, second);
    EXPECT_EQ(first->getConnectorName(), "com.tirn47.smarthomed");
}

}  // namespace
}  // namespace smarthome
