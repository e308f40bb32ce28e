#include "BoardTree.h"

#include "ElementWalk.h"

#include <unordered_map>
#include <utility>

namespace footprint
{

using KvDeviceFootprint::CHardware;
using KvDeviceFootprint::CHardwareList;

namespace
{

class CTreeBuilder
{
public:
    explicit CTreeBuilder(const CHardwareList& boards)
    {
        m_boards.reserve(boards.size());
        for (const CHardware& board : boards) {
            m_boards.push_back(&board);
        }
        FindParents();
    }

    std::vector<CBoardPlace> Build()
    {
        m_tree.reserve(m_boards.size());
        m_isPlaced.assign(m_boards.size(), false);
        std::vector<std::size_t> roots;
        for (std::size_t index = 0; index < m_boards.size(); ++index) {
            if (m_parents[index] == CBoardPlace::none) {
                roots.push_back(index);
            }
        }
        PlaceBelow(CBoardPlace::none, roots);
        // What no root carries is a circle, or hangs on one.
        for (std::size_t index = 0; index < m_boards.size(); ++index) {
            if (!m_isPlaced[index]) {
                const std::size_t first = FirstOfCircle(index);
                AddRemark(first, "its parents make a circle");
                PlaceBelow(CBoardPlace::none, {first});
            }
        }
        return std::move(m_tree);
    }

private:
    void FindParents()
    {
        std::unordered_map<std::wstring, std::size_t> places;
        m_remarks.resize(m_boards.size());
        for (std::size_t index = 0; index < m_boards.size(); ++index) {
            const std::wstring& id = m_boards[index]->m_id.GetValue();
            if (!id.empty() && !places.emplace(id, index).second) {
                AddRemark(index, "a board before it has this id");
            }
        }
        m_parents.assign(m_boards.size(), CBoardPlace::none);
        m_children.resize(m_boards.size());
        for (std::size_t index = 0; index < m_boards.size(); ++index) {
            const std::wstring& parentId = m_boards[index]->m_parentId.GetValue();
            const auto place = places.find(parentId);
            if (place != places.end()) {
                m_parents[index] = place->second;
                m_children[place->second].push_back(index);
            } else if (!parentId.empty() && parentId != L"0") {
                AddRemark(index, "no board has the id " + Utf8(parentId) + " of its parent");
            }
        }
    }

    void AddRemark(std::size_t index, const std::string& remark)
    {
        m_remarks[index] += (m_remarks[index].empty() ? "" : "; ") + remark;
    }

    /// Going up from a board that no root carries ends in a circle.
    std::size_t FirstOfCircle(std::size_t index) const
    {
        std::vector<bool> isSeen(m_boards.size(), false);
        while (!isSeen[index]) {
            isSeen[index] = true;
            index = m_parents[index];
        }
        std::size_t first = index;
        for (std::size_t next = m_parents[index]; next != index; next = m_parents[next]) {
            first = next < first ? next : first;
        }
        return first;
    }

    /// Places boards side by side, and all that they carry. Not recursive: a chain can be as long as a file.
    void PlaceBelow(std::size_t parent, const std::vector<std::size_t>& boards)
    {
        struct CWaiting
        {
            std::size_t index;
            std::size_t parent;
            bool isLast;
        };
        std::vector<CWaiting> waiting;
        const auto wait = [this, &waiting](std::size_t below, const std::vector<std::size_t>& indices) {
            bool isLast = true;
            for (auto index = indices.rbegin(); index != indices.rend(); ++index) {
                if (!m_isPlaced[*index]) { // the first one of a circle is
                    waiting.push_back({*index, below, isLast});
                    isLast = false;
                }
            }
        };
        wait(parent, boards);
        while (!waiting.empty()) {
            const CWaiting next = waiting.back();
            waiting.pop_back();
            m_isPlaced[next.index] = true;
            const std::size_t level = next.parent == CBoardPlace::none ? 0 : m_tree[next.parent].level + 1;
            m_tree.push_back(
                {m_boards[next.index], next.index + 1, next.parent, level, next.isLast, m_remarks[next.index]});
            wait(m_tree.size() - 1, m_children[next.index]);
        }
    }

    std::vector<const CHardware*> m_boards;
    std::vector<std::size_t> m_parents;
    std::vector<std::vector<std::size_t>> m_children;
    std::vector<std::string> m_remarks;
    std::vector<bool> m_isPlaced;
    std::vector<CBoardPlace> m_tree;
};

} // namespace

std::vector<CBoardPlace> BoardTree(const CHardwareList& boards)
{
    return CTreeBuilder(boards).Build();
}

std::string BoardLabel(const CHardware& board, std::size_t number)
{
    std::string label = "board " + std::to_string(number);
    for (const auto* attribute : {&board.m_name, &board.m_partName, &board.m_partNumber}) {
        if (!attribute->IsEmpty()) {
            label = Utf8(attribute->GetValue());
            break;
        }
    }
    return board.m_id.IsEmpty() ? label : label + " (" + Utf8(board.m_id.GetValue()) + ")";
}

} // namespace footprint
