// Runs every public masking operation on generated inputs and compares each result with
// the std::regex reference.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "logging/MaskingInputs.h"
#include "logging/RegexMaskingReference.h"
#include "smarthome/SmartHomeLogger.h"

namespace smarthome {
namespace test {

inline void expectMaskingMatchesReference(size_t inputs, uint32_t seed) {
    const SmartHomeLogger logger("Differential");
    MaskingInputGenerator generator(seed);
    size_t differences = 0;
    // How often each rule actually masked something: the generator must reach every rule.
    size_t macs = 0, ips = 0, uuids = 0, endpointIds = 0, shortIds = 0;
    for (size_t n = 0; n < inputs && differences < 20; ++n) {
        const std::string input = generator.next();
        auto compare = [&](const char* operation, const std::string& ours,
                           const std::string& expected) {
            if (ours != expected) {
                ++differences;
                ADD_FAILURE() << operation << "(" << testing::PrintToString(input) << ") gave "
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
    }
    EXPECT_EQ(differences, 0u);
    const size_t enough = inputs / 100;
    EXPECT_GT(macs, enough);
    EXPECT_GT(ips, enough);
    EXPECT_GT(uuids, enough);
    EXPECT_GT(endpointIds, enough);
    EXPECT_GT(shortIds, enough);
}

}  // namespace test
}  // namespace smarthome
