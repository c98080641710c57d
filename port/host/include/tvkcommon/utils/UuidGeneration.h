// The voice-SDK common library's UUID generator, as the device offers it. The host port
// implements it with the same observable result: a random (version 4, variant 1) UUID,
// 36 lower-case characters in the 8-4-4-4-12 form, drawn from the kernel's random source.
// May be called from any thread.
#pragma once

#include <string>

namespace tavraClientSDK {
namespace tvkCommon {
namespace utils {
namespace uuidGeneration {

std::string generateUUID();

}  // namespace uuidGeneration
}  // namespace utils
}  // namespace tvkCommon
}  // namespace tavraClientSDK
