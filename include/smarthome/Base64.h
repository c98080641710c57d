// RFC 4648 Base64 with the standard alphabet and '=' padding. Decoding also accepts
// unpadded input; '=' may only end the input (at most two of them).
// Thread-safety: stateless; safe from any thread.
#pragma once

#include <string>

namespace smarthome {

class Base64 {
public:
    static std::string Encode(const std::string& in);
    // Three quarters of the length minus the number of trailing '=' characters.
    static unsigned int DecodedLength(const std::string& in);
    // Decodes into out, writing at most size bytes. False for a character outside the
    // alphabet, misplaced padding, or a buffer too small; out may then hold part of the
    // decoded bytes.
    static bool Decode(const std::string& in, unsigned char* out, unsigned int size);
    // Decodes into out (replaced only on success). False for invalid input or input that
    // decodes to nothing.
    static bool Decode(const std::string& in, std::string& out);

    // The six-bit value of an alphabet character, or -1.
    static int b64_lookup(char c);
    // Four six-bit values to three bytes.
    static void a4_to_a3(unsigned char* a3, const unsigned char* a4);
};

}  // namespace smarthome
