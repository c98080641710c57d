// Host stand-in for the device's system-property interface, with the device's rules:
//
// - PROP_VALUE_MAX is 92: a value read back holds at most 91 characters plus NUL.
// - PROPERTY_KEY_MAX is 32, the device's name size (31 characters plus NUL), for callers
//   that keep a name in a fixed buffer. The store itself does not limit names: a name of
//   32 characters or more is set and read like any other, whole, never cut to 31.
// - property_get(key, value, default) writes the property into value and returns its
//   length. A missing property reads exactly like an empty one: then default is
//   copied (cut to 91 characters) and its length returned, or "" and 0 when default
//   is null. value must hold PROPERTY_VALUE_MAX bytes.
// - property_get_bool: reads with an empty default; a one-character value '0' or 'n'
//   is false, '1' or 'y' true; a longer value is compared exactly (case and blanks
//   count) with "no", "false", "off" (false) and "yes", "true", "on" (true); anything
//   else, a missing property included, gives default_value.
// - property_get_int32/int64: missing or empty gives default_value; otherwise strtoimax
//   with base 0 ("0x1f" is hex, "010" octal, leading blanks skipped, trailing
//   characters ignored); no digit, overflow or a value out of the type's range gives
//   default_value.
// - property_set(key, value): 0 on success, -1 on failure. A null value means "".
//   The name must be non-empty, must not start or end with '.', must not contain "..",
//   and may hold only letters, digits and . _ - @ :. A value of 92 bytes or more is
//   refused unless the name starts with "ro."; a "ro." property that exists is never
//   changed (even to the same value); a value that is not valid UTF-8 is refused.
//   A property_get right after a successful set sees the new value.
//
// On the host the properties live in a thread-safe in-process store. On first use it
// loads key=value lines from the file named by SMARTHOME_PROPERTIES, when that is set.
#pragma once

#include <stdbool.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define PROP_NAME_MAX 32
#define PROP_VALUE_MAX 92
#define PROPERTY_KEY_MAX PROP_NAME_MAX
#define PROPERTY_VALUE_MAX PROP_VALUE_MAX

int property_get(const char* key, char* value, const char* default_value);
bool property_get_bool(const char* key, bool default_value);
int64_t property_get_int64(const char* key, int64_t default_value);
int32_t property_get_int32(const char* key, int32_t default_value);
int property_set(const char* key, const char* value);

#ifdef __cplusplus
}
#endif
