#ifndef NYXCONFIG_HARDWAREMAPPING_H
#define NYXCONFIG_HARDWAREMAPPING_H

#include "CNyxConfig.h"
#include "ErrorJournal.h"
#include "ErrorWord.h"
#include "FacadeItems.h"
#include "FacadeMembers.h"
#include "FootprintDump.h"
#include "OwningConfig.h"
#include "TempFolder.h"
#include "ThrownText.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstddef>
#include <functional>
#include <limits>
#include <string>
#include <vector>

/**
 * @file
 * What the tests of boards and products in both directions share: messages, a full board, the fixture.
 */

namespace NyxTest
{

using KvDeviceFootprint::CElementNode;
using KvDeviceFootprint::CHardware;
using KvDeviceFootprint::CHardwareData;
using KvDeviceFootprint::CProduct;
using KvDeviceFootprint::CProgrammablePart;
using KvDeviceFootprint::CService;
using KvOrdo::CProductDescItem;
using KvOrdo::HwBoardDescItem;
using Json = nlohmann::json;

constexpr long GreatestLong = std::numeric_limits<long>::max();

inline const std::string ThrowingLine = NarrowLine("Throwing CNyxConfigException");

/// @name Messages of the checks
/// @{
inline std::string NotEmpty(const std::string& label)
{
    return "CNyxConfig::assertNotEmpty: " + label + " may not be empty";
}

inline std::string BadIndex(const std::string& label)
{
    return "CNyxConfig::assertValidPartChangeIndex: " + label + " may only be empty or match pattern dd.dd";
}

inline std::string BadDate(const std::string& label)
{
    return "CNyxConfig::assertValidDate: " + label + " may only be empty or match pattern yyyy-mm-dd";
}

inline std::string NoNumber(const std::string& text)
{
    return "CNyxConfig::wStringToLong(): could not convert " + text + " to long";
}

inline std::string NotConverted(const std::string& part, const std::string& rest)
{
    return WideLine("Error converting " + part + " to long: endptr: " + rest);
}

inline std::string BadRevision(const std::string& which)
{
    return "CNyxConfig::parsePartNumber: HwBoardDescItem." + which;
}

/// @}

inline std::string Repeated(const std::string& text, std::size_t count)
{
    std::string repeated;
    for (std::size_t i = 0; i < count; ++i) {
        repeated += text;
    }
    return repeated;
}

/// The attributes of an element that have a value: [[name, value], ...].
inline Json Attributes(const CElementNode& element)
{
    return DumpElement(element).at("attributes");
}

/// A step that repairs one defect, and what is thrown as long as it is there.
template<class T>
struct Defect
{
    std::string thrown;
    std::function<void(T&)> repair;
};

/// Meets the defects one by one, in the order of the steps that find them.
template<class T, class Operation>
void ExpectDefectsInOrder(T& thing, const std::vector<Defect<T>>& defects, const Operation& operation)
{
    for (const Defect<T>& defect : defects) {
        EXPECT_EQ(ThrownText(operation), defect.thrown);
        defect.repair(thing);
    }
    EXPECT_EQ(ThrownText(operation), NothingThrown);
}

inline CHardware Board(const std::wstring& id, const std::wstring& name = L"board")
{
    CHardware board;
    board.m_id = id;
    board.m_name = name;
    return board;
}

/// A board that uses everything a file can carry.
inline CHardware FullBoard()
{
    CHardware board = Board(L"2003", L"CPU[2,1]");
    board.m_productId = L"17";
    board.m_partNumber = L"1234.5678.02, 1234.5678.03";
    board.m_sn = L"654321";
    board.m_partChangeIndex = L"07.12";
    board.m_hardwareCode = L"42";
    board.m_productDate = L"2011-3-7";
    board.m_readCode = L"5";
    board.m_testInstruction = L"1.5";
    board.m_partName = L"Processor \u20AC";
    board.m_parentId = L"2001";
    board.m_externConnected = L"true";
    board.m_connectorName = L"X7";
    board.m_bPartIdentification.m_name = L"b name";
    board.m_bPartIdentification.m_partNumber = L"b number";
    board.m_bPartIdentification.m_sn = L"b sn";
    board.m_bPartIdentification.m_partChangeIndex = L"b index";
    board.m_bPartIdentification.m_vendorName = L"b vendor";
    board.m_bPartIdentification.m_additionalInfo = L"b info";
    CProgrammablePart& part = board.m_programmableParts.CreateEntry();
    part.m_name = L"fpga";
    part.m_version = L"v1";
    part.m_partNumber = L"p1";
    part.m_partChangeIndex = L"01.02";
    board.m_programmableParts.CreateEntry().m_name = L"flash";
    board.m_maintenanceData.m_operatingHours = L"100";
    auto& maintenance = board.m_maintenanceData.m_maintenances.CreateEntry();
    maintenance.m_maintenanceDate = L"2015-03-01";
    auto& task = maintenance.m_maintenanceTasks.CreateEntry();
    task.m_name = L"clean";
    task.m_done = L"true";
    for (const wchar_t* code : {L"7", L"8"}) {
        CService& service = board.m_serviceData.m_services.CreateEntry();
        service.m_serviceCode = code;
        service.m_serviceDate = L"2014-01-02";
    }
    board.m_properties.CreateEntry().m_name = L"not read";
    return board;
}

inline CProduct FullProduct()
{
    CProduct product;
    product.m_id = L"12";
    product.m_partNumber = L"any number";
    product.m_partChangeIndex = L"01.02";
    product.m_type = L"type \u20AC";
    product.m_partName = L"name";
    return product;
}

/// Numbers of some items, and how many pairs of equal ones are among them.
struct Ids
{
    std::vector<long> ids;
    std::size_t pairs;
};

inline const std::vector<Ids> IdCases = {{{}, 0},           {{1}, 0},          {{1, 2, 3}, 0},
                                         {{1, 2, 2}, 1},    {{2, 1, 2}, 1},    {{2, 2, 2}, 3},
                                         {{1, 1, 2, 2}, 2}, {{4, 4, 4, 4}, 6}, {{-7, 7, -7}, 1}};

class HardwareMappingFixture : public testing::Test
{
protected:
    CHardwareData& Hardware() { return Document(m_config).m_hardwareData; }

    /// Reads a board as the one of index 0 of 1. The facade owns the item.
    HwBoardDescItem& Read(CHardware& board, bool throwOnError = false)
    {
        m_config.addHwItem(m_config.fillHwBoardFromFootprint(board, 0, 1, throwOnError));
        return *m_config.getHwBoardDescItems().back();
    }

    /// A board item that the facade owns.
    HwBoardDescItem& Add(long id, const std::wstring& name = L"")
    {
        auto* board = new HwBoardDescItem;
        board->setId(id);
        board->setName(name);
        m_config.addHwItem(board);
        return *board;
    }
    CProductDescItem& AddProduct(long id)
    {
        auto* product = new CProductDescItem;
        product->setId(id);
        ProductItems(m_config).push_back(product);
        return *product;
    }
    CHardware Written(HwBoardDescItem& board, bool throwOnError = true)
    {
        return m_config.fillCHardwareFromDescItem(&board, throwOnError);
    }

    ErrorWord m_errorWord;
    TempFolder m_folder;
    OwningConfig m_config;
    ErrorJournal m_errors;
};

} // namespace NyxTest

#endif
