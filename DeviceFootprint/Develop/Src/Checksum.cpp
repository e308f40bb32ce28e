#include "Checksum.h"

#include "DfpErrorHandler.h"

#include <algorithm>
#include <cstring>

namespace KvDeviceFootprint
{

namespace
{

constexpr std::size_t BlockSize = 64;

/// The table T of RFC 1321: the integer part of 2^32 times the absolute value of sin(i + 1).
constexpr MD5_u32plus SineTable[64] = {
    0xd76aa478, 0xe8c7b756, 0x242070db, 0xc1bdceee, 0xf57c0faf, 0x4787c62a, 0xa8304613, 0xfd469501,
    0x698098d8, 0x8b44f7af, 0xffff5bb1, 0x895cd7be, 0x6b901122, 0xfd987193, 0xa679438e, 0x49b40821,
    0xf61e2562, 0xc040b340, 0x265e5a51, 0xe9b6c7aa, 0xd62f105d, 0x02441453, 0xd8a1e681, 0xe7d3fbc8,
    0x21e1cde6, 0xc33707d6, 0xf4d50d87, 0x455a14ed, 0xa9e3e905, 0xfcefa3f8, 0x676f02d9, 0x8d2a4c8a,
    0xfffa3942, 0x8771f681, 0x6d9d6122, 0xfde5380c, 0xa4beea44, 0x4bdecfa9, 0xf6bb4b60, 0xbebfbc70,
    0x289b7ec6, 0xeaa127fa, 0xd4ef3085, 0x04881d05, 0xd9d4d039, 0xe6db99e5, 0x1fa27cf8, 0xc4ac5665,
    0xf4292244, 0x432aff97, 0xab9423a7, 0xfc93a039, 0x655b59c3, 0x8f0ccc92, 0xffeff47d, 0x85845dd1,
    0x6fa87e4f, 0xfe2ce6e0, 0xa3014314, 0x4e0811a1, 0xf7537e82, 0xbd3af235, 0x2ad7d2bb, 0xeb86d391};

constexpr unsigned Rotations[4][4] = {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};

/// The functions F, G, H and I. Each step waits for x of the step before, so what does not need x stands apart.
template<int Round>
constexpr MD5_u32plus Mix(MD5_u32plus x, MD5_u32plus y, MD5_u32plus z)
{
    if constexpr (Round == 0) {
        return z ^ (x & (y ^ z));
    } else if constexpr (Round == 1) {
        return (y & ~z) + (x & z); // no bit is in both
    } else if constexpr (Round == 2) {
        return x ^ (y ^ z);
    } else {
        return y ^ (x | ~z);
    }
}

template<int Round>
constexpr std::size_t BlockWord(std::size_t step)
{
    constexpr std::size_t factor[4] = {1, 5, 3, 7};
    constexpr std::size_t offset[4] = {0, 1, 5, 0};
    return (step * factor[Round] + offset[Round]) % 16;
}

MD5_u32plus WordAt(const unsigned char* bytes)
{
    return static_cast<MD5_u32plus>(bytes[0]) | (static_cast<MD5_u32plus>(bytes[1]) << 8) |
           (static_cast<MD5_u32plus>(bytes[2]) << 16) | (static_cast<MD5_u32plus>(bytes[3]) << 24);
}

template<int Round, std::size_t Step>
void DoStep(MD5_u32plus& a, MD5_u32plus b, MD5_u32plus c, MD5_u32plus d, const unsigned char* block)
{
    constexpr unsigned rotation = Rotations[Round][Step % 4];
    a += Mix<Round>(b, c, d) + WordAt(block + 4 * BlockWord<Round>(Step)) +
         SineTable[static_cast<std::size_t>(Round) * 16 + Step];
    a = b + ((a << rotation) | (a >> (32 - rotation)));
}

template<int Round, std::size_t Step>
void DoFourSteps(MD5_u32plus& a, MD5_u32plus& b, MD5_u32plus& c, MD5_u32plus& d, const unsigned char* block)
{
    DoStep<Round, Step>(a, b, c, d, block);
    DoStep<Round, Step + 1>(d, a, b, c, block);
    DoStep<Round, Step + 2>(c, d, a, b, block);
    DoStep<Round, Step + 3>(b, c, d, a, block);
}

template<int Round>
void DoRound(MD5_u32plus& a, MD5_u32plus& b, MD5_u32plus& c, MD5_u32plus& d, const unsigned char* block)
{
    DoFourSteps<Round, 0>(a, b, c, d, block);
    DoFourSteps<Round, 4>(a, b, c, d, block);
    DoFourSteps<Round, 8>(a, b, c, d, block);
    DoFourSteps<Round, 12>(a, b, c, d, block);
}

void PutWord(MD5_u32plus word, unsigned char* bytes)
{
    for (unsigned i = 0; i < 4; ++i) {
        bytes[i] = static_cast<unsigned char>(word >> (8 * i));
    }
}

void Transform(MD5_CTX& context, const unsigned char* bytes)
{
    MD5_u32plus a = context.chain[0];
    MD5_u32plus b = context.chain[1];
    MD5_u32plus c = context.chain[2];
    MD5_u32plus d = context.chain[3];
    DoRound<0>(a, b, c, d, bytes);
    DoRound<1>(a, b, c, d, bytes);
    DoRound<2>(a, b, c, d, bytes);
    DoRound<3>(a, b, c, d, bytes);
    context.chain[0] += a;
    context.chain[1] += b;
    context.chain[2] += c;
    context.chain[3] += d;
}

/// The value of a hexadecimal digit, -1 for any other character.
int HexValue(char character)
{
    if (character >= '0' && character <= '9') {
        return character - '0';
    }
    if (character >= 'a' && character <= 'f') {
        return character - 'a' + 10;
    }
    if (character >= 'A' && character <= 'F') {
        return character - 'A' + 10;
    }
    return -1;
}

} // namespace

CChecksumAlgorithmIF::~CChecksumAlgorithmIF() = default;

CChecksumContainerIF::~CChecksumContainerIF() = default;

void MD5_Init(MD5_CTX* context)
{
    context->countLow = 0;
    context->countHigh = 0;
    context->chain = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476};
}

void MD5_Update(MD5_CTX* context, const void* data, std::size_t size)
{
    const auto* bytes = static_cast<const unsigned char*>(data);
    std::size_t used = (context->countLow >> 3) % BlockSize;
    const std::uint64_t length = ((static_cast<std::uint64_t>(context->countHigh) << 32) | context->countLow) +
                                 (static_cast<std::uint64_t>(size) << 3);
    context->countLow = static_cast<MD5_u32plus>(length);
    context->countHigh = static_cast<MD5_u32plus>(length >> 32);

    if (used > 0) {
        const std::size_t taken = std::min(size, BlockSize - used);
        std::copy_n(bytes, taken, context->buffer.begin() + static_cast<std::ptrdiff_t>(used));
        used += taken;
        bytes += taken;
        size -= taken;
        if (used < BlockSize) {
            return;
        }
        Transform(*context, context->buffer.data());
    }
    for (; size >= BlockSize; size -= BlockSize, bytes += BlockSize) {
        Transform(*context, bytes);
    }
    std::copy_n(bytes, size, context->buffer.begin());
}

void MD5_Final(unsigned char* digest, MD5_CTX* context)
{
    static const unsigned char padding[BlockSize] = {0x80};
    unsigned char length[8];
    PutWord(context->countLow, length);
    PutWord(context->countHigh, length + 4);
    const std::size_t used = (context->countLow >> 3) % BlockSize;
    MD5_Update(context, padding, (used < 56 ? 56 : 120) - used);
    MD5_Update(context, length, sizeof length);
    for (std::size_t i = 0; i < context->chain.size(); ++i) {
        PutWord(context->chain[i], digest + 4 * i);
    }
    *context = {};
}

CMD5Checksum::CMD5Checksum() : CChecksumAlgorithmIF("MD5Sum"), m_context() {}

CMD5Checksum::~CMD5Checksum() = default;

void CMD5Checksum::init()
{
    MD5_Init(&m_context);
}

bool CMD5Checksum::finalize(CChecksumContainerIF& result)
{
    unsigned char digest[16];
    MD5_Final(digest, &m_context);
    return result.set(digest, sizeof digest);
}

void CMD5Checksum::add(const std::string& text)
{
    MD5_Update(&m_context, text.data(), text.size());
}

void CMD5Checksum::add(const void* bytes, std::size_t count)
{
    MD5_Update(&m_context, bytes, count);
}

CMD5ChecksumContainer::CMD5ChecksumContainer() : m_bytes() {}

CMD5ChecksumContainer::CMD5ChecksumContainer(MD5_u32plus first, MD5_u32plus second, MD5_u32plus third,
                                             MD5_u32plus fourth)
    : m_bytes()
{
    PutWord(first, &m_bytes[0]);
    PutWord(second, &m_bytes[4]);
    PutWord(third, &m_bytes[8]);
    PutWord(fourth, &m_bytes[12]);
}

CMD5ChecksumContainer::~CMD5ChecksumContainer() = default;

bool CMD5ChecksumContainer::set(const unsigned char* bytes, std::size_t count)
{
    if (count > m_bytes.size()) {
        CDfpErrorHandler::Instance()->AddError(eDfpErrorTypeInternal, std::string("Invalid key length for MD5."));
        return false;
    }
    std::copy_n(bytes, count, m_bytes.begin());
    return true;
}

bool CMD5ChecksumContainer::fromHex(const std::string& text)
{
    m_bytes.fill(0);
    const std::size_t length = std::min(text.size(), 2 * m_bytes.size());
    for (std::size_t i = 0; i < length; ++i) {
        const int digit = HexValue(text[i]);
        if (digit < 0) {
            return false;
        }
        const int half = i % 2 == 0 ? digit << 4 : digit;
        m_bytes[i / 2] = static_cast<unsigned char>(m_bytes[i / 2] | half);
    }
    return true;
}

bool CMD5ChecksumContainer::toHex(std::string& text) const
{
    static const char digits[] = "0123456789abcdef";
    text.clear();
    for (const unsigned char byte : m_bytes) {
        text += digits[byte >> 4];
        text += digits[byte & 0x0F];
    }
    return true;
}

CChecksumStream::~CChecksumStream() = default;

void CChecksumStream::WriteNonEmptyString(const std::string& /*text*/) {}

void CChecksumStream::WriteAttributeValue(const std::string& text)
{
    m_algorithm->add(text);
}

void CChecksumStream::WriteNewLine() {}

void CChecksumStream::WriteConnectedDeviceLine(const std::string& line, bool first)
{
    static const std::string opening("checksum=\"");
    if (!first) {
        return;
    }
    const std::size_t begin = line.find(opening);
    if (begin == std::string::npos) {
        return;
    }
    const std::size_t quote = line.find('"', begin + opening.size());
    if (quote == std::string::npos) {
        return;
    }
    WriteAttributeValue(line.substr(begin, quote + 1 - begin));
}

void CChecksumStream::WriteSpaces(std::size_t /*count*/) {}

} // namespace KvDeviceFootprint
