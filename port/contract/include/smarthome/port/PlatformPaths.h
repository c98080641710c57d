// Fixed platform locations, resolved by the platform port.
#pragma once

#include <string>

namespace smarthome {
namespace port {

// Base directory of the secured storage: "/data/securedStorageLocation" on the device.
// On the host, the environment variable SMARTHOME_SECURED_STORAGE_DIR replaces it when
// set and non-empty (read on every call, so tests may change it).
// May be called from any thread.
std::string securedStorageBaseDir();

}  // namespace port
}  // namespace smarthome
