#include "DfpErrorHandler.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <utility>

#include <locale.h>

#include "CLocale.h"

namespace KvDeviceFootprint
{

namespace
{

/// Indexed by TDfpErrorType.
constexpr std::array<const char*, eDfpErrorTypeCount> errorTypeTexts{{
    "Inconsistent Product Definition",
    "Memory management error",
    "I/O error",
    "Cipher error",
    "Parser error",
    "Algorithmic error",
    "Internal error",
    "Content",
    "Automatic skip",
    "",
}};

bool IsRecordType(TDfpErrorType type)
{
    return type >= 0 && type < eDfpErrorTypeCount;
}

void RaiseCount(CDfpError& error, std::int32_t by)
{
    using Limits = std::numeric_limits<std::int32_t>;
    const std::int64_t sum = std::int64_t{error.m_count} + by;
    error.m_count = static_cast<std::int32_t>(std::clamp<std::int64_t>(sum, Limits::min(), Limits::max()));
}

/// The calling thread formats as in the "C" locale while this lives.
class CLocaleScope
{
public:
    CLocaleScope() : m_former(uselocale(CLocale())) {}
    ~CLocaleScope() { uselocale(m_former); }
    CLocaleScope(const CLocaleScope&) = delete;
    CLocaleScope& operator=(const CLocaleScope&) = delete;

private:
    locale_t m_former;
};

/// @return the length of the formatted text without its closing zero, negative if it can not be formatted.
__attribute__((format(printf, 1, 0))) int _vscprintf(const char* format, va_list arguments)
{
    return std::vsnprintf(nullptr, 0, format, arguments);
}

struct Free
{
    void operator()(void* memory) const { std::free(memory); }
};

__attribute__((format(printf, 1, 0))) std::string FormatText(const char* format, va_list arguments)
{
    if (format == nullptr) {
        return std::string();
    }
    const CLocaleScope cLocale;
    va_list measured;
    va_copy(measured, arguments);
    const int length = _vscprintf(format, measured);
    va_end(measured);

    std::unique_ptr<char, Free> buffer;
    const std::size_t size = static_cast<std::size_t>(std::max(length, 0)) + 1;
    if (length >= 0) {
        buffer.reset(static_cast<char*>(std::malloc(size)));
    }
    if (!buffer) {
        return "<Error text to long>";
    }
    std::vsnprintf(buffer.get(), size, format, arguments);
    return buffer.get();
}

struct CloseFile
{
    void operator()(std::FILE* file) const { std::fclose(file); }
};

} // namespace

CDfpError::CDfpError(TDfpErrorType type, const std::string& text) : m_type(type), m_text(text), m_count(1) {}

CDfpError::~CDfpError() = default;

void CDfpError::GetErrorText(std::string& text) const
{
    if (m_type == eDfpErrorTypeInfo) {
        text = m_text;
        return;
    }
    std::string typeText;
    CDfpErrorHandler::ErrorTypeToString(m_type, typeText);
    const std::string count = m_count < 2 ? std::string() : std::to_string(m_count) + ' ';
    text = count + typeText + ": " + m_text;
}

CDfpErrorList::CDfpErrorList() = default;

CDfpErrorList::~CDfpErrorList() = default;

void CDfpErrorList::Insert(CDfpError* error)
{
    // The place first: the record must not change hands if there is no memory for it.
    m_errors.emplace_back();
    m_errors.back().reset(error);
}

void CDfpErrorList::Clear()
{
    m_errors.clear();
}

std::size_t CDfpErrorList::Count() const
{
    return m_errors.size();
}

CDfpErrorContext::CDfpErrorContext() : m_bClosed(false), m_skip{}
{
    CDfpErrorHandler::Instance()->AddCurrentErrorContext(this);
}

CDfpErrorContext::CDfpErrorContext(const char* format, ...) : CDfpErrorContext()
{
    va_list arguments;
    va_start(arguments, format);
    const std::string text = FormatText(format, arguments);
    va_end(arguments);
    if (!text.empty()) {
        StoreError(eDfpErrorTypeInfo, text);
    }
}

CDfpErrorContext::~CDfpErrorContext()
{
    CloseErrorContext();
    // Refused closing leaves entries on the stack, which must not outlive the object.
    if (CDfpErrorHandler::s_pTheOneInstance != nullptr) {
        CDfpErrorHandler::s_pTheOneInstance->Forget(this);
    }
}

bool CDfpErrorContext::StoreError(CDfpError* error)
{
    if (error == nullptr || Skips(error->m_type)) {
        return false;
    }
    if (CDfpError* const twin = CDfpErrorHandler::Instance()->FindStoredError(error->m_type)) {
        RaiseCount(*twin, error->m_count);
        return false;
    }
    m_errors.Insert(error);
    return true;
}

void CDfpErrorContext::StoreError(TDfpErrorType type, const std::string& text)
{
    auto error = std::make_unique<CDfpError>(type, text);
    if (StoreError(error.get())) {
        static_cast<void>(error.release());
    }
}

bool CDfpErrorContext::ErrorsOccurred() const
{
    return m_errors.Count() != 0;
}

CDfpError* CDfpErrorContext::FindStoredError(TDfpErrorType type) const
{
    // Null slots occur while MoveErrors is at work.
    for (const auto& error : m_errors.m_errors) {
        if (error && (type == eDfpErrorTypeCount || error->m_type == type)) {
            return error.get();
        }
    }
    return nullptr;
}

CDfpError* CDfpErrorContext::GetFirstStoredError(TDfpErrorType type) const
{
    return FindStoredError(type);
}

void CDfpErrorContext::Clear(TDfpErrorType type)
{
    if (type == eDfpErrorTypeCount) {
        m_errors.Clear();
        return;
    }
    auto& errors = m_errors.m_errors;
    errors.erase(std::remove_if(errors.begin(), errors.end(),
                                [type](const auto& error) { return error && error->m_type == type; }),
                 errors.end());
}

void CDfpErrorContext::Skip(TDfpErrorType type)
{
    if (IsRecordType(type)) {
        m_skip[static_cast<std::size_t>(type)] = true;
    }
}

void CDfpErrorContext::DontSkip(TDfpErrorType type)
{
    if (IsRecordType(type)) {
        m_skip[static_cast<std::size_t>(type)] = false;
    }
}

bool CDfpErrorContext::Skips(TDfpErrorType type) const
{
    return !IsRecordType(type) || m_skip[static_cast<std::size_t>(type)];
}

void CDfpErrorContext::ClearSkipList()
{
    m_skip.fill(false);
}

void CDfpErrorContext::MoveErrors(CDfpErrorContext& other)
{
    auto& slots = other.m_errors.m_errors;
    // By index and up to the first size: the list may be this context's own and grow.
    const std::size_t count = slots.size();
    for (std::size_t i = 0; i < count; ++i) {
        if (!slots[i]) {
            continue;
        }
        const CDfpError& moving = *slots[i];
        if (Skips(moving.m_type)) {
            slots[i].reset();
            continue;
        }
        // The slot is still filled during the search, so that a record without a twin further out finds itself.
        if (CDfpError* const twin = CDfpErrorHandler::Instance()->FindStoredError(moving.m_type)) {
            RaiseCount(*twin, moving.m_count);
            slots[i].reset();
        } else {
            auto error = std::move(slots[i]);
            m_errors.m_errors.push_back(std::move(error));
        }
    }
    other.m_errors.Clear();
}

bool CDfpErrorContext::AppendToFile(const std::string& path) const
{
    if (!ErrorsOccurred()) {
        return true;
    }
    const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(path.c_str(), "a"));
    if (!file || std::ferror(file.get()) != 0) {
        return false;
    }
    int written = 0;
    std::string text;
    for (const auto& error : m_errors.m_errors) {
        if (!error) {
            continue;
        }
        error->GetErrorText(text);
        written = std::fprintf(file.get(), "> %s\n", text.c_str());
        if (written < 0 || std::ferror(file.get()) != 0) {
            break;
        }
    }
    std::fflush(file.get());
    // The number of characters of the last line is never 0: callers know false as the result of a write.
    return written == 0;
}

bool CDfpErrorContext::CloseErrorContext()
{
    return CloseErrorContext(false);
}

bool CDfpErrorContext::CloseErrorContext(bool discardErrors)
{
    // Not Instance: a context that outlives the handler must not make a new one.
    CDfpErrorHandler* const handler = CDfpErrorHandler::s_pTheOneInstance;
    if (m_bClosed || handler == nullptr || handler->GetCurrentErrorContext() != this) {
        return discardErrors;
    }
    const bool result = discardErrors || !ErrorsOccurred();
    CDfpErrorContext* const parent = handler->GetParentContextOfCurrent();
    if (discardErrors || parent == nullptr) {
        m_errors.Clear();
    } else {
        parent->MoveErrors(*this);
    }
    handler->RemoveCurrentErrorContext(this);
    m_bClosed = true;
    return result;
}

CDfpErrorHandler* CDfpErrorHandler::s_pTheOneInstance = nullptr;

CDfpErrorHandler::CDfpErrorHandler() = default;

CDfpErrorHandler::~CDfpErrorHandler()
{
    Clear();
    s_pTheOneInstance = nullptr;
}

CDfpErrorHandler* CDfpErrorHandler::Instance()
{
    if (s_pTheOneInstance == nullptr) {
        // The pointer is set before the global context is made, whose constructor comes here again.
        s_pTheOneInstance = new CDfpErrorHandler;
        s_pTheOneInstance->AddGlobalErrorContext();
    }
    return s_pTheOneInstance;
}

void CDfpErrorHandler::Destroy()
{
    delete s_pTheOneInstance;
    s_pTheOneInstance = nullptr;
}

void CDfpErrorHandler::AddError(TDfpErrorType type, const char* format, ...)
{
    if (GetCurrentErrorContext() == nullptr) {
        return;
    }
    va_list arguments;
    va_start(arguments, format);
    const std::string text = FormatText(format, arguments);
    va_end(arguments);
    GetCurrentErrorContext()->StoreError(type, text);
}

void CDfpErrorHandler::AddError(TDfpErrorType type, const std::string& text)
{
    if (CDfpErrorContext* const current = GetCurrentErrorContext()) {
        current->StoreError(type, text);
    }
}

void CDfpErrorHandler::AddCurrentErrorContext(CDfpErrorContext* context)
{
    m_contexts.push_back(context);
}

void CDfpErrorHandler::RemoveCurrentErrorContext(CDfpErrorContext* context)
{
    if (!m_contexts.empty() && m_contexts.back() == context) {
        m_contexts.pop_back();
    }
}

void CDfpErrorHandler::AddGlobalErrorContext()
{
    if (m_contexts.empty()) {
        m_ownContexts.push_back(std::make_unique<CDfpErrorContext>());
    }
}

CDfpErrorContext* CDfpErrorHandler::GetGlobalErrorContext() const
{
    return m_contexts.empty() ? nullptr : m_contexts.front();
}

CDfpErrorContext* CDfpErrorHandler::GetCurrentErrorContext() const
{
    return m_contexts.empty() ? nullptr : m_contexts.back();
}

CDfpErrorContext* CDfpErrorHandler::GetParentContextOfCurrent() const
{
    return m_contexts.size() < 2 ? nullptr : m_contexts[m_contexts.size() - 2];
}

void CDfpErrorHandler::ClearGlobalErrorContext()
{
    if (CDfpErrorContext* const global = GetGlobalErrorContext()) {
        global->Clear(eDfpErrorTypeCount);
    }
}

void CDfpErrorHandler::Clear()
{
    while (!m_contexts.empty()) {
        CDfpErrorContext* const top = m_contexts.back();
        const std::unique_ptr<CDfpErrorContext> own = TakeOwnContext(top);
        if (top != nullptr) {
            top->CloseErrorContext();
        }
        // Still there if it is null or was closed before and put back.
        RemoveCurrentErrorContext(top);
    }
}

CDfpError* CDfpErrorHandler::FindStoredError(TDfpErrorType type) const
{
    for (const CDfpErrorContext* const context : m_contexts) {
        CDfpError* const error = context != nullptr ? context->FindStoredError(type) : nullptr;
        if (error != nullptr) {
            return error;
        }
    }
    return nullptr;
}

void CDfpErrorHandler::GetFirstGlobalError(std::string& text, TDfpErrorType type) const
{
    text.clear();
    const CDfpErrorContext* const global = GetGlobalErrorContext();
    const CDfpError* const error = global != nullptr ? global->FindStoredError(type) : nullptr;
    if (error != nullptr) {
        error->GetErrorText(text);
    }
}

void CDfpErrorHandler::ErrorTypeToString(TDfpErrorType type, std::string& text)
{
    text = IsRecordType(type) ? errorTypeTexts[static_cast<std::size_t>(type)] : "Undefined error type";
}

/// @return the context, no longer known as one of this handler's own; null if it is not.
std::unique_ptr<CDfpErrorContext> CDfpErrorHandler::TakeOwnContext(const CDfpErrorContext* context)
{
    const auto found = std::find_if(m_ownContexts.begin(), m_ownContexts.end(),
                                    [context](const auto& own) { return own.get() == context; });
    if (found == m_ownContexts.end()) {
        return nullptr;
    }
    auto own = std::move(*found);
    m_ownContexts.erase(found);
    return own;
}

/// Drops every trace of a context that is being destroyed.
void CDfpErrorHandler::Forget(const CDfpErrorContext* context)
{
    m_contexts.erase(std::remove(m_contexts.begin(), m_contexts.end(), context), m_contexts.end());
    static_cast<void>(TakeOwnContext(context).release());
}

} // namespace KvDeviceFootprint
