// Local calendar time to seconds since the epoch, as mktime() with tm_isdst = -1 gives
// them, without mktime's cost: glibc's mktime re-reads the zone (a stat of /etc/localtime
// when TZ is unset) on every call. Here the zone is refreshed (tzset) at most once a
// second, so a changed zone is still seen within a second; the conversion itself uses
// timegm() and localtime_r()'s offsets.
#pragma once

#include <ctime>

namespace smarthome {
namespace V3API {
namespace detail {

// False when the time cannot be represented (mktime would return -1).
bool localTimeToEpoch(const std::tm& local, std::time_t* seconds);

}  // namespace detail
}  // namespace V3API
}  // namespace smarthome
