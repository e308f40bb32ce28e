// Reads any bytes as a checksum: the digits up to the first wrong character, nothing behind the 32nd.

#include "Checksum.h"
#include "FuzzSupport.h"

#include <algorithm>

using namespace KvDeviceFootprint;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    NyxFuzz::Silence();
    const std::string text = NyxFuzz::TextOf(data, size);
    const std::string digits = text.substr(0, 32);
    const std::size_t good = std::min(digits.find_first_not_of("0123456789abcdefABCDEF"), digits.size());
    std::string expected = digits.substr(0, good);
    std::transform(expected.begin(), expected.end(), expected.begin(),
                   [](char digit) { return static_cast<char>(digit >= 'A' && digit <= 'F' ? digit + 32 : digit); });
    expected.resize(32, '0');

    CMD5ChecksumContainer container;
    NyxFuzz::Require(container.fromHex(text) == (good == digits.size()), "only digits are right");
    std::string hex;
    NyxFuzz::Require(container.toHex(hex) && hex == expected, "the digits come back");
    return 0;
}
