// mac_text.h - a hardware address as text.
#ifndef VELK_BASE_MAC_TEXT_H_
#define VELK_BASE_MAC_TEXT_H_

#include <cstdint>

namespace velk {

// Writes 12 upper-case hexadecimal digits without separators, and a NUL.
void PutMac(char* out, const uint8_t (&mac)[6]);

}  // namespace velk

#endif  // VELK_BASE_MAC_TEXT_H_
