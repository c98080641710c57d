// A discovery report: the endpoints a provisioner found, read from the report's JSON value
// into immutable objects.
//
// Reading never throws and never returns an empty pointer. "endpoints" absent, null or not
// an array logs "create:event=parserError,reason=valueNotAnArray,action=invalid,
// key=endpoints"; any endpoint that reads with its error flag set spoils the whole payload
// (deliberately: the report is taken whole or not at all). Either way the result is
// getErrorEndpointsPayload(); callers test hasError() of the payload only, since every inner
// failure is lifted to it. Members the model does not hold (an endpoint's other members,
// a connection's unhandled keys) are not kept.
//
// Writing back (toJsonString) gives the members the model holds, so a report made of them
// reads and writes back to an equal JSON value.
//
// Ownership: shares its endpoints. Thread-safety: immutable after reading; any number of
// threads may read and write one payload.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "smarthome/JSONUtil.h"
#include "smarthome/V3API/ReportEndpoint.h"

namespace smarthome {
namespace V3API {

class ReportEndpointsPayload {
public:
    explicit ReportEndpointsPayload(std::vector<std::shared_ptr<ReportEndpoint>> endpoints);
    virtual ~ReportEndpointsPayload() = default;

    [[nodiscard]] static std::shared_ptr<ReportEndpointsPayload> create(const JSONValue& value);
    [[nodiscard]] static std::shared_ptr<ReportEndpointsPayload> create(
        const rapidjson::Value& value);
    // No endpoints, the error flag set.
    [[nodiscard]] static std::shared_ptr<ReportEndpointsPayload> getErrorEndpointsPayload();

    [[nodiscard]] const std::vector<std::shared_ptr<ReportEndpoint>>& getEndpoints() const {
        return endpoints;
    }
    [[nodiscard]] bool hasError() const { return error; }

    // {"endpoints": [...]}.
    void write(JsonTextWriter& writer) const;
    [[nodiscard]] std::string toJsonString() const;

private:
    template <class Value>
    static std::shared_ptr<ReportEndpointsPayload> read(const Value& value);

    std::vector<std::shared_ptr<ReportEndpoint>> endpoints;
    bool error = false;
};

}  // namespace V3API
}  // namespace smarthome
