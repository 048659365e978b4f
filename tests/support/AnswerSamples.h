#pragma once

#include <cstddef>
#include <random>
#include <string>
#include <vector>

namespace trelmix {

inline std::string sampleAddress(int number) {
    return "http://tiles.example.org/17/" + std::to_string(number) + "/3.png";
}

/// Some 100 to 40,000 bytes that only this number has.
inline std::vector<std::byte> sampleBody(int number) {
    std::minstd_rand random(static_cast<unsigned>(number) + 1);
    std::vector<std::byte> body(100 + random() % 40000);
    for (std::byte& byte : body) {
        byte = static_cast<std::byte>(random() >> 8);
    }
    return body;
}

} // namespace trelmix
