// The compact JSON text writer the discovery report's objects write themselves to.
#pragma once

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

namespace smarthome {
namespace V3API {

using JsonTextWriter = rapidjson::Writer<rapidjson::StringBuffer>;

}  // namespace V3API
}  // namespace smarthome
