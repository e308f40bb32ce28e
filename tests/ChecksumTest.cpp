#include "Checksum.h"

#include "DeviceFootprint.h"
#include "DfpErrorHandler.h"
#include "ErrorWord.h"
#include "ExceptionsOn.h"
#include "Random.h"
#include "ReferenceMd5.h"
#include "VirtualSlot.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

using namespace KvDeviceFootprint;
using namespace NyxTest;

namespace
{

static_assert(sizeof(MD5_u32plus) == 4 && std::is_unsigned_v<MD5_u32plus>);
static_assert(std::is_base_of_v<CChecksumAlgorithmIF, CMD5Checksum> && std::is_abstract_v<CChecksumAlgorithmIF>);
static_assert(std::is_base_of_v<CChecksumContainerIF, CMD5ChecksumContainer> &&
              std::is_abstract_v<CChecksumContainerIF>);
static_assert(std::is_base_of_v<CAbstractStream, CChecksumStream>);
static_assert(std::has_virtual_destructor_v<CChecksumAlgorithmIF> && std::has_virtual_destructor_v<CMD5Checksum> &&
              std::has_virtual_destructor_v<CChecksumContainerIF> &&
              std::has_virtual_destructor_v<CMD5ChecksumContainer> && std::has_virtual_destructor_v<CChecksumStream>);

std::string Hex(const CMD5ChecksumContainer& container)
{
    std::string hex = "former";
    EXPECT_TRUE(container.toHex(hex));
    return hex;
}

std::string Md5Hex(const std::string& text)
{
    CMD5Checksum md5;
    md5.init();
    md5.add(text);
    CMD5ChecksumContainer container;
    EXPECT_TRUE(md5.finalize(container));
    return Hex(container);
}

std::string RandomBytes(Random& random, std::size_t size)
{
    std::string bytes(size, '\0');
    for (char& byte : bytes) {
        byte = static_cast<char>(random.Bits());
    }
    return bytes;
}

/// Keeps what it is given.
class RecordingAlgorithm : public CChecksumAlgorithmIF
{
public:
    RecordingAlgorithm() : CChecksumAlgorithmIF("recording") {}
    void init() override {}
    bool finalize(CChecksumContainerIF& /*result*/) override { return true; }
    void add(const std::string& text) override { m_pieces.push_back(text); }

    std::string Text() const
    {
        std::string text;
        for (const std::string& piece : m_pieces) {
            text += piece;
        }
        return text;
    }

    std::vector<std::string> m_pieces;
};

/// What enters the digest of an element.
std::vector<std::string> DigestPieces(CElementNode& element)
{
    RecordingAlgorithm algorithm;
    CChecksumStream stream(algorithm);
    const std::string name = "test";
    CXmlStreamWriter writer(stream, name);
    EXPECT_TRUE(writer.WriteFirstLine());
    EXPECT_TRUE(element.SaveToStream(writer));
    return algorithm.m_pieces;
}

using Pieces = std::vector<std::string>;

// --- MD5 ------------------------------------------------------------------------------------------------------------

TEST(Md5Test, GivesTheDigestsOfTheRfc)
{
    // RFC 1321, A.5
    const std::vector<std::pair<std::string, std::string>> suite = {
        {"", "d41d8cd98f00b204e9800998ecf8427e"},
        {"a", "0cc175b9c0f1b6a831c399e269772661"},
        {"abc", "900150983cd24fb0d6963f7d28e17f72"},
        {"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
        {"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
        {"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789", "d174ab98d277d9f5a5611c2c9f419d9f"},
        {"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
         "57edf4a22be3c955ac49da2e2107b67a"}};
    for (const auto& [text, digest] : suite) {
        EXPECT_EQ(Md5Hex(text), digest) << text;
    }
}

TEST(Md5Test, AgreesWithAnotherMakeAtEveryLengthAroundTheBlocks)
{
    Random random;
    const std::string bytes = RandomBytes(random, 300);
    for (std::size_t size = 0; size <= bytes.size(); ++size) {
        const std::string text = bytes.substr(0, size);
        ASSERT_EQ(Md5Hex(text), ReferenceMd5Hex(text)) << size;
    }
}

TEST(Md5Test, AgreesWithAnotherMakeForRandomLengthsInRandomPieces)
{
    Random random;
    for (int round = 0; round < 300; ++round) {
        const std::string text = RandomBytes(random, random.Below(round % 10 == 0 ? 20000 : 700));
        CMD5Checksum md5;
        md5.init();
        const std::size_t largest = 1 + random.Below(200);
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t count = std::min(random.Below(largest + 1), text.size() - at);
            // The algorithm's own form for text and the one for bytes in turn.
            if (random.OneIn(2)) {
                static_cast<CChecksumAlgorithmIF&>(md5).add(text.substr(at, count));
            } else {
                md5.add(text.data() + at, count);
            }
            at += count;
        }
        CMD5ChecksumContainer container;
        ASSERT_TRUE(md5.finalize(container));
        ASSERT_EQ(Hex(container), ReferenceMd5Hex(text)) << "seed " << TestSeed() << ", round " << round;
    }
}

TEST(Md5Test, TakesUnalignedBytes)
{
    Random random;
    const std::string bytes = RandomBytes(random, 200);
    for (std::size_t offset = 0; offset < 8; ++offset) {
        CMD5Checksum md5;
        md5.init();
        md5.add(bytes.data() + offset, 150);
        CMD5ChecksumContainer container;
        md5.finalize(container);
        EXPECT_EQ(Hex(container), ReferenceMd5Hex(bytes.substr(offset, 150))) << offset;
    }
}

TEST(Md5Test, CountsLengthsBeyond32BitsOfBits)
{
    // 2 to the 29th bytes are 2 to the 32nd bits.
    Random random;
    const std::string piece = RandomBytes(random, std::size_t{8} * 1024 * 1024);
    CMD5Checksum md5;
    md5.init();
    ReferenceMd5 reference;
    for (int i = 0; i < 65; ++i) {
        md5.add(piece);
        reference.Add(piece);
    }
    md5.add("end");
    reference.Add("end");
    CMD5ChecksumContainer container;
    ASSERT_TRUE(md5.finalize(container));
    EXPECT_EQ(Hex(container), reference.Hex());
}

TEST(Md5Test, FreeFunctionsComputeAndFinalZeroesTheContext)
{
    MD5_CTX context;
    std::memset(&context, 0xAA, sizeof(context));
    MD5_Init(&context);
    MD5_Update(&context, "ab", 2);
    MD5_Update(&context, "c", 1);
    unsigned char digest[16];
    MD5_Final(digest, &context);

    CMD5ChecksumContainer container;
    container.set(digest, sizeof(digest));
    EXPECT_EQ(Hex(container), "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(&context), sizeof(context)),
              std::string(sizeof(context), '\0'));
}

TEST(Md5Test, InitStartsAtTheValuesOfMd5)
{
    MD5_CTX context;
    std::memset(&context, 0xAA, sizeof(context));
    MD5_Init(&context);
    EXPECT_EQ(context.chain, (std::array<MD5_u32plus, 4>{0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476}));
    EXPECT_EQ(context.countLow, 0U);
    EXPECT_EQ(context.countHigh, 0U);
}

TEST(Md5Test, ConstructionLeavesAZeroStateUntilInit)
{
    MD5_CTX zero;
    std::memset(&zero, 0, sizeof(zero));
    MD5_Update(&zero, "abc", 3);
    CMD5ChecksumContainer expected;
    unsigned char digest[16];
    MD5_Final(digest, &zero);
    expected.set(digest, sizeof(digest));

    CMD5Checksum md5;
    md5.add("abc");
    CMD5ChecksumContainer container;
    ASSERT_TRUE(md5.finalize(container));
    EXPECT_EQ(Hex(container), Hex(expected));
    EXPECT_NE(Hex(container), Md5Hex("abc"));

    // finalize leaves the same state behind.
    md5.init();
    md5.add("something");
    md5.finalize(container);
    md5.add("abc");
    md5.finalize(container);
    EXPECT_EQ(Hex(container), Hex(expected));
}

TEST(Md5Test, InitStartsANewComputation)
{
    CMD5Checksum md5;
    CMD5ChecksumContainer container;
    md5.init();
    md5.add("first");
    md5.finalize(container);
    md5.init();
    md5.add("dropped");
    md5.init();
    md5.add("abc");
    md5.finalize(container);
    EXPECT_EQ(Hex(container), "900150983cd24fb0d6963f7d28e17f72");
}

TEST(Md5Test, TextIsAddedWithoutItsEndAndWithZerosInside)
{
    EXPECT_EQ(Md5Hex(std::string("a\0b", 3)), ReferenceMd5Hex(std::string("a\0b", 3)));
    EXPECT_NE(Md5Hex("a"), Md5Hex(std::string("a\0", 2)));
}

TEST(Md5Test, HasItsName)
{
    const CMD5Checksum md5;
    EXPECT_EQ(md5.GetName(), "MD5Sum");
}

/// Takes what finalize gives.
class FakeContainer : public CChecksumContainerIF
{
public:
    explicit FakeContainer(bool result) : m_result(result) {}
    bool set(const unsigned char* bytes, std::size_t count) override
    {
        m_bytes.assign(reinterpret_cast<const char*>(bytes), count);
        return m_result;
    }
    bool fromHex(const std::string& /*text*/) override { return false; }
    bool toHex(std::string& /*text*/) const override { return false; }

    std::string m_bytes;

private:
    bool m_result;
};

TEST(Md5Test, FinalizeHands16BytesOverAndGivesTheContainersResult)
{
    for (const bool result : {true, false}) {
        CMD5Checksum md5;
        md5.init();
        FakeContainer container(result);
        EXPECT_EQ(md5.finalize(container), result);
        EXPECT_EQ(container.m_bytes,
                  std::string("\xd4\x1d\x8c\xd9\x8f\x00\xb2\x04\xe9\x80\x09\x98\xec\xf8\x42\x7e", 16));
    }
}

// --- the container --------------------------------------------------------------------------------------------------

class Md5ContainerTest : public testing::Test
{
protected:
    Md5ContainerTest() { CDfpErrorHandler::Destroy(); }
    ~Md5ContainerTest() override { CDfpErrorHandler::Destroy(); }

    static CDfpError* Recorded() { return CDfpErrorHandler::Instance()->FindStoredError(eDfpErrorTypeCount); }

    ErrorWord m_errorWord;
};

TEST_F(Md5ContainerTest, StartsWithZerosOrFourWords)
{
    EXPECT_EQ(Hex(CMD5ChecksumContainer()), std::string(32, '0'));
    // As MD5 gives its words out: the low byte first.
    EXPECT_EQ(Hex(CMD5ChecksumContainer(0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476)),
              "0123456789abcdeffedcba9876543210");
}

TEST_F(Md5ContainerTest, SetOverwritesTheFirstBytesOnly)
{
    const unsigned char bytes[16] = {0x0A, 0xFF, 0x10, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 0xF0};
    CMD5ChecksumContainer container(0x11111111, 0x22222222, 0x33333333, 0x44444444);
    EXPECT_TRUE(container.set(bytes, 0));
    EXPECT_EQ(Hex(container), "11111111222222223333333344444444");
    EXPECT_TRUE(container.set(bytes, 1));
    EXPECT_EQ(Hex(container), "0a111111222222223333333344444444");
    EXPECT_TRUE(container.set(bytes, 6));
    EXPECT_EQ(Hex(container), "0aff1003040522223333333344444444");
    EXPECT_TRUE(container.set(bytes, 16));
    EXPECT_EQ(Hex(container), "0aff10030405060708090a0b0c0d0ef0");
    EXPECT_EQ(Recorded(), nullptr);
}

TEST_F(Md5ContainerTest, SetOfTooManyBytesIsRecordedAndChangesNothing)
{
    const std::vector<unsigned char> bytes(1000, 0x77);
    CMD5ChecksumContainer container(0x11111111, 0x22222222, 0x33333333, 0x44444444);
    for (const std::size_t count : {std::size_t{17}, std::size_t{1000}, std::numeric_limits<std::size_t>::max()}) {
        CDfpErrorHandler::Destroy();
        const ExceptionsOn exceptionsOn;
        EXPECT_FALSE(container.set(bytes.data(), count)) << count;
        ASSERT_NE(Recorded(), nullptr) << count;
        EXPECT_EQ(Recorded()->m_type, eDfpErrorTypeInternal);
        EXPECT_EQ(Recorded()->m_text, "Invalid key length for MD5.");
        EXPECT_EQ(Recorded()->m_count, 1);
    }
    EXPECT_EQ(Hex(container), "11111111222222223333333344444444");
    EXPECT_EQ(ErrorWord::Text(), ErrorWord::Untouched());
}

TEST_F(Md5ContainerTest, FromHexReadsPairsOfDigits)
{
    const std::string zeros(32, '0');
    const auto padded = [&zeros](const std::string& hex) { return hex + zeros.substr(hex.size()); };
    const struct
    {
        std::string text;
        bool result;
        std::string hex;
    } rows[] = {
        {"", true, zeros},
        {"0123456789abcdef0123456789abcdef", true, "0123456789abcdef0123456789abcdef"},
        {"0123456789ABCDEF0123456789ABCDEF", true, "0123456789abcdef0123456789abcdef"},
        {"aBcD", true, padded("abcd")},
        {"7", true, padded("70")}, // a digit alone is an upper half
        {"F", true, padded("f0")},
        {"12345", true, padded("123450")},
        {"12x4", false, padded("12")},   // what was read before it stays
        {"123x", false, padded("1230")}, // the upper half too
        {"x", false, zeros},
        {"12 34", false, padded("12")},
        {"-1", false, zeros},
        {"12/4", false, padded("12")}, // neighbours of the digits
        {"12:4", false, padded("12")},
        {"12@4", false, padded("12")},
        {"12G4", false, padded("12")},
        {"12`4", false, padded("12")},
        {"12g4", false, padded("12")},
        {"12\xC4\xB0", false, padded("12")},
        {std::string("12\0", 3) + "34", false, padded("12")},
        {std::string(32, 'e') + "xyz", true, std::string(32, 'e')}, // not looked at
        {std::string(31, 'e') + "x", false, std::string(31, 'e') + "0"},
        {std::string(33, 'e'), true, std::string(32, 'e')},
    };
    const ExceptionsOn exceptionsOn;
    for (const auto& row : rows) {
        CMD5ChecksumContainer container(0x11111111, 0x22222222, 0x33333333, 0x44444444);
        EXPECT_EQ(container.fromHex(row.text), row.result) << row.text;
        EXPECT_EQ(Hex(container), row.hex) << row.text;
    }
    EXPECT_EQ(ErrorWord::Text(), ErrorWord::Untouched());
    EXPECT_EQ(Recorded(), nullptr);
}

TEST_F(Md5ContainerTest, ToHexAndFromHexAreInverse)
{
    Random random;
    for (int round = 0; round < 100; ++round) {
        const CMD5ChecksumContainer container(random.Bits(), random.Bits(), random.Bits(), random.Bits());
        CMD5ChecksumContainer copy;
        ASSERT_TRUE(copy.fromHex(Hex(container)));
        ASSERT_EQ(Hex(copy), Hex(container));
    }
}

// --- the stream -----------------------------------------------------------------------------------------------------

TEST(ChecksumStreamTest, OnlyAttributesEnter)
{
    RecordingAlgorithm algorithm;
    CChecksumStream stream(algorithm);
    CAbstractStream& base = stream;
    base.WriteNonEmptyString("text");
    base.WriteNewLine();
    base.WriteBeginToken();
    base.WriteEndToken();
    base.WriteBeginEndToken();
    base.WriteNoAddedEndToken();
    base.WriteSpaces(4);
    stream.WriteSpaces(4);
    EXPECT_EQ(algorithm.m_pieces, Pieces{});
    base.WriteAttributeValue("a=\"1\"");
    EXPECT_EQ(algorithm.m_pieces, Pieces{"a=\"1\""});
}

TEST(ChecksumStreamTest, OfAConnectedDeviceTheChecksumOfTheFirstLineEnters)
{
    const struct
    {
        const char* line;
        bool first;
        Pieces pieces;
    } rows[] = {
        {"<ConnectedDevice checksum=\"0a\" name=\"b\">", true, {"checksum=\"0a\""}},
        {"<ConnectedDevice checksum=\"0a\" name=\"b\">", false, {}},
        {"<ConnectedDevice name=\"b\">", true, {}},
        {"<ConnectedDevice checksum='0a'>", true, {}},
        {"<ConnectedDevice checksum=\"0a", true, {}}, // no closing quote
        {"<ConnectedDevice checksum=\"", true, {}},
        {"<ConnectedDevice checksum=\"\">", true, {"checksum=\"\""}},
        {"checksum=\"0a\"", true, {"checksum=\"0a\""}},
        {"<ConnectedDevice mychecksum=\"1\" checksum=\"2\">", true, {"checksum=\"1\""}}, // the first place counts
        {"", true, {}},
    };
    for (const auto& row : rows) {
        RecordingAlgorithm algorithm;
        CChecksumStream stream(algorithm);
        static_cast<CAbstractStream&>(stream).WriteConnectedDeviceLine(row.line, row.first);
        EXPECT_EQ(algorithm.m_pieces, row.pieces) << row.line;
    }
}

TEST(ChecksumStreamTest, AnAttributeEntersAsItStandsInAFile)
{
    CProperty property;
    property.m_name = L"\"a\" & <b> 'c'\n\u00e4\U0001F600";
    property.m_value = "\xE4"; // sign-extended
    EXPECT_EQ(DigestPieces(property),
              (Pieces{"name=\"&quot;a&quot; &amp; &lt;b&gt; &apos;c&apos;&#10;&#228;&#128512;\"",
                      "value=\"&#4294967268;\""}));
}

TEST(ChecksumStreamTest, WhatIsEmptyDoesNotEnter)
{
    CHardware hardware;
    EXPECT_EQ(DigestPieces(hardware), Pieces{});
    hardware.m_properties.CreateEntry();
    EXPECT_EQ(DigestPieces(hardware), Pieces{});
    hardware.m_sn = 5L;
    EXPECT_EQ(DigestPieces(hardware), Pieces{"sn=\"5\""});
}

TEST(ChecksumStreamTest, AttributesThenChildrenEnterSortedByNameAtEachLevel)
{
    CHardware hardware;
    hardware.m_id = 1L;
    hardware.m_connectorName = "c";
    hardware.m_partNumber = "n";
    hardware.m_partName = "p";
    hardware.m_properties.CreateEntry().m_value = "later";
    hardware.m_properties.back().m_name = "z";
    hardware.m_properties.CreateEntry().m_name = "a"; // entries keep their order
    hardware.m_programmableParts.CreateEntry().m_version = "v";
    hardware.m_programmableParts.back().m_name = "part";
    hardware.m_serviceData.m_services.CreateEntry().m_serviceDate = "d";
    hardware.m_serviceData.m_services.back().m_serviceCode = 7L;
    hardware.m_maintenanceData.m_operatingHours = 9L;
    hardware.m_maintenanceData.m_makeAndBreakCycles = 8L;
    hardware.m_maintenanceData.m_maintenances.CreateEntry().m_responsiblePerson = "r";
    hardware.m_maintenanceData.m_maintenanceInfos.CreateEntry().m_name = "i";
    hardware.m_bPartIdentification.m_vendorName = "o";
    EXPECT_EQ(DigestPieces(hardware),
              (Pieces{"connectorName=\"c\"", "id=\"1\"", "partName=\"p\"", "partNumber=\"n\"",
                      // BPartIdentification, MaintenanceData with MaintenanceInfos and Maintenances
                      "vendorName=\"o\"", "makeAndBreakCycles=\"8\"", "operatingHours=\"9\"", "name=\"i\"",
                      "responsiblePerson=\"r\"",
                      // ProgrammableParts, Properties, ServiceData
                      "name=\"part\"", "version=\"v\"", "name=\"z\"", "value=\"later\"", "name=\"a\"",
                      "serviceCode=\"7\"", "serviceDate=\"d\""}));
}

/// Declares its attributes and children in one order or the other.
class CShuffled : public CElementNode
{
public:
    explicit CShuffled(bool reversed) : m_reversed(reversed) { CShuffled::initAttributeNodes(); }
    CShuffled(const CShuffled&) = delete;
    CShuffled& operator=(const CShuffled&) = delete;
    ~CShuffled() override = default;

    const std::string& GetElementName() const override
    {
        static const std::string name = "Shuffled";
        return name;
    }
    void initAttributeNodes() override
    {
        m_reversed ? AddAttributeNode(m_b) : AddAttributeNode(m_a);
        m_reversed ? AddAttributeNode(m_a) : AddAttributeNode(m_b);
    }
    void GetChildElements(std::list<CElementNode*>& children) const override
    {
        auto* self = const_cast<CShuffled*>(this);
        children = {&self->m_bios, &self->m_property};
        if (m_reversed) {
            children.reverse();
        }
    }

    CAttribute m_a{"a"};
    CAttribute m_b{"b"};
    CBios m_bios;
    CProperty m_property;

private:
    bool m_reversed;
};

TEST(ChecksumStreamTest, TheOrderOfDeclarationDoesNotCount)
{
    for (const bool reversed : {false, true}) {
        CShuffled element(reversed);
        element.m_a = "1";
        element.m_b = "2";
        element.m_bios.m_name = "3";
        element.m_property.m_name = "4";
        EXPECT_EQ(DigestPieces(element), (Pieces{"a=\"1\"", "b=\"2\"", "name=\"3\"", "name=\"4\""})) << reversed;
        // The element's own table is as it was.
        std::list<CReadOnlyAttribute*> table;
        element.GetAttributeNodes(table);
        EXPECT_EQ(table.front()->GetNodeName(), reversed ? "b" : "a");
    }
}

TEST(ChecksumStreamTest, TheOrderOfEntriesCounts)
{
    CProperties forward;
    forward.CreateEntry().m_name = "1";
    forward.CreateEntry().m_name = "2";
    CProperties backward;
    backward.CreateEntry().m_name = "2";
    backward.CreateEntry().m_name = "1";
    EXPECT_EQ(DigestPieces(forward), (Pieces{"name=\"1\"", "name=\"2\""}));
    EXPECT_EQ(DigestPieces(backward), (Pieces{"name=\"2\"", "name=\"1\""}));
}

TEST(ChecksumStreamTest, ElementNamesDoNotEnter)
{
    // The same text at the same place of the walk, in one element and in its neighbour.
    CSoftwareData software;
    software.m_bios.m_name = "n";
    CSoftwareData other;
    other.m_operatingSystem.m_name = "n";
    EXPECT_EQ(DigestPieces(software), Pieces{"name=\"n\""});
    EXPECT_EQ(DigestPieces(software), DigestPieces(other));
}

TEST(ChecksumStreamTest, ARawDeviceEntersWithItsFirstLineOnly)
{
    CDeviceFootprint footprint;
    footprint.m_formatVersion.Clear();
    footprint.m_pConnectedDevices->m_connectedDeviceStrings = {
        {"<ConnectedDevice formatVersion=\"02.06\" checksum=\"aa\">", "  <Bios checksum=\"bb\"/>", "</ConnectedDevice"},
        {"<ConnectedDevice formatVersion=\"02.05\">", "  <Bios checksum=\"cc\"/>", "</ConnectedDevice"},
        {"<ConnectedDevice checksum=\"dd\">", "</ConnectedDevice"}};
    EXPECT_EQ(DigestPieces(footprint), (Pieces{"checksum=\"aa\"", "checksum=\"dd\""}));
}

// --- the binary interface -------------------------------------------------------------------------------------------

template<class Stream>
std::vector<std::size_t> StreamSlots()
{
    return {VirtualSlot(&Stream::WriteNonEmptyString), VirtualSlot(&Stream::WriteAttributeValue),
            VirtualSlot(&Stream::WriteNewLine), VirtualSlot(&Stream::WriteConnectedDeviceLine)};
}

TEST(ChecksumAbiTest, VirtualOperationsHaveTheirPlaces)
{
    EXPECT_EQ(VirtualSlot(&CChecksumAlgorithmIF::init), DestructorSlots);
    EXPECT_EQ(VirtualSlot(&CChecksumAlgorithmIF::finalize), DestructorSlots + 1);
    EXPECT_EQ(VirtualSlot(&CChecksumAlgorithmIF::add), DestructorSlots + 2);
    EXPECT_EQ(SlotCount<CMD5Checksum>(), DestructorSlots + 3);

    EXPECT_EQ(VirtualSlot(&CChecksumContainerIF::set), DestructorSlots);
    EXPECT_EQ(VirtualSlot(&CChecksumContainerIF::fromHex), DestructorSlots + 1);
    EXPECT_EQ(VirtualSlot(&CChecksumContainerIF::toHex), DestructorSlots + 2);
    EXPECT_EQ(SlotCount<CMD5ChecksumContainer>(), DestructorSlots + 3);

    const std::vector<std::size_t> slots = {DestructorSlots, DestructorSlots + 1, DestructorSlots + 2,
                                            DestructorSlots + 3};
    EXPECT_EQ(StreamSlots<CChecksumStream>(), slots);
    EXPECT_EQ(VirtualSlot(&CChecksumStream::WriteSpaces), DestructorSlots + 4);
    EXPECT_EQ(SlotCount<CChecksumStream>(), DestructorSlots + 5);
    EXPECT_FALSE(IsVirtual(&CAbstractStream::WriteSpaces));
}

} // namespace
