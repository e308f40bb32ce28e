#ifndef NYXCONFIG_CHECKSUM_H
#define NYXCONFIG_CHECKSUM_H

#include "XmlStreams.h"
#include "nyxconfig_export.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace KvDeviceFootprint
{

class CChecksumContainerIF;

/// An algorithm that computes a digest over text that comes in pieces.
class NYXCONFIG_EXPORT CChecksumAlgorithmIF
{
public:
    virtual ~CChecksumAlgorithmIF();
    /// Starts a computation.
    virtual void init() = 0;
    /// Ends the computation and stores the digest; the result is that of CChecksumContainerIF::set.
    virtual bool finalize(CChecksumContainerIF& result) = 0;
    /// Adds the bytes of a text.
    virtual void add(const std::string& text) = 0;

    const std::string& GetName() const { return m_name; }

protected:
    explicit CChecksumAlgorithmIF(const std::string& name) : m_name(name) {}
    CChecksumAlgorithmIF(const CChecksumAlgorithmIF&) = default;
    CChecksumAlgorithmIF& operator=(const CChecksumAlgorithmIF&) = default;

private:
    std::string m_name;
};

/// The result of a digest algorithm.
class NYXCONFIG_EXPORT CChecksumContainerIF
{
public:
    virtual ~CChecksumContainerIF();
    /// Takes over the digest's bytes. False if there are too many.
    virtual bool set(const unsigned char* bytes, std::size_t count) = 0;
    /// Reads the digest from hexadecimal digits of either case.
    virtual bool fromHex(const std::string& text) = 0;
    /// Gives the digest in lower-case hexadecimal digits.
    virtual bool toHex(std::string& text) const = 0;

protected:
    CChecksumContainerIF() = default;
    CChecksumContainerIF(const CChecksumContainerIF&) = default;
    CChecksumContainerIF& operator=(const CChecksumContainerIF&) = default;
};

/// A 32-bit word of MD5.
using MD5_u32plus = std::uint32_t;

/// The state of an MD5 computation (RFC 1321).
struct MD5_CTX
{
    MD5_u32plus countLow;                 ///< Length so far in bits, low word.
    MD5_u32plus countHigh;                ///< High word.
    std::array<MD5_u32plus, 4> chain;     ///< The chaining words A, B, C, D.
    std::array<unsigned char, 64> buffer; ///< Bytes that do not make a block yet.
    std::array<MD5_u32plus, 16> block;    ///< The words of the block at hand.
};

NYXCONFIG_EXPORT void MD5_Init(MD5_CTX* context);
NYXCONFIG_EXPORT void MD5_Update(MD5_CTX* context, const void* data, std::size_t size);
/// @param digest room for 16 bytes. Zeroes the whole context.
NYXCONFIG_EXPORT void MD5_Final(unsigned char* digest, MD5_CTX* context);

/// MD5. init() must come before the first add() of each computation: construction and finalize() leave the state
/// zeroed.
class NYXCONFIG_EXPORT CMD5Checksum : public CChecksumAlgorithmIF
{
public:
    CMD5Checksum();
    ~CMD5Checksum() override;

    void init() override;
    bool finalize(CChecksumContainerIF& result) override;
    void add(const std::string& text) override;
    void add(const void* bytes, std::size_t count);

private:
    MD5_CTX m_context;
};

/// The 16 bytes of an MD5 digest.
class NYXCONFIG_EXPORT CMD5ChecksumContainer : public CChecksumContainerIF
{
public:
    /// All zero.
    CMD5ChecksumContainer();
    /// The four words in order, each with its low byte first, as MD5 gives its chaining words out.
    CMD5ChecksumContainer(MD5_u32plus first, MD5_u32plus second, MD5_u32plus third, MD5_u32plus fourth);
    ~CMD5ChecksumContainer() override;

    /// Overwrites the first @p count bytes. More than 16 are recorded by CDfpErrorHandler as an internal error,
    /// "Invalid key length for MD5.", and nothing changes.
    bool set(const unsigned char* bytes, std::size_t count) override;
    /// All bytes become 0, then pairs of digits are read. A bad digit ends the reading with false; what was read stays,
    /// the upper half of a byte included. A last digit without a partner is the upper half of its byte. Characters
    /// behind the 32nd are not looked at.
    bool fromHex(const std::string& text) override;
    /// Always 32 characters, always true.
    bool toHex(std::string& text) const override;

private:
    std::array<unsigned char, 16> m_bytes;
};

/**
 * Feeds what a CXmlStreamWriter writes into a digest: the attribute texts alone, and of a ready-made connected device
 * the checksum="..." of its first line. While a writer has this stream, the save walk sorts attributes and children by
 * name.
 */
class NYXCONFIG_EXPORT CChecksumStream : public CAbstractStream
{
public:
    /// @param algorithm not owned; must outlive the stream.
    explicit CChecksumStream(CChecksumAlgorithmIF& algorithm) : m_algorithm(&algorithm) {}
    ~CChecksumStream() override;

    /// Does nothing.
    void WriteNonEmptyString(const std::string& text) override;
    /// Adds the text to the digest.
    void WriteAttributeValue(const std::string& text) override;
    /// Does nothing.
    void WriteNewLine() override;
    void WriteConnectedDeviceLine(const std::string& line, bool first) override;
    /// Does nothing. It hides the operation of the base, which is not virtual and which the writer calls; nothing
    /// reaches this one. Its place in the virtual table is part of the binary interface.
    virtual void WriteSpaces(std::size_t count);

private:
    CChecksumAlgorithmIF* m_algorithm;
};

} // namespace KvDeviceFootprint

#endif
