// Addresses as hexadecimal text.
#ifndef ORV_COMMON_HEX_ADDRESS_H
#define ORV_COMMON_HEX_ADDRESS_H

#include <stdint.h>

#include <string_view>

namespace orv {

// Low 32 bits of the value, with or without 0x before it; 0 when there is anything but digits.
uint32_t hex_address(std::string_view text) noexcept;

// 10 to 15; 0 for what is no hexadecimal letter.
int hex_letter(char c) noexcept;

}  // namespace orv

#endif
