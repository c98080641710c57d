// Runs every public masking operation on generated inputs and compares each result with
// the std::regex reference.
#pragma once

#include <cutils/properties.h>
#include <gtest/gtest.h>

#include <string>

#include "smarthome-host/HostPort.h"
#include "smarthome/SmartHomeLogger.h"
#include "testing/MaskingInputs.h"
#include "testing/RegexMaskingReference.h"

namespace smarthome {
namespace test {

inline void expectMaskingMatchesReference(size_t inputs, uint32_t seed) {
    const SmartHomeLogger logger("Differential");
    MaskingInputGenerator generator(seed);
    size_t differences = 0;
    // How often each rule actually masked something: the generator must reach every rule.
    size_t macs = 0, ips = 0, uuids = 0, endpointIds = 0, shortIds = 0, jsonMasks = 0;
    // Build types the secret rule sees, switched every so often; all of them are set, so
    // the property read never logs.
    static const char* const kBuildTypes[] = {"user", "userdebug", "eng", "users", "User"};
    port::clearSystemProperties();
    for (size_t n = 0; n < inputs && differences < 20; ++n) {
        const std::string input = generator.next();
        std::string shown = input;  // the input as the failure message names it
        auto compare = [&](const char* operation, const std::string& ours,
                           const std::string& expected) {
            if (ours != expected) {
                ++differences;
                ADD_FAILURE() << operation << "(" << testing::PrintToString(shown) << ") gave "
                              << testing::PrintToString(ours) << ", reference "
                              << testing::PrintToString(expected);
            }
        };
        const std::string referenceUid = reference::obfuscateUid(input);
        macs += reference::mac(input, false).first && !input.empty();
        ips += reference::ip(input).first && !input.empty();
        uuids += reference::uuid(input, false).first && !input.empty();
        endpointIds += referenceUid.find("_XXX") != std::string::npos;
        shortIds += reference::obfuscateUsbEpId(input).size() == 7;
        compare("obfuscateMac", logger.obfuscateMac(input), reference::obfuscateMac(input));
        compare("compressAndObfuscateMac", logger.compressAndObfuscateMac(input),
                reference::compressAndObfuscateMac(input));
        compare("obfuscateIp", logger.obfuscateIp(input), reference::obfuscateIp(input));
        compare("obfuscateUid", logger.obfuscateUid(input), referenceUid);
        compare("compressAndObfuscateUid", logger.compressAndObfuscateUid(input),
                reference::compressAndObfuscateUid(input));
        compare("obfuscateUsbEpId", logger.obfuscateUsbEpId(input),
                reference::obfuscateUsbEpId(input));
        compare("obfuscateSerialForPhilipsHue", logger.obfuscateSerialForPhilipsHue(input),
                reference::obfuscateSerialForPhilipsHue(input));
        if (n % 1000 == 0) {
            // "ro." properties are write-once: clear the store before switching.
            port::clearSystemProperties();
            EXPECT_EQ(property_set("ro.build.type", kBuildTypes[(n / 1000) % 5]), 0);
        }
        compare("obfuscateSecret", logger.obfuscateSecret(input),
                reference::obfuscateSecret(input));

        // The JSON rule on the same input (rarely JSON) and on a generated document.
        const std::string key = generator.jsonKey();
        std::string json = input;
        compare("obfuscateJsonObjectForKey", logger.obfuscateJsonObjectForKey(json, key),
                reference::obfuscateJsonObjectForKey(input, key));
        json = generator.json();
        shown = json + " key " + key;
        const std::string original = json;
        const std::string expected = reference::obfuscateJsonObjectForKey(json, key);
        compare("obfuscateJsonObjectForKey", logger.obfuscateJsonObjectForKey(json, key), expected);
        compare("obfuscateJsonObjectForKey argument", json, original);
        jsonMasks += expected.find("\"XXXX\"") != std::string::npos;
    }
    port::clearSystemProperties();
    EXPECT_EQ(differences, 0u);
    const size_t enough = inputs / 100;
    EXPECT_GT(macs, enough);
    EXPECT_GT(ips, enough);
    EXPECT_GT(uuids, enough);
    EXPECT_GT(endpointIds, enough);
    EXPECT_GT(shortIds, enough);
    EXPECT_GT(jsonMasks, enough);
}

}  // namespace test
}  // namespace smarthome
