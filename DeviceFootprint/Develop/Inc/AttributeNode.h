#ifndef NYXCONFIG_ATTRIBUTENODE_H
#define NYXCONFIG_ATTRIBUTENODE_H

#include "nyxconfig_export.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

namespace KvDeviceFootprint
{

/// The low eight bits of a wide character; no encoding is involved.
inline char ToSingleChar(wchar_t character)
{
    return static_cast<char>(static_cast<unsigned char>(character));
}

/// Narrow text made from wide text character by character with ToSingleChar().
NYXCONFIG_EXPORT std::string NarrowText(const std::wstring& text);

/// Wide text made from narrow text character by character. Each byte is sign-extended, so a byte of 0x80 or above
/// becomes a negative wide character; NarrowText() gives the byte back.
NYXCONFIG_EXPORT std::wstring WidenText(const std::string& text);

/// The abstract root of attributes and elements: something with a narrow name.
class NYXCONFIG_EXPORT CNode
{
public:
    virtual ~CNode() = default;

    /// The node's name. The reference lives as long as the node.
    virtual const std::string& GetNodeName() const = 0;

protected:
    CNode() = default;
    CNode(const CNode&) = default;
    CNode(CNode&&) = default;
    CNode& operator=(const CNode&) = default;
    CNode& operator=(CNode&&) = default;
};

/// Orders nodes by name, byte by byte as unsigned bytes; a proper prefix goes first. This is the canonical order of the
/// checksum.
struct CNodeSorter
{
    bool operator()(const CNode* lhs, const CNode* rhs) const { return lhs->GetNodeName() < rhs->GetNodeName(); }
};

/// An attribute's name. Names are few and shared by very many attributes, so each distinct text is kept once, for the
/// life of the process; a CNodeName is a pointer to it. Safe to make from any thread.
class NYXCONFIG_EXPORT CNodeName
{
public:
    /// @param text zero-terminated; a null pointer counts as the empty text.
    explicit CNodeName(const char* text);

    const std::string& Text() const { return m_entry->text; }

    /// Equal texts share one entry, so this is a comparison of texts.
    bool operator==(const CNodeName& other) const { return m_entry == other.m_entry; }
    bool operator!=(const CNodeName& other) const { return m_entry != other.m_entry; }

private:
    friend class CReadOnlyAttribute;
    friend class CXmlStreamReader;
    friend class CXmlStreamWriter;

    struct Entry
    {
        explicit Entry(const char* name);

        std::string text;
        /// What reading an empty attribute of the name reports.
        std::string emptyMessage;
        /// What stands before the attribute's value in a file, ` name="`. Of one size for all names, so that it can be
        /// copied without a look at its length.
        std::array<char, 32> opening;
        std::size_t openingLength; ///< 0 for a name that is too long
        /// The first eight bytes of the opening, and what of them counts: all bits of as many bytes as it has.
        std::uint64_t firstBytes;
        std::uint64_t firstMask;
        std::uint64_t lastBytes; ///< the last eight, if there are so many
    };
    static const Entry* SharedEntry(const char* text);

    const Entry* m_entry;
};

/**
 * A named text attribute of an element. An empty value means that the attribute is absent: it is not written to a file,
 * it is skipped by merging and by relationship tests, and reading it through Get(), GetBool() or GetInteger() is an
 * error.
 *
 * Errors are reported through CDeviceFootprint::SetLastError, which stores the text and throws if exceptions are
 * enabled; otherwise the operation returns false and leaves its output alone.
 *
 * An attribute belongs to one thread at a time.
 */
class NYXCONFIG_EXPORT CReadOnlyAttribute : public CNode
{
public:
    /// @param name zero-terminated name as it stands in a file. The value starts empty.
    explicit CReadOnlyAttribute(const char* name) : m_name(name) {}
    explicit CReadOnlyAttribute(const CNodeName& name) : m_name(name) {}
    CReadOnlyAttribute(const CReadOnlyAttribute&) = default;
    CReadOnlyAttribute(CReadOnlyAttribute&&) = default;
    ~CReadOnlyAttribute() override = default;

    const std::string& GetNodeName() const override;

    bool IsEmpty() const { return m_value.empty(); }
    void Clear()
    {
        if (!m_value.empty()) {
            m_value.clear();
        }
    }
    /// The value as it stands, empty if the attribute is absent; never an error. Valid until the next change.
    const std::wstring& GetValue() const { return m_value; }

    /// The setters always return true.
    bool Set(const std::wstring& value);
    /// Stores the text widened by WidenText().
    bool Set(const std::string& value);
    /// Stores "true" or "false".
    bool SetBool(bool value);
    /// Stores the number in decimal.
    bool SetInteger(long value);

    CReadOnlyAttribute& operator=(const std::wstring& value);
    CReadOnlyAttribute& operator=(std::wstring&& value)
    {
        m_value = std::move(value);
        return *this;
    }
    CReadOnlyAttribute& operator=(const std::string& value);
    /// A null pointer counts as the empty text.
    CReadOnlyAttribute& operator=(const char* value);
    /// A null pointer counts as the empty text.
    CReadOnlyAttribute& operator=(const wchar_t* value);
    CReadOnlyAttribute& operator=(long value);
    /// Copies name and value.
    CReadOnlyAttribute& operator=(const CReadOnlyAttribute& other)
    {
        TakeName(other);
        m_value = other.m_value;
        return *this;
    }
    CReadOnlyAttribute& operator=(CReadOnlyAttribute&& other) noexcept
    {
        TakeName(other);
        m_value = std::move(other.m_value);
        return *this;
    }

    bool Get(std::wstring& value) const;
    /// Gives the value narrowed by NarrowText().
    bool Get(std::string& value) const;
    /// "true" and "false", exact case; any other text reports "invalid boolean attribute".
    bool GetBool(bool& value) const;
    /// The decimal number at the start of the value. Nothing tests that there is one: text without a leading number
    /// gives 0 and true. A number outside the range of long gives the nearest bound.
    bool GetInteger(long& value) const;
    /// Reports that the attribute is empty. Always false.
    bool EmptyGetError() const;

    /// Whether name and value are equal. With @p emptiesAreEqual clear, two empty attributes of one name are
    /// deliberately not equal; only the same object equals itself while empty.
    bool IsEqual(const CReadOnlyAttribute& other, bool emptiesAreEqual) const;

private:
    friend class CElementLayout;   // compares names by identity
    friend class CXmlStreamReader; // decodes straight into the value
    friend class CXmlStreamWriter; // takes the name's opening

    void TakeName(const CReadOnlyAttribute& other)
    {
        if (m_name != other.m_name) {
            Rename(other.m_name);
        }
    }
    void Rename(const CNodeName& name) noexcept;

    /// Whether any attribute of the process was ever given another name. As long as none was, those of an element bear
    /// the names that its class gives them.
    static std::atomic<bool> s_isAnyRenamed;

    CNodeName m_name;
    std::wstring m_value;
};

/// The writable attribute of the element classes.
class NYXCONFIG_EXPORT CAttribute : public CReadOnlyAttribute
{
public:
    explicit CAttribute(const char* name) : CReadOnlyAttribute(name) {}
    explicit CAttribute(const CNodeName& name) : CReadOnlyAttribute(name) {}
    CAttribute(const CAttribute&) = default;
    CAttribute(CAttribute&&) = default;
    CAttribute& operator=(const CAttribute&) = default;
    CAttribute& operator=(CAttribute&&) = default;
    ~CAttribute() override = default;

    using CReadOnlyAttribute::operator=;
};

/**
 * A point in time: text in the form yyyy-mm-ddThh:mm:ss, UTC without a zone suffix, and beside it a signed count of
 * seconds since 1970. Only SetCreationDateToCurrent() sets the seconds, and copying or assigning a CTimeAttribute
 * carries them; loading a file, CopyFrom() and InsertFrom() of the element change the text alone.
 *
 * The comparisons look at the seconds only.
 */
class NYXCONFIG_EXPORT CTimeAttribute : public CReadOnlyAttribute
{
public:
    explicit CTimeAttribute(const char* name) : CReadOnlyAttribute(name) {}
    explicit CTimeAttribute(const CNodeName& name) : CReadOnlyAttribute(name) {}
    CTimeAttribute(const CTimeAttribute&) = default;
    CTimeAttribute(CTimeAttribute&&) = default;
    CTimeAttribute& operator=(const CTimeAttribute&) = default;
    CTimeAttribute& operator=(CTimeAttribute&&) = default;
    ~CTimeAttribute() override = default;

    using CReadOnlyAttribute::operator=;

    /// Takes the clock's time. If it can not be broken down into a date, the text becomes empty and the seconds stay.
    void SetCreationDateToCurrent();

    bool operator==(const CTimeAttribute& other) const { return m_seconds == other.m_seconds; }
    bool operator!=(const CTimeAttribute& other) const { return m_seconds != other.m_seconds; }
    /// Whether this is earlier than @p other. The difference is taken in 32 bits and wraps.
    bool operator<(const CTimeAttribute& other) const;

private:
    std::int32_t m_seconds = 0;
};

} // namespace KvDeviceFootprint

#endif
